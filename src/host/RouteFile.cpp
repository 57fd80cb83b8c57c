#include "host/RouteFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

#include <fmt/format.h>

namespace Host {

namespace {

[[nodiscard]] constexpr bool isBlank(char c) noexcept { return c == ' ' || c == '\t' || c == '\r'; }
[[nodiscard]] constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// A decimal number of at most `maxDigits` digits filling the whole text, without a leading zero
// unless it is "0"; nothing when it is not one or exceeds `max`.
[[nodiscard]] std::optional<unsigned> decimal(std::string_view t, std::size_t maxDigits, unsigned max) noexcept {
  if (t.empty() || t.size() > maxDigits || (t.size() > 1 && t[0] == '0')) return std::nullopt;
  unsigned v = 0;
  for (char c : t) {
    if (!isDigit(c)) return std::nullopt;
    v = v * 10 + unsigned(c - '0');
  }
  if (v > max) return std::nullopt;
  return v;
}

// A dotted quad, read in place in one pass: the common case of every large route file. Four
// decimal octets of at most three digits, no leading zeros (as inet_pton takes them).
[[nodiscard]] std::optional<Ondex::IpGenAddr> v4Address(std::string_view t) noexcept {
  std::uint32_t value = 0;
  unsigned octet = 0, digits = 0, dots = 0;
  for (char c : t) {
    if (isDigit(c)) {
      if (digits > 0 && octet == 0) return std::nullopt;  // a leading zero
      octet = octet * 10 + unsigned(c - '0');
      if (++digits > 3 || octet > 255) return std::nullopt;
    } else if (c == '.' && digits > 0 && dots < 3) {
      value = value << 8 | octet;
      octet = digits = 0;
      ++dots;
    } else {
      return std::nullopt;
    }
  }
  if (dots != 3 || digits == 0) return std::nullopt;
  return Ondex::IpGenAddr::fromV4(value << 8 | octet);
}

[[nodiscard]] std::optional<Ondex::IpGenAddr> address(std::string_view t) noexcept {
  if (t.find(':') == std::string_view::npos) return v4Address(t);
  if (t.empty()) return std::nullopt;
  return Ondex::IpGenAddr::fromString(t);  // IPv6: parsed on the stack
}

[[nodiscard]] std::optional<Ondex::IpGenPrefix> prefix(std::string_view t) noexcept {
  std::size_t const slash = t.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  auto addr = address(t.substr(0, slash));
  if (!addr) return std::nullopt;
  auto len = decimal(t.substr(slash + 1), 3, addr->af().bits());
  if (!len) return std::nullopt;
  return Ondex::IpGenPrefix(*addr, std::uint8_t(*len));
}

// The next blank-separated field of the line from `pos`, which it moves past the field; empty at the
// end of the line or at a comment.
[[nodiscard]] std::string_view nextField(std::string_view line, std::size_t& pos) noexcept {
  while (pos < line.size() && isBlank(line[pos])) ++pos;
  if (pos >= line.size() || line[pos] == '#') {
    pos = line.size();
    return {};
  }
  std::size_t const start = pos;
  while (pos < line.size() && !isBlank(line[pos]) && line[pos] != '#') ++pos;
  return line.substr(start, pos - start);
}

// A file mapped for reading, unmapped when it goes.
class MappedFile {
 public:
  explicit MappedFile(std::string const& path) {
    int const fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
      error_ = std::strerror(errno);
      return;
    }
    struct stat st {};
    if (::fstat(fd, &st) != 0) {
      error_ = std::strerror(errno);
    } else if (!S_ISREG(st.st_mode)) {
      error_ = "not a regular file";
    } else if (st.st_size > 0) {
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
  ~MappedFile() {
    if (data_) ::munmap(const_cast<char*>(data_), size_);
  }
  MappedFile(MappedFile const&) = delete;
  MappedFile& operator=(MappedFile const&) = delete;

  [[nodiscard]] std::string_view text() const noexcept { return {data_, size_}; }
  [[nodiscard]] std::string const& error() const noexcept { return error_; }

 private:
  char const* data_ = nullptr;
  std::size_t size_ = 0;
  std::string error_;
};

}  // namespace

std::string RouteFile::Error::text() const {
  if (line == 0) return fmt::format("{}: {}", file, message);
  return fmt::format("{}:{}: {}", file, line, message);
}

RouteFile RouteFile::load(std::string const& path, std::string name) {
  if (name.empty()) name = path;
  RouteFile rf;
  MappedFile const file(path);
  if (!file.error().empty()) {
    rf.error(name, 0, "cannot read: " + file.error());
    return rf;
  }
  rf.scan(file.text(), name);
  return rf;
}

RouteFile RouteFile::parse(std::string_view text, std::string name) {
  RouteFile rf;
  rf.scan(text, name);
  return rf;
}

void RouteFile::error(std::string const& name, std::size_t line, std::string message) {
  ++errorCount_;
  if (errors_.size() < kMaxErrors) errors_.push_back(Error{name, line, std::move(message)});
}

void RouteFile::scan(std::string_view text, std::string const& name) {
  // One pass to count the lines lets the vector be sized once.
  std::size_t newlines = 0;
  for (char const* p = text.data(); p < text.data() + text.size(); ++newlines) {
    p = static_cast<char const*>(std::memchr(p, '\n', std::size_t(text.data() + text.size() - p)));
    if (!p) break;
    ++p;
  }
  entries_.reserve(newlines + 1);

  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t eol = text.find('\n', pos);
    if (eol == std::string_view::npos) eol = text.size();
    std::string_view const line = text.substr(pos, eol - pos);
    pos = eol + 1;
    ++lines_;

    std::size_t at = 0;
    std::string_view const first = nextField(line, at);
    if (first.empty()) continue;  // blank or comment
    Entry e;
    auto pfx = prefix(first);
    if (!pfx) {
      error(name, lines_, fmt::format("\"{}\" is not a prefix", first));
      continue;
    }
    e.prefix = *pfx;

    std::string_view const target = nextField(line, at);
    if (target.empty()) {
      error(name, lines_, "missing next hop (an address, an interface or \"drop\")");
      continue;
    }
    std::string_view field = nextField(line, at);
    if (target == "drop") {
      e.type = Routing::RouteType::drop;
    } else if (isDigit(target[0]) || target.find(':') != std::string_view::npos) {
      auto hop = address(target);
      if (!hop) {
        error(name, lines_, fmt::format("\"{}\" is not an IP address", target));
        continue;
      }
      e.nexthop = *hop;
      if (!field.empty() && !isDigit(field[0])) {  // an interface after the next hop
        auto intf = Ondex::IntfId::fromString(field);
        if (!intf) {
          error(name, lines_, fmt::format("\"{}\" is not an interface name", field));
          continue;
        }
        e.intf = *intf;
        field = nextField(line, at);
      }
    } else {
      auto intf = Ondex::IntfId::fromString(target);
      if (!intf) {
        error(name, lines_, fmt::format("\"{}\" is not an interface name", target));
        continue;
      }
      e.intf = *intf;
    }

    if (!field.empty()) {
      auto pref = decimal(field, 3, 255);
      if (!pref || *pref == 0) {
        error(name, lines_, fmt::format("\"{}\" is not a preference (1..255)", field));
        continue;
      }
      e.preference = std::uint8_t(*pref);
    }
    if (std::string_view const extra = nextField(line, at); !extra.empty()) {
      error(name, lines_, fmt::format("unexpected \"{}\" after the route", extra));
      continue;
    }
    entries_.push_back(e);
  }
}

}  // namespace Host
