// Which via tables are the all-VRF tables of a protocol, transport and RIB instance: the protocol
// root registers each one it mounts at the all-VRF path; a per-VRF container asks, to know whether
// it must drive its table itself. A process-wide register, written at start by the roots.
#pragma once

#include <string_view>

#include "foundations/rib/IpViaConfig.h"
#include "foundations/runtime/String.h"

namespace Routing::ViaConfigLib {

// The RIB instance of the table: "rib" or "mrib".
[[nodiscard]] Quill::String getRibStringFromIpViaConfig(Rib::Ip::ViaConfig const& viaConfig);
// True when the protocol ("staticConfig"), transport ("ipv4") and RIB ("rib") have a table mounted
// at the all-VRF path.
[[nodiscard]] bool isAllVrfViaConfig(std::string_view protocol, std::string_view transport, std::string_view rib);
// Registrations are counted: the table stays all-VRF until each registration is taken back.
void allVrfViaConfigIs(std::string_view protocol, std::string_view transport, std::string_view rib);
void allVrfViaConfigDel(std::string_view protocol, std::string_view transport, std::string_view rib);

}  // namespace Routing::ViaConfigLib
