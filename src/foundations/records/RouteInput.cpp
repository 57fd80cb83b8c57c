#include "foundations/records/RouteInput.h"

namespace Routing {

Quill::Ptr<RouteInput> RouteInput::RouteInputIs(Zel::String const& name) { return Zel::make<RouteInput>(name); }

RouteInput::RouteInput(Zel::String const& name) : name_(name) {}

}  // namespace Routing
