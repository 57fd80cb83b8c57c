// Plinth: the slab allocator behind every factory of the runtime. Small blocks come from per-size
// free lists carved out of large chunks, so that millions of records cost no malloc header each;
// allocations are counted per type so that a test can prove that a teardown released everything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <typeinfo>
#include <vector>

namespace Plinth {

// Raw blocks of a size; the same size must be given back to slabFree.
void* slabAlloc(std::size_t size);
void slabFree(void* pointer, std::size_t size) noexcept;

// Typed forms: the same blocks, counted under the type.
void* slabAlloc(std::size_t size, std::type_info const& type);
void slabFree(void* pointer, std::size_t size, std::type_info const& type) noexcept;

struct TypeStats {
  std::string name;        // demangled type name
  std::int64_t live = 0;   // objects allocated and not yet freed
  std::int64_t total = 0;  // objects ever allocated
  std::int64_t bytes = 0;  // bytes currently allocated
};

// Live objects of a type, and of all types.
std::int64_t liveCount(std::type_info const& type);
template <class T>
std::int64_t liveCount() {
  return liveCount(typeid(T));
}
std::int64_t liveCountAll();
std::int64_t liveBytesAll();
// Every type that was ever allocated, with its counts, sorted by name.
std::vector<TypeStats> typeStats();

// Bytes held from the system by the slab (free lists included) and by large blocks.
std::size_t bytesReserved();

}  // namespace Plinth
