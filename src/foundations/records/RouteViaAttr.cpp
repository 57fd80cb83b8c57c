#include "foundations/records/RouteViaAttr.h"

#include "foundations/runtime/Hash.h"
#include "foundations/types/ValueText.h"

namespace Routing {

namespace {
constexpr std::string_view kType = "Routing::RouteViaAttr";
constexpr std::string_view kFields[] = {"metric", "weight"};
}  // namespace

std::string RouteViaAttr::toStrep() const {
  std::string const metric = std::to_string(metric_);
  std::string const weight = std::to_string(weight_);
  return Zel::ValueText::print(kType, {{kFields[0], metric}, {kFields[1], weight}});
}

std::optional<RouteViaAttr> RouteViaAttr::fromStrep(std::string_view text) {
  auto fields = Zel::ValueText::parse(text, kType, kFields);
  if (!fields) return std::nullopt;
  auto metric = Zel::ValueText::parseUnsigned<std::uint32_t>((*fields)[0]);
  auto weight = Zel::ValueText::parseUnsigned<std::uint32_t>((*fields)[1]);
  if (!metric || !weight) return std::nullopt;
  return RouteViaAttr(*metric, *weight);
}

std::uint32_t RouteViaAttr::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed).add(std::uint64_t(metric_) << 32 | weight_).value();
}

}  // namespace Routing
