// The review of RouteConfigSm: the backlog of keys, the review of all routes (yielding between
// routes with a bookmark), the choice among static, dynamic and leaked configuration for a key,
// and the end of a review with the readiness it gives.
#include "static/RouteConfigSm.h"

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Flit.h"
#include "foundations/runtime/Trace.h"
#include "routecache/RouteCacheRouteHelperSm.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

// Statements of a machine that knows its VRF begin with "Vrf: ", the name and ", ".
#define RC_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Static {

// ---------------------------------------------------------------------------------------------
// The backlog and the review of all routes.

RouteConfigSm::ReviewState RouteConfigSm::beforeReview() const {
  if (!initialized()) return SUSPENDED;
  if (auto const& gr = grState(); gr && gr->gracefulRestart()) {
    return gr->startReadyVerification() ? CONTINUE : SUSPENDED;
  }
  return CONTINUE;
}

void RouteConfigSm::doBacklogReview() {
  if (beforeReview() != CONTINUE) {
    RC_TRACE(8, "doBacklogReview suspended, " << backlogSize() << " keys wait");
    return;
  }
  auto progress = backlogRun(*routeReviewTask(), [this](RouteKey const& key) { reviewRoute(key); });
  RC_TRACE(9, "doBacklogReview " << progress);
  if (!progress.pending) finishReview();
}

void RouteConfigSm::handleRoutes() {
  if (isStaticMode())
    srHandleRoutes();
  else
    riHandleRoutes();
}

void RouteConfigSm::srHandleRoutes() {
  if (!initialized()) return;
  RC_TRACE(8, "srHandleRoutes reviewing all routes");
  reviewKeyBookmark_.reset();
  reviewKeyBookmarkDynamic_.reset();
  // reviewKeyBookmarkLeak stays: a suspended leak walk ends before the others start over.
  if (reviewKeyBookmarkLeak_) reviewAllAgain_ = true;
  reviewAllRoutesTask()->scheduleTask();
}

void RouteConfigSm::riHandleRoutes() {
  if (!initialized()) return;
  RC_TRACE(8, "riHandleRoutes");
  reviewKeyBookmark_.reset();
  reviewConfigBookmarkIs(Quill::String());
  reviewAllRoutesTask()->scheduleTask();
}

void RouteConfigSm::reviewAllRoutes() {
  if (beforeReview() != CONTINUE) return;
  if (reviewAllRoutesImpl()) {
    // Every route has been reviewed since the last change of the global preference.
    formerGlobalPrefs_.clear();
    finishReview();
  } else {
    RC_TRACE(8, "reviewAllRoutes Review suspended");
  }
}

bool RouteConfigSm::reviewAllRoutesImpl() {
  return isStaticMode() ? srReviewAllRoutesImpl() : riReviewAllRoutesImpl();
}

bool RouteConfigSm::srReviewAllRoutesImpl() {
  if (reviewKeyBookmarkLeak_) {
    if (!reviewAllRoutesByConfig(leakConfig().get(), reviewKeyBookmarkLeak_)) return false;
    if (!reviewAllAgain_) return true;
    // Asked for again while that walk was suspended: the static and dynamic routes were not
    // reviewed since. The next run starts over.
    reviewAllAgain_ = false;
    reviewAllRoutesTask()->scheduleTask();
    return false;
  }
  if (!reviewKeyBookmarkDynamic_) {
    if (!reviewAllRoutesByConfig(srConfig().get(), reviewKeyBookmark_)) return false;
  }
  if (srConfigDynamic()) {
    if (!reviewAllRoutesByConfig(srConfigDynamic().get(), reviewKeyBookmarkDynamic_)) return false;
  }
  if (!leakConfig()) return true;
  return reviewAllRoutesByConfig(leakConfig().get(), reviewKeyBookmarkLeak_);
}

namespace {

// The routes a review of all routes walks in a route list, or in the leaked routes.
auto const& routesOf(RouteList const& config) { return config.routeColl(); }
auto const& routesOf(Protocol::LeakRouteConfig const& config) { return config.leakRouteColl(); }

// The walk of a review of all routes over one collection.
template <class Map, class Review>
bool reviewWalk(Halyard::Task* task, Map const& map, std::optional<RouteKey>& bookmark, Review&& review,
                L3::VrfName const& vrfName) {
  if (!task || !task->taskCurrentlyRunning()) return true;
  auto it = bookmark ? map.iteratorAt(*bookmark) : map.iterator();
  bookmark.reset();
  std::uint64_t count = 0;
  while (it) {
    RouteKey const key = it.key();
    review(key);
    it.advance();
    ++count;
    if (it && task->taskShouldYield()) {
      bookmark = it.key();
      task->scheduleTask();
      task->taskWorkCountInc(count);
      TRACE(8, "Vrf: " << vrfName << ", reviewAllRoutesByConfig route yielded with key: " << *bookmark);
      return false;
    }
  }
  task->taskWorkCountInc(count);
  return true;
}

}  // namespace

template <class Config>
bool RouteConfigSm::reviewAllRoutesByConfig(Config const* config, std::optional<RouteKey>& bookmark) {
  if (!config) {
    bookmark.reset();
    return true;
  }
  return reviewWalk(reviewAllRoutesTask(), routesOf(*config), bookmark,
                    [this](RouteKey const& key) { reviewRoute(key); },
                    vrfName_);
}

bool RouteConfigSm::riReviewAllRoutesImpl() {
  auto const& users = riConfigByUser();
  if (!users) {
    reviewConfigBookmarkIs(Quill::String());
    return true;
  }
  auto const& coll = users->configColl();
  auto it = coll.iterator();
  if (!reviewConfigBookmark().empty()) {
    it = coll.iteratorAt(reviewConfigBookmark());
    if (!it || it.key() != reviewConfigBookmark()) reviewKeyBookmark_.reset();
  }
  for (; it; it.advance()) {
    Quill::String const user = it.key();
    RouteList const* list = it.value().get();
    if (!reviewAllRoutesByConfig(list, reviewKeyBookmark_)) {
      reviewConfigBookmarkIs(user);
      return false;
    }
  }
  reviewConfigBookmarkIs(Quill::String());
  return true;
}

// ---------------------------------------------------------------------------------------------
// Choosing the source of a key.

void RouteConfigSm::reviewRoute(RouteKey const& key) {
  if (isStaticMode())
    srReviewRoute(key);
  else
    riReviewRoute(key);
}

void RouteConfigSm::srReviewRoute(RouteKey const& key) {
  QUILL_ASSERT(leakConfig(), "leakConfig()");
  RouteConstPtr configRoute = srConfig() ? RouteConstPtr(srConfig()->route(key)) : nullptr;
  RouteConstPtr dynamicRoute = srConfigDynamic() ? RouteConstPtr(srConfigDynamic()->route(key)) : nullptr;
  if (!configRoute) RC_TRACE(9, "srReviewRoute Choosing dynamic route to process");
  RouteConstPtr chosen = configRoute ? configRoute : dynamicRoute;
  if (chosen) {
    if (leakRouteInUseHas(key)) handleLeakedRouteDel(key);
    auto statusRoute = status_->route(key.prefix());
    if (statusRoute && statusRoute->routePrefHas(srEntryPref(key)) && configRoute && dynamicRoute) {
      RC_TRACE(6, "RouteKey " << key.prefix() << " is present in config and dynamic");
      srHandleRouteDelete(*dynamicRoute, false);
    }
    handleRouteInit(*chosen, vrfId_);
    return;
  }
  if (routeHas(key)) return;  // its deletion reactor finishes the job
  LeakRouteConstPtr lr = leakConfig()->leakRoute(key);
  if (lr) {
    if (leakRouteInUse(key) != lr) leakRouteInUseIs(lr);
    QUILL_ASSERT(lr->vrfAf().af() == containerKey_.af(), "lr->vrfAf().af() == containerKey().af()");
    QUILL_ASSERT(lr->route(), "configRoute");
    handleRouteInit(*lr->route(), lr->vrfAf().vrfId());
    return;
  }
  if (leakRouteInUseHas(key)) handleLeakedRouteDel(key);
}

void RouteConfigSm::riReviewRoute(RouteKey const& key) {
  Quill::String user;
  RouteConstPtr route = isStaticMode() ? srRouteFromConfig(key) : riRouteFromConfig(key, &user);
  if (route) {
    if (!isStaticMode()) riProgrammedUserIs(key, user);
    handleRouteInit(*route, vrfId_);
    return;
  }
  if (routeCacheRouteHelperSm_ && routeCacheRouteHelperSm_->routeKeyPresentInRouteCache(vrfId_, key)) {
    routeCacheRouteHelperSm_->deleteRouteFromRouteCache(vrfId_, key);
    return;
  }
  handleRouteKeyDelete(key);
}

RouteConfigSm::RouteConstPtr RouteConfigSm::routeFromConfig(RouteKey const& key) const {
  return isStaticMode() ? srRouteFromConfig(key) : riRouteFromConfig(key);
}

RouteConfigSm::RouteConstPtr RouteConfigSm::srRouteFromConfig(RouteKey const& key) const {
  return srConfig() ? RouteConstPtr(srConfig()->route(key)) : nullptr;
}

// ---------------------------------------------------------------------------------------------
// The end of a review, and readiness.

void RouteConfigSm::finishReview() {
  status_->initializedIs(true);
  if (ipViaConfig_) ipViaConfig_->restartingVrfDel(vrfId_);
  if (evpnViaConfig_) evpnViaConfig_->restartingVrfDel(vrfId_);
  maybeSetRoutesReady();
  if (routeCacheRouteHelperSm_) routeCacheRouteHelperSm_->maybeRescheduleStaleRouteRemovalTask();
  RC_TRACE(8, "finishReview Finished review");
  FLIT(8, "RouteConfigSm: Finished review");
}

void RouteConfigSm::maybeSetRoutesReady() {
  auto const& gr = grState();
  if (!gr || !vrfReadyStatus_) return;
  if (gr->gracefulRestart() && !gr->startReadyVerification()) return;
  if (containerKey_.af() == Ondex::AddressFamily::ipv4) {
    if (!vrfReadyStatus_->v4RoutesReady()) {
      vrfReadyStatus_->v4RoutesReadyIs(true);
      RC_TRACE(0, "Marking v4RoutesReady for vrf: " << vrfName_);
    }
  } else if (!vrfReadyStatus_->v6RoutesReady()) {
    vrfReadyStatus_->v6RoutesReadyIs(true);
    RC_TRACE(0, "Marking v6RoutesReady for vrf: " << vrfName_);
  }
}

}  // namespace Routing::Static
