#include "foundations/records/RouteAttributes.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "foundations/runtime/Hash.h"
#include "foundations/types/ValueText.h"

namespace Routing {

namespace {
constexpr std::string_view kType = "Routing::RouteAttributes";
constexpr std::string_view kFields[] = {"community"};
}  // namespace

std::string RouteAttributes::toStrep() const {
  std::string const list = fmt::format("[{}]", fmt::join(community_, ", "));
  return Zel::ValueText::print(kType, {{kFields[0], list}});
}

std::optional<RouteAttributes> RouteAttributes::fromStrep(std::string_view text) {
  auto fields = Zel::ValueText::parse(text, kType, kFields);
  if (!fields) return std::nullopt;
  std::string_view list = (*fields)[0];
  if (list.size() < 2 || list.front() != '[' || list.back() != ']') return std::nullopt;
  list = list.substr(1, list.size() - 2);
  RouteAttributes out;
  while (!list.empty()) {
    std::size_t const comma = list.find(", ");
    auto value = Zel::ValueText::parseUnsigned<VE_Community>(list.substr(0, comma));
    if (!value) return std::nullopt;
    out.community_.push_back(*value);
    if (comma == std::string_view::npos) break;
    list.remove_prefix(comma + 2);
    if (list.empty()) return std::nullopt;  // a trailing separator
  }
  return out;
}

std::uint32_t RouteAttributes::hash(std::uint32_t seed) const noexcept {
  Zel::HashBuilder h(seed);
  h.add(community_.size());
  for (VE_Community c : community_) h.add(c);
  return h.value();
}

}  // namespace Routing
