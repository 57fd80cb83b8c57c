// Seeded hashing for the runtime's collections. Every key type offers hash(seed); a collection
// hashes with the process seed XOR a constant of its own, so that two collections keyed alike walk
// their keys in unrelated orders, and another process walks them in another order again.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace Zel {

namespace HashHelper {
// The process seed: random per process unless BOWLINE_HASH_SEED gives it (to reproduce a run).
std::uint32_t hashSeed32();
}  // namespace HashHelper

// 64-bit mixing step (a multiply-xorshift finaliser); good avalanche at a few cycles.
constexpr std::uint64_t hashMix64(std::uint64_t x) {
  x ^= x >> 32;
  x *= 0xd6e8feb86659fd93ULL;
  x ^= x >> 32;
  x *= 0xd6e8feb86659fd93ULL;
  x ^= x >> 32;
  return x;
}

// Combines a 32-bit seed with the words of a key.
class HashBuilder {
 public:
  explicit constexpr HashBuilder(std::uint32_t seed) : h_(seed * 0x9e3779b97f4a7c15ULL + 0x632be59bd9b4e019ULL) {}
  constexpr HashBuilder& add(std::uint64_t word) {
    h_ = hashMix64(h_ ^ (word + 0x9e3779b97f4a7c15ULL + (h_ << 6) + (h_ >> 2)));
    return *this;
  }
  HashBuilder& addBytes(void const* data, std::size_t n) {
    auto const* p = static_cast<unsigned char const*>(data);
    while (n >= 8) {
      std::uint64_t w;
      std::memcpy(&w, p, 8);
      add(w);
      p += 8;
      n -= 8;
    }
    if (n) {
      std::uint64_t w = 0;
      std::memcpy(&w, p, n);
      add(w ^ (std::uint64_t(n) << 56));
    }
    return *this;
  }
  [[nodiscard]] constexpr std::uint32_t value() const { return std::uint32_t(hashMix64(h_) >> 32); }

 private:
  std::uint64_t h_;
};

// Hash of a key under a seed: integers and enums directly, other types through key.hash(seed).
template <class K, class = void>
struct Hash {
  std::uint32_t operator()(K const& k, std::uint32_t seed) const { return k.hash(seed); }
};
template <class K>
struct Hash<K, std::enable_if_t<std::is_integral_v<K> || std::is_enum_v<K>>> {
  std::uint32_t operator()(K k, std::uint32_t seed) const {
    return HashBuilder(seed).add(std::uint64_t(k)).value();
  }
};
template <>
struct Hash<std::string_view> {
  std::uint32_t operator()(std::string_view s, std::uint32_t seed) const {
    return HashBuilder(seed).addBytes(s.data(), s.size()).value();
  }
};
template <class T>
struct Hash<T*> {
  std::uint32_t operator()(T* p, std::uint32_t seed) const {
    return HashBuilder(seed).add(reinterpret_cast<std::uintptr_t>(p)).value();
  }
};

template <class K>
std::uint32_t hashOf(K const& k, std::uint32_t seed) {
  return Hash<K>()(k, seed);
}

}  // namespace Zel

namespace Halyard {
// Mixing of a value into a hash, as the scheduler's tables use it.
struct HashMix {
  static constexpr std::uint64_t mix(std::uint64_t x) { return Zel::hashMix64(x); }
};
}  // namespace Halyard
