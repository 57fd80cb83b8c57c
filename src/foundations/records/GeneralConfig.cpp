#include "foundations/records/GeneralConfig.h"

namespace Routing::General {

Quill::Ptr<Config> Config::ConfigIs() { return Zel::make<Config>(); }

}  // namespace Routing::General
