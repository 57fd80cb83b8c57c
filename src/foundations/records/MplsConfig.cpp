#include "foundations/records/MplsConfig.h"

namespace Mpls {

Quill::Ptr<Config> Config::ConfigIs() { return Zel::make<Config>(); }

}  // namespace Mpls
