#include "host/HeldRoutes.h"

#include <algorithm>
#include <tuple>

namespace Host {

namespace {
bool before(Platform::RibReadout::InstalledRoute const& a, Platform::RibReadout::InstalledRoute const& b) {
  return std::tie(a.prefix, a.protocol) < std::tie(b.prefix, b.protocol);
}
}  // namespace

void HeldRoutes::holdIs(std::string const& vrf, int family, Routes routes) {
  if (routes.empty()) {
    held_.erase({vrf, family});
    return;
  }
  held_[{vrf, family}] = std::move(routes);
}

void HeldRoutes::release(std::string const& vrf, int family) { held_.erase({vrf, family}); }

void HeldRoutes::releaseVrf(std::string const& vrf) {
  for (int f = 0; f < 2; ++f) release(vrf, f);
}

bool HeldRoutes::holding(std::string const& vrf, int family) const { return held_.contains({vrf, family}); }

HeldRoutes::Routes HeldRoutes::merged(std::string const& vrf, int family, Routes live) const {
  auto it = held_.find({vrf, family});
  if (it == held_.end()) return live;
  Routes out;
  out.reserve(live.size() + it->second.size());
  auto l = live.begin();
  for (auto const& h : it->second) {
    while (l != live.end() && before(*l, h)) out.push_back(std::move(*l++));
    if (l != live.end() && !before(h, *l)) continue;  // written again: the live route stands
    out.push_back(h);
    out.back().stale = true;
  }
  while (l != live.end()) out.push_back(std::move(*l++));
  return out;
}

}  // namespace Host
