#include "foundations/rib/MmapIdAllocator.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace Routing::Rib {

Quill::Ptr<MmapIdAllocator> MmapIdAllocator::MmapIdAllocatorIs(std::string_view path, MmapOffset offset, Id maxId) {
  return Zel::make<MmapIdAllocator>(path, offset, maxId);
}

std::string MmapIdAllocator::directory() {
  if (char const* dir = std::getenv("BOWLINE_ID_DIR"); dir && *dir) return dir;
  std::error_code ec;
  std::filesystem::path tmp = std::filesystem::temp_directory_path(ec);
  if (ec) tmp = "/tmp";
  return (tmp / "bowline-ids").string();
}

MmapIdAllocator::MmapIdAllocator(std::string_view path, MmapOffset offset, Id maxId)
    : IdAllocator(maxId), offset_(offset) {
  std::filesystem::path p(path);
  if (p.is_relative()) p = std::filesystem::path(directory()) / p;
  path_ = p.string();
  doMap();
}

MmapIdAllocator::~MmapIdAllocator() {
  if (map_) munmap(map_, mapBytes_);
}

void MmapIdAllocator::doMap() {
  idPtrIs(nullptr);
  std::error_code ec;
  std::filesystem::path const parent = std::filesystem::path(path_).parent_path();
  if (!parent.empty()) std::filesystem::create_directories(parent, ec);

  int const fd = ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) {
    error_ = "open " + path_ + ": " + std::strerror(errno);
    return;
  }
  std::size_t const need = (std::size_t(offset_) + 1) * sizeof(Id);
  struct stat st {};
  if (::fstat(fd, &st) != 0 || (std::size_t(st.st_size) < need && ::ftruncate(fd, off_t(need)) != 0)) {
    error_ = "size " + path_ + ": " + std::strerror(errno);
    ::close(fd);
    return;
  }
  void* m = ::mmap(nullptr, need, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  int const mapErrno = errno;
  ::close(fd);  // the mapping keeps the file
  if (m == MAP_FAILED) {
    error_ = "mmap " + path_ + ": " + std::strerror(mapErrno);
    return;
  }
  map_ = m;
  mapBytes_ = need;
  idPtrIs(static_cast<Id*>(m) + offset_);
}

}  // namespace Routing::Rib
