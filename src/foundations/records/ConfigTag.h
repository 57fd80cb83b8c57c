// The command-tag records, grouped as they are small and always used together. The configuration
// agent writes them; the tagged-route machine only reads them.
//   ConfigTag::ConfigTagIdState  the names of the tag ids (tagIdToTagStr)
//   ConfigTag::ConfigTagStatus   the state of each named tag (configTagEntry, owned entries)
//   ConfigTag::ConfigTagEntry    one tag's operState
// A route names its tag by ConfigTagId; a tag is enabled unless its operState is 0 or 2.
//
// Iterator contract of the collections: that of Zel::HashMap2018 (hash order; any member may be
// deleted during a walk, and resuming from a saved key visits exactly the members after it).
#pragma once

#include <cstdint>

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"

namespace ConfigTag {

// The id by which a route names its command tag.
using ConfigTagId = std::uint16_t;
// The state of a tag: an enumeration of the configuration agent, of which only the enabled test
// below matters here.
using OperState = std::uint8_t;

// A tag in state 0 or 2 is not enabled; every other state is.
[[nodiscard]] constexpr bool operStateEnabled(OperState s) noexcept { return (s & ~OperState(0x02)) != 0; }

class ConfigTagEntry : public Zel::Entity {
 public:
  ZEL_CONST(Zel::String, name)
  ZEL_ATTR(OperState, operState, 131)

  [[nodiscard]] bool enabled() const noexcept { return operStateEnabled(operState()); }

 protected:
  friend struct Zel::Factory;
  explicit ConfigTagEntry(Zel::String const& name) : name_(name) {}
};

class ConfigTagStatus : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<ConfigTagStatus> ConfigTagStatusIs();

  ZEL_OWNED_MAP(Zel::String, ConfigTagEntry, configTagEntry, 258)

 protected:
  friend struct Zel::Factory;
  ConfigTagStatus() = default;
};

class ConfigTagIdState : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<ConfigTagIdState> ConfigTagIdStateIs();

  // Tag id to the tag's name; an absent id reads as the empty name.
  ZEL_MAP(ConfigTagId, Zel::String, tagIdToTagStr, 130)

 protected:
  friend struct Zel::Factory;
  ConfigTagIdState() = default;
};

}  // namespace ConfigTag
