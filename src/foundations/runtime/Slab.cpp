#include "foundations/runtime/Slab.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <unordered_map>

namespace Plinth {

namespace {

constexpr std::size_t kGranule = 16;
constexpr std::size_t kMaxSlab = 512;  // larger blocks go to malloc
constexpr std::size_t kClasses = kMaxSlab / kGranule;
constexpr std::size_t kChunk = 256 * 1024;

struct FreeBlock {
  FreeBlock* next;
};

struct Slabs {
  FreeBlock* free[kClasses] = {};
  char* chunkCursor = nullptr;
  char* chunkEnd = nullptr;
  std::vector<void*> chunks;
  std::size_t reserved = 0;
  ~Slabs() {
    for (void* c : chunks) std::free(c);
  }
};

Slabs& slabs() {
  // Never destroyed: objects freed during static destruction still find their free lists.
  static Slabs* s = new Slabs();
  return *s;
}

struct Registry {
  std::unordered_map<std::type_info const*, TypeStats> byType;
  std::type_info const* lastType = nullptr;
  TypeStats* lastStats = nullptr;
  std::int64_t live = 0;
  std::int64_t bytes = 0;
  TypeStats& stats(std::type_info const& type) {
    if (lastType == &type) return *lastStats;
    auto [it, fresh] = byType.try_emplace(&type);
    if (fresh) {
      int status = 0;
      std::unique_ptr<char, void (*)(void*)> dem(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                 std::free);
      it->second.name = status == 0 && dem ? dem.get() : type.name();
    }
    lastType = &type;
    lastStats = &it->second;
    return it->second;
  }
};

Registry& registry() {
  static Registry* r = new Registry();
  return *r;
}

std::size_t classOf(std::size_t size) { return (size + kGranule - 1) / kGranule - 1; }

}  // namespace

void* slabAlloc(std::size_t size) {
  if (size == 0) size = 1;
  if (size > kMaxSlab) {
    void* p = std::malloc(size);
    if (!p) throw std::bad_alloc();
    slabs().reserved += size;
    return p;
  }
  Slabs& s = slabs();
  std::size_t c = classOf(size);
  if (FreeBlock* b = s.free[c]) {
    s.free[c] = b->next;
    return b;
  }
  std::size_t rounded = (c + 1) * kGranule;
  if (s.chunkCursor == nullptr || std::size_t(s.chunkEnd - s.chunkCursor) < rounded) {
    char* chunk = static_cast<char*>(std::malloc(kChunk));
    if (!chunk) throw std::bad_alloc();
    s.chunks.push_back(chunk);
    s.reserved += kChunk;
    s.chunkCursor = chunk;
    s.chunkEnd = chunk + kChunk;
  }
  void* p = s.chunkCursor;
  s.chunkCursor += rounded;
  return p;
}

void slabFree(void* pointer, std::size_t size) noexcept {
  if (!pointer) return;
  if (size == 0) size = 1;
  if (size > kMaxSlab) {
    slabs().reserved -= size;
    std::free(pointer);
    return;
  }
  Slabs& s = slabs();
  std::size_t c = classOf(size);
  auto* b = static_cast<FreeBlock*>(pointer);
  b->next = s.free[c];
  s.free[c] = b;
}

void* slabAlloc(std::size_t size, std::type_info const& type) {
  void* p = slabAlloc(size);
  Registry& r = registry();
  TypeStats& st = r.stats(type);
  ++st.live;
  ++st.total;
  st.bytes += std::int64_t(size);
  ++r.live;
  r.bytes += std::int64_t(size);
  return p;
}

void slabFree(void* pointer, std::size_t size, std::type_info const& type) noexcept {
  if (!pointer) return;
  Registry& r = registry();
  TypeStats& st = r.stats(type);
  --st.live;
  st.bytes -= std::int64_t(size);
  --r.live;
  r.bytes -= std::int64_t(size);
  slabFree(pointer, size);
}

std::int64_t liveCount(std::type_info const& type) {
  auto& m = registry().byType;
  auto it = m.find(&type);
  return it == m.end() ? 0 : it->second.live;
}

std::int64_t liveCountAll() { return registry().live; }
std::int64_t liveBytesAll() { return registry().bytes; }

std::vector<TypeStats> typeStats() {
  std::vector<TypeStats> out;
  for (auto const& [t, st] : registry().byType) out.push_back(st);
  std::sort(out.begin(), out.end(), [](TypeStats const& a, TypeStats const& b) { return a.name < b.name; });
  return out;
}

std::size_t bytesReserved() { return slabs().reserved; }

}  // namespace Plinth
