#include "foundations/records/RouteKey.h"

#include "foundations/runtime/Hash.h"
#include "foundations/types/ValueText.h"

namespace Routing {

namespace {
constexpr std::string_view kType = "Routing::RouteKey";
constexpr std::string_view kFields[] = {"prefix", "preference"};
}  // namespace

std::string RouteKey::pretty() const { return prefix_.toString() + " pref " + std::to_string(preference_.value()); }

std::string RouteKey::toStrep() const {
  std::string const prefix = Ondex::valueToStrep(prefix_);
  std::string const preference = valueToStrep(preference_);
  return Zel::ValueText::print(kType, {{kFields[0], prefix}, {kFields[1], preference}});
}

std::optional<RouteKey> RouteKey::fromStrep(std::string_view text) {
  auto fields = Zel::ValueText::parse(text, kType, kFields);
  if (!fields) return std::nullopt;
  auto prefix = Ondex::IpGenPrefix::fromStrep((*fields)[0]);
  auto preference = RoutePreference::fromStrep((*fields)[1]);
  if (!prefix || !preference) return std::nullopt;
  return RouteKey(*prefix, *preference);
}

std::uint32_t RouteKey::hash(std::uint32_t seed) const noexcept {
  Ondex::IpGenAddr const& a = prefix_.addr();
  return Zel::HashBuilder(seed)
      .add(a.word(0))
      .add(a.word(1))
      .add(std::uint64_t(a.af().value()) << 16 | std::uint64_t(prefix_.len()) << 8 | preference_.value())
      .value();
}

}  // namespace Routing
