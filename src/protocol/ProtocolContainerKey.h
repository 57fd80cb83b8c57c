// ContainerKey: one VRF (by name) and one address family, the key under which every per-VRF
// machine of a protocol is built. ContainerKeySet: a plain set of them. Values and records only;
// written by whoever builds the per-VRF machines.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/runtime/Attribute.h"
#include "foundations/types/AddressFamily.h"
#include "foundations/types/VrfName.h"

namespace Routing::Protocol {

class ContainerKey {
 public:
  ContainerKey() noexcept = default;
  ContainerKey(L3::VrfName vrfName, Ondex::AddressFamily af) noexcept : vrfName_(std::move(vrfName)), af_(af) {}

  [[nodiscard]] L3::VrfName const& vrfName() const noexcept { return vrfName_; }
  [[nodiscard]] Ondex::AddressFamily af() const noexcept { return af_; }

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  [[nodiscard]] static bool isEq(ContainerKey const& a, ContainerKey const& b) noexcept { return a == b; }
  friend bool operator==(ContainerKey const& a, ContainerKey const& b) noexcept {
    return a.af_ == b.af_ && a.vrfName_ == b.vrfName_;
  }
  // The default VRF first, then the other names in string order; one name by family.
  friend bool operator<(ContainerKey const& a, ContainerKey const& b) noexcept;
  // False for the empty key only.
  explicit operator bool() const noexcept { return !(*this == ContainerKey()); }

  // "Value('Routing::Protocol::ContainerKey', ** {'vrfName': 'red', 'af': 'ipv4'})", and back.
  friend std::string valueToStrep(ContainerKey const& k);
  [[nodiscard]] static std::optional<ContainerKey> fromStrep(std::string_view text);
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
