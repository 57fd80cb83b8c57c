#include "foundations/runtime/Dualog.h"

namespace Dualog {

FlitConverter::FlitConverter(Zel::TraceHandle const& handle, int level, Flit::MsgSite& site, char const* file,
                             int line, char const* function) noexcept
    : handle_(handle), level_(level), site_(site), file_(file), line_(line), function_(function) {}

}  // namespace Dualog
