// The VTEP source-IP validation helper of one route list: it will count, per remote VTEP, the EVPN
// vias that ask for source validation and write the counts to VtepSipValidationStatus. For now it
// keeps its inputs and counts nothing, which is right for every route without EVPN vias. Owned by
// the RouteConfigSm (static mode) or by each route-input user's watcher.
#pragma once

#include "foundations/records/Route.h"
#include "foundations/records/RouteList.h"
#include "foundations/records/VtepSipValidationStatus.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/TaskScheduler.h"

namespace Routing::Static {

class SipValidationHelper : public Zel::Entity {
 public:
  using RouteListConstPtr = Quill::Ptr<RouteList const>;
  [[nodiscard]] static Quill::Ptr<SipValidationHelper> SipValidationHelperIs(
      Halyard::TaskScheduler* scheduler, Quill::Ptr<Vxlan::VtepSipValidationStatus> vtepSipValidationStatus,
      RouteListConstPtr configDynamic, RouteListConstPtr config = nullptr) {
    return Zel::make<SipValidationHelper>(scheduler, std::move(vtepSipValidationStatus), std::move(configDynamic),
                                          std::move(config));
  }
  ZEL_CONST(Quill::Ptr<Vxlan::VtepSipValidationStatus>, vtepSipValidationStatus)
  ZEL_CONST(RouteListConstPtr, configDynamic)
  ZEL_CONST(RouteListConstPtr, config)

  void handleSipValidationRoute(RouteKey const&, bool /*dynamic*/) {}
  void maybeUpdateVtepSipValidation(Route const&, Via const&, bool /*viaPresent*/) {}
  void doRouteVtepSipValidationDelete(Route const&) {}
  // A via change that concerned only the source validation flag of an EVPN via.
  [[nodiscard]] bool checkOnlyEvpnViaVtepSipValidationChange(Route const&, Via const&) const { return false; }

 protected:
  friend struct Zel::Factory;
  SipValidationHelper(Halyard::TaskScheduler* scheduler, Quill::Ptr<Vxlan::VtepSipValidationStatus> status,
                      RouteListConstPtr configDynamic, RouteListConstPtr config)
      : vtepSipValidationStatus_(std::move(status)),
        configDynamic_(std::move(configDynamic)),
        config_(std::move(config)),
        scheduler_(scheduler) {}

 private:
  Halyard::TaskScheduler* scheduler_;
};

}  // namespace Routing::Static
