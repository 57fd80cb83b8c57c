// Host::InputFile: a file the host program reads whole (a scenario or a route file), mapped into
// memory read-only and unmapped when it goes. Before anything is opened the path is checked to be
// a regular file - a FIFO would block the open, a device or a directory has no end - and no larger
// than the caller's limit; the open itself never blocks (O_NONBLOCK), and the file is checked again
// once open, so that a path swapped in between is still refused.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Host {

class InputFile {
 public:
  // Maps `path`; error() tells why it could not, e.g. "is a directory, not a regular file" or
  // "is 2147483648 bytes; at most 1073741824 are read".
  InputFile(std::string const& path, std::uint64_t maxBytes);
  ~InputFile();
  InputFile(InputFile const&) = delete;
  InputFile& operator=(InputFile const&) = delete;

  [[nodiscard]] bool ok() const noexcept { return error_.empty(); }
  [[nodiscard]] std::string const& error() const noexcept { return error_; }
  [[nodiscard]] std::string_view text() const noexcept { return {data_, size_}; }

 private:
  char const* data_ = nullptr;
  std::size_t size_ = 0;
  std::string error_;
};

}  // namespace Host
