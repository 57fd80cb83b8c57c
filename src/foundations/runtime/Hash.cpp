#include "foundations/runtime/Hash.h"

#include <chrono>
#include <cstdlib>
#include <random>

namespace Zel::HashHelper {

namespace {
std::uint32_t makeSeed() {
  if (char const* fixed = std::getenv("BOWLINE_HASH_SEED")) {
    return std::uint32_t(std::strtoul(fixed, nullptr, 0));
  }
  std::random_device rd;
  return rd() ^ std::uint32_t(std::chrono::steady_clock::now().time_since_epoch().count());
}
}  // namespace

std::uint32_t hashSeed32() {
  static std::uint32_t const seed = makeSeed();
  return seed;
}

}  // namespace Zel::HashHelper
