// Routing::Rib::MmapIdAllocator: an id allocator whose current id lives in a memory-mapped file,
// in the 8-byte slot `offset` of the file at `path`, so that ids stay unique across restarts of
// the process. It owns the mapping (not the file, which outlives it) and writes only its slot. The
// file is created when absent and grown to hold the slot; a relative path is taken inside
// directory(). If the file cannot be opened or mapped, idPtr() is null (see IdAllocator).
// Several allocators may share one file at different slots. Not thread-safe.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundations/rib/IdAllocator.h"

namespace Routing::Rib {

// The slot of an id in its file: slot n is bytes [8n, 8n + 8).
using MmapOffset = std::uint32_t;

class MmapIdAllocator : public IdAllocator {
 public:
  [[nodiscard]] static Quill::Ptr<MmapIdAllocator> MmapIdAllocatorIs(std::string_view path, MmapOffset offset,
                                                                     Id maxId = kNoLimit);

  // Where relative paths go: $BOWLINE_ID_DIR if set, else "bowline-ids" in the system's temporary
  // directory. Created on first use.
  [[nodiscard]] static std::string directory();

  [[nodiscard]] std::string const& path() const noexcept { return path_; }
  [[nodiscard]] MmapOffset offset() const noexcept { return offset_; }
  [[nodiscard]] bool isMapped() const noexcept { return map_ != nullptr; }
  // Why the mapping failed; empty when it is mapped.
  [[nodiscard]] std::string const& error() const noexcept { return error_; }

 protected:
  friend struct Zel::Factory;
  MmapIdAllocator(std::string_view path, MmapOffset offset, Id maxId);
  ~MmapIdAllocator() override;

 private:
  void doMap();

  std::string path_;
  MmapOffset offset_;
  void* map_ = nullptr;
  std::size_t mapBytes_ = 0;
  std::string error_;
};

}  // namespace Routing::Rib
