#include "foundations/rib/ViaConfigLib.h"

#include <map>
#include <string>

namespace Routing::ViaConfigLib {

namespace {

// Each table with the number of roots that registered it (an old root may go after its successor came).
std::map<std::string, unsigned, std::less<>>& allVrfTables() {
  static std::map<std::string, unsigned, std::less<>> tables;
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
  ++allVrfTables()[tableName(protocol, transport, rib)];
}

void allVrfViaConfigDel(std::string_view protocol, std::string_view transport, std::string_view rib) {
  auto it = allVrfTables().find(tableName(protocol, transport, rib));
  if (it != allVrfTables().end() && --it->second == 0) allVrfTables().erase(it);
}

}  // namespace Routing::ViaConfigLib
