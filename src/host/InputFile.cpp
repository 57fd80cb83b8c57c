#include "host/InputFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include <fmt/format.h>

namespace Host {

namespace {

// What a file of this mode is, when it is not a regular file; null when it is.
[[nodiscard]] char const* notRegular(mode_t mode) noexcept {
  if (S_ISREG(mode)) return nullptr;
  if (S_ISDIR(mode)) return "is a directory, not a regular file";
  if (S_ISFIFO(mode)) return "is a FIFO, not a regular file";
  if (S_ISCHR(mode) || S_ISBLK(mode)) return "is a device, not a regular file";
  if (S_ISSOCK(mode)) return "is a socket, not a regular file";
  return "is not a regular file";
}

[[nodiscard]] std::string kindOrSizeError(struct stat const& st, std::uint64_t maxBytes) {
  if (char const* kind = notRegular(st.st_mode)) return kind;
  if (std::uint64_t(st.st_size) > maxBytes) {
    return fmt::format("is {} bytes; at most {} are read", std::uint64_t(st.st_size), maxBytes);
  }
  return {};
}

}  // namespace

InputFile::InputFile(std::string const& path, std::uint64_t maxBytes) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) {
    error_ = std::strerror(errno);
    return;
  }
  if (error_ = kindOrSizeError(st, maxBytes); !error_.empty()) return;
  int const fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) {
    error_ = std::strerror(errno);
    return;
  }
  if (::fstat(fd, &st) != 0) {
    error_ = std::strerror(errno);
  } else if (error_ = kindOrSizeError(st, maxBytes); error_.empty() && st.st_size > 0) {
    void* p = ::mmap(nullptr, std::size_t(st.st_size), PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
    if (p == MAP_FAILED) {
      error_ = std::strerror(errno);
    } else {
      data_ = static_cast<char const*>(p);
      size_ = std::size_t(st.st_size);
      ::madvise(p, size_, MADV_SEQUENTIAL);
    }
  }
  ::close(fd);
}

InputFile::~InputFile() {
  if (data_) ::munmap(const_cast<char*>(data_), size_);
}

}  // namespace Host
