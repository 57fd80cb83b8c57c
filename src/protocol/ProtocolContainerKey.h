// ContainerKey: one VRF (by name) and one address family, the key under which every per-VRF
// machine of a protocol is built. ContainerKeySet: a plain set of them. Values and records only;
// written by whoever builds the per-VRF machines.
#pragma once

#include <ostream>
#include <string_view>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/AddressFamily.h"
#include "foundations/types/VrfName.h"

namespace Routing::Protocol {

class ContainerKey : public Zel::ValueFields<ContainerKey, Zel::ValueOrder::own> {
 public:
  // Hash, equality and the text form
  // "Value('Routing::Protocol::ContainerKey', ** {'vrfName': 'red', 'af': 'ipv4'})" come from these.
  static constexpr std::string_view kTypeName = "Routing::Protocol::ContainerKey";
  static constexpr auto fields() {
    return std::tuple{Zel::field("vrfName", &ContainerKey::vrfName_), Zel::field("af", &ContainerKey::af_)};
  }

  ContainerKey() noexcept = default;
  ContainerKey(L3::VrfName vrfName, Ondex::AddressFamily af) noexcept : vrfName_(std::move(vrfName)), af_(af) {}

  [[nodiscard]] L3::VrfName const& vrfName() const noexcept { return vrfName_; }
  [[nodiscard]] Ondex::AddressFamily af() const noexcept { return af_; }

  // The default VRF first, then the other names in string order; one name by family.
  friend bool operator<(ContainerKey const& a, ContainerKey const& b) noexcept;
  // False for the empty key only.
  explicit operator bool() const noexcept { return !(*this == ContainerKey()); }

  friend std::ostream& operator<<(std::ostream& os, ContainerKey const& k) { return os << valueToStrep(k); }

 private:
  L3::VrfName vrfName_;
  Ondex::AddressFamily af_;
};

class ContainerKeySet : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<ContainerKeySet> ContainerKeySetIs() { return Zel::make<ContainerKeySet>(); }
  ZEL_SET(ContainerKey, containerKey, 130)

 protected:
  friend struct Zel::Factory;
  ContainerKeySet() = default;
};

}  // namespace Routing::Protocol

template <>
struct fmt::formatter<Routing::Protocol::ContainerKey> : fmt::ostream_formatter {};
