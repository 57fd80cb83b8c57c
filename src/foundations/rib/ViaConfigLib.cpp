#include "foundations/rib/ViaConfigLib.h"

#include <set>
#include <string>

namespace Routing::ViaConfigLib {

namespace {

std::set<std::string>& allVrfTables() {
  static std::set<std::string> tables;
  return tables;
}

std::string tableName(std::string_view protocol, std::string_view transport, std::string_view rib) {
  std::string name(protocol);
  name.append("/").append(transport).append("/").append(rib);
  return name;
}

}  // namespace

Quill::String getRibStringFromIpViaConfig(Rib::Ip::ViaConfig const& viaConfig) { return viaConfig.rib(); }

bool isAllVrfViaConfig(std::string_view protocol, std::string_view transport, std::string_view rib) {
  return allVrfTables().contains(tableName(protocol, transport, rib));
}

void allVrfViaConfigIs(std::string_view protocol, std::string_view transport, std::string_view rib) {
  allVrfTables().insert(tableName(protocol, transport, rib));
}

void allVrfViaConfigDel(std::string_view protocol, std::string_view transport, std::string_view rib) {
  allVrfTables().erase(tableName(protocol, transport, rib));
}

}  // namespace Routing::ViaConfigLib
