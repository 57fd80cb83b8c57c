// Host::RouteFile: a large set of routes read from a plain text file, one route a line, into one
// compact vector. It owns its entries and the errors of the lines it could not read; the scenario
// that names the file owns it, and the runner turns its entries into routes of one VRF.
//
// The format, one route a line, fields separated by blanks or tabs:
//   PREFIX NEXTHOP [INTERFACE] [PREFERENCE]
//   PREFIX INTERFACE [PREFERENCE]
//   PREFIX drop [PREFERENCE]
// '#' starts a comment that runs to the end of the line; blank lines are skipped. The preference is
// 1..255 (absent: 1, the global preference applies). Two lines of the same prefix and preference are
// one route with two vias; they are all drop lines or all next hops (an error names both lines).
// Addresses and prefixes read as in the scenario file (host/AddressText.h); a next hop is a unicast
// address of the route's family, or an IPv4 address in an IPv6 route only with a label, which a
// line cannot give. A file with a NUL byte is not text and is refused whole.
//
// The scanner is written by hand and allocates nothing per line (interface names are interned by
// Ondex::IntfId): it reads a million lines in well under a second.
//
// Iterator contract: entries() is a vector in file order; it does not change once loaded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundations/records/RouteKey.h"
#include "foundations/records/RouteType.h"
#include "foundations/types/IntfId.h"
#include "foundations/types/IpGenAddr.h"
#include "foundations/types/IpGenPrefix.h"

namespace Host {

class RouteFile {
 public:
  struct Entry {
    Ondex::IpGenPrefix prefix;
    Ondex::IpGenAddr nexthop;  // no address for a drop or interface-only route
    Ondex::IntfId intf;
    std::uint8_t preference = 1;
    Routing::RouteType type = Routing::RouteType::forward;  // forward or drop
    friend bool operator==(Entry const&, Entry const&) = default;
  };

  // "routes.txt:12: "10.0.0.300" is not an IP address"
  struct Error {
    std::string file;
    std::size_t line = 0;  // 1-based; 0 when the file itself could not be read
    std::string message;
    [[nodiscard]] std::string text() const;
  };

  // No more errors than this are kept; errorCount() counts them all.
  static constexpr std::size_t kMaxErrors = 100;
  // A larger file is refused before it is read.
  static constexpr std::uint64_t kMaxFileBytes = std::uint64_t(1) << 30;

  // "a drop route" or "a route with next hops", as errors name a line's kind.
  [[nodiscard]] static char const* kindText(Routing::RouteType t) noexcept;

  // The route of a key: its type and the first line that gives it.
  struct Found {
    Routing::RouteType type = Routing::RouteType::forward;
    std::size_t line = 0;
  };

  RouteFile() = default;

  // Reads the file whole. `name` is the file as error messages name it (the path by default).
  [[nodiscard]] static RouteFile load(std::string const& path, std::string name = {},
                                      std::uint64_t maxBytes = kMaxFileBytes);
  // Reads routes from text already in memory; `name` stands for the file in error messages.
  [[nodiscard]] static RouteFile parse(std::string_view text, std::string name);

  [[nodiscard]] std::vector<Entry> const& entries() const noexcept { return entries_; }
  [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }
  [[nodiscard]] std::vector<Error> const& errors() const noexcept { return errors_; }
  [[nodiscard]] std::size_t errorCount() const noexcept { return errorCount_; }
  [[nodiscard]] bool ok() const noexcept { return errorCount_ == 0; }
  // Lines read, comments and blank lines included.
  [[nodiscard]] std::size_t lines() const noexcept { return lines_; }
  // The line of entries()[i].
  [[nodiscard]] std::size_t lineOf(std::size_t i) const noexcept { return lineOf_[i]; }
  // The route of `key` in the file, if it has one (a binary search).
  [[nodiscard]] std::optional<Found> find(Routing::RouteKey const& key) const;

 private:
  void scan(std::string_view text, std::string const& name);
  // One line that is not blank nor a comment; false when it has an error.
  bool scanLine(std::string_view line, std::string const& name);
  // Orders the entries by key and checks that the lines of a key agree on the route's type.
  void index(std::string const& name);
  void error(std::string const& name, std::size_t line, std::string message);

  std::vector<Entry> entries_;
  std::vector<std::uint32_t> lineOf_;
  std::vector<std::uint32_t> byKey_;  // entry indexes by prefix, preference, then line
  std::vector<Error> errors_;
  std::size_t errorCount_ = 0;
  std::size_t lines_ = 0;
};

}  // namespace Host
