// Trace: per-facility, per-level diagnostic statements. A TraceRegistry owns every TraceHandle (one
// per facility name, never freed) and the level rules the host or BOWLINE_TRACE sets by name; an
// enabled statement becomes one TraceLine handed to the registry's sink (stderr unless the host
// installs its own). The process registry is created on first use and lives until the process ends.
//
// Statements, in a .cpp that declared its facility with ZEL_TRACE_FACILITY("Module::Name"):
//   TRACE(8, "Vrf: " << vrf << ", handleRoute " << prefix);   stream form
//   FMTRACE(6, "Vrf: {}, added {}", vrf, prefix);              {} form (fmt), checked at compile time
// and TRACE_H / FMTRACE_H, which take the handle explicitly (the only forms to use in a header, since
// _defaultTraceHandle() is private to each translation unit). A statement first tests its level's bit
// in the handle; when the bit is clear that test is all it costs and its arguments are not evaluated.
//
// Levels 0-15. A new handle takes the most specific matching rule (an exact name beats a wildcard,
// a longer wildcard prefix beats a shorter one); without one, its stream levels are all off and its
// Flit levels (see Flit.h) are 0-2. Rule strings, as BOWLINE_TRACE or traceRulesIs() take them:
//   "IpRib::RouteStatusSm=0-9,StaticRoute::*=6,*=0"   pattern=levels, comma separated
//   "IpRib::IntfSm=0-2,6,8"                            a term without '=' adds to the item before it
//   "flit:IpRib::*=0-4"                                the Flit ring's levels instead of the stream's
//   "all", "none", "3-5"                               a leading bare term applies to "*"
// A bad item is skipped and reported; the good items of the same string still apply.
//
// Threads: handle creation, the masks' reads and the Flit statements are safe from any thread. Rules,
// the sink and the stream statements belong to the thread that runs the reactors.
#pragma once

#include <atomic>
#include <concepts>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <fmt/format.h>
#include <fmt/ostream.h>

#include "foundations/runtime/String.h"

namespace Zel {

class TraceRegistry;

inline constexpr int traceLevelCount = 16;
// Flit levels of a handle that no rule names: the ring always holds the state changes, milestones
// and directory additions and deletions (levels 0, 1, 2).
inline constexpr std::uint16_t flitDefaultMask = 0x0007;

// The levels of one facility: bit n of mask() enables level n of the stream and {} forms, bit n of
// flitMask() level n of the Flit ring. Both live in one word so that a statement written to both
// back ends still costs one test.
class TraceHandle {
 public:
  TraceHandle(TraceHandle const&) = delete;
  TraceHandle& operator=(TraceHandle const&) = delete;

  [[nodiscard]] std::string_view name() const noexcept { return name_; }
  [[nodiscard]] TraceRegistry& registry() const noexcept { return *registry_; }
  [[nodiscard]] std::uint16_t mask() const noexcept { return std::uint16_t(bits()); }
  [[nodiscard]] std::uint16_t flitMask() const noexcept { return std::uint16_t(bits() >> 16); }
  [[nodiscard]] bool enabled(int level) const noexcept { return test(level, 1u); }
  [[nodiscard]] bool flitEnabled(int level) const noexcept { return test(level, 1u << 16); }
  [[nodiscard]] bool anyEnabled(int level) const noexcept { return test(level, 1u | (1u << 16)); }

  // Set directly; the registry's rules set them again only when a rule naming this handle changes.
  void maskIs(std::uint16_t mask) noexcept { halfIs(0, mask); }
  void flitMaskIs(std::uint16_t mask) noexcept { halfIs(16, mask); }

 private:
  friend class TraceRegistry;
  TraceHandle(TraceRegistry& registry, std::string_view name, std::uint16_t mask, std::uint16_t flitMask)
      : bits_(std::uint32_t(mask) | (std::uint32_t(flitMask) << 16)), name_(name), registry_(&registry) {}

  [[nodiscard]] std::uint32_t bits() const noexcept { return bits_.load(std::memory_order_relaxed); }
  // For a constant level the range check folds away and one AND with a constant remains.
  [[nodiscard]] bool test(int level, std::uint32_t pattern) const noexcept {
    return unsigned(level) < unsigned(traceLevelCount) && (bits() & (pattern << level)) != 0;
  }
  void halfIs(int shift, std::uint16_t mask) noexcept;

  std::atomic<std::uint32_t> bits_;
  std::string name_;
  TraceRegistry* registry_;
};

// One enabled statement, as a sink receives it. The views are valid during the sink call only.
struct TraceLine {
  std::string_view facility;
  int level = 0;
  char const* file = "";  // as __FILE__ gave it
  int line = 0;
  char const* function = "";
  std::string_view message;

  // "IpRib::RouteStatusSm[8] Vrf: red, handleRoute 10.0.0.0/8", and with the location
  // " (RouteStatusSm.cpp:120)" appended (the file's last path component).
  [[nodiscard]] std::string text(bool withLocation = false) const;
};

// Receives every enabled line of a registry; it must not throw.
using TraceSink = std::function<void(TraceLine const&)>;

class TraceRegistry {
 public:
  // Reads BOWLINE_TRACE; a bad item in it is reported on stderr and kept in environmentError().
  TraceRegistry();
  ~TraceRegistry();
  TraceRegistry(TraceRegistry const&) = delete;
  TraceRegistry& operator=(TraceRegistry const&) = delete;

  // The process registry, created on first use and never destroyed (statements may run at exit).
  [[nodiscard]] static TraceRegistry& instance();

  // Find or create the handle of a facility; a new one takes its levels from the rules. The
  // reference stays valid as long as the registry.
  [[nodiscard]] TraceHandle& handle(std::string_view facility);
  [[nodiscard]] TraceHandle* handleIfExists(std::string_view facility) const;
  // Every handle, sorted by name: a snapshot, so handles created during a walk of it are not in it.
  [[nodiscard]] std::vector<TraceHandle const*> handles() const;

  // Set the levels of every facility a pattern names ("Name", "Prefix::*" or "*"), now and when it
  // is created later. Returns the error text of a bad pattern, which changes nothing, or "".
  std::string traceLevelsIs(std::string_view pattern, std::uint16_t mask);
  std::string flitLevelsIs(std::string_view pattern, std::uint16_t mask);
  // Apply a rules string (grammar above). Returns the errors of the skipped items, or "".
  [[nodiscard]] std::string traceRulesIs(std::string_view rules);
  [[nodiscard]] std::string const& environmentError() const noexcept { return environmentError_; }

  // An empty sink restores the default, which writes each line to stderr.
  void sinkIs(TraceSink sink);
  void locationShownIs(bool shown) noexcept { locationShown_ = shown; }
  [[nodiscard]] bool locationShown() const noexcept { return locationShown_; }
  void emit(TraceLine const& line) const;

 private:
  struct Rules;
  std::string levelsIs(Rules& rules, std::string_view pattern, std::uint16_t mask);
  void reapply(Rules const& rules, std::string_view pattern);

  mutable std::mutex mutex_;  // guards handles_ and the rules
  std::map<std::string, std::unique_ptr<TraceHandle>, std::less<>> handles_;
  std::unique_ptr<Rules> traceRules_;
  std::unique_ptr<Rules> flitRules_;
  TraceSink sink_;
  bool locationShown_ = false;
  std::string environmentError_;
};

// The process registry's operations, for the host.
[[nodiscard]] TraceHandle& traceHandle(std::string_view facility);
std::string traceLevelsIs(std::string_view pattern, std::uint16_t mask);
std::string flitLevelsIs(std::string_view pattern, std::uint16_t mask);
[[nodiscard]] std::string traceRulesIs(std::string_view rules);
void traceSinkIs(TraceSink sink);
void traceLocationShownIs(bool shown);

namespace TraceImpl {

template <class T>
concept Streamable = requires(std::ostream& os, T const& value) { os << value; };

// How a trace argument reaches fmt: text and numbers as they are, the runtime's string as its text,
// other pointers as addresses, a type with operator<< through it, an enum without one as its number,
// and last whatever fmt formats itself.
template <class T>
decltype(auto) fmtArg(T const& value) {
  if constexpr (std::is_same_v<T, Quill::String>) {
    return value.view();
  } else if constexpr (std::is_same_v<T, char const*> || std::is_same_v<T, char*>) {
    return value ? std::string_view(value) : std::string_view("(null)");
  } else if constexpr (std::is_pointer_v<T>) {
    return static_cast<void const*>(value);
  } else if constexpr (std::is_convertible_v<T const&, std::string_view>) {
    return std::string_view(value);
  } else if constexpr (std::is_arithmetic_v<T>) {
    return (value);
  } else if constexpr (Streamable<T>) {
    return fmt::streamed(value);
  } else if constexpr (std::is_enum_v<T>) {
    return static_cast<std::underlying_type_t<T>>(value);
  } else {
    static_assert(fmt::is_formattable<T>::value, "a trace argument needs operator<< or a fmt formatter");
    return (value);
  }
}

void fmtraceEmit(TraceHandle const& handle, int level, char const* file, char const* function, int line,
                 std::string_view prefix, fmt::string_view format, fmt::format_args args);

}  // namespace TraceImpl

// The type fmt sees for a trace argument of type T; format strings are checked against these.
template <class T>
using TraceFmtArg = std::remove_cvref_t<decltype(TraceImpl::fmtArg(std::declval<T const&>()))>;
template <class... Args>
using TraceFormat = fmt::format_string<TraceFmtArg<Args>...>;

// The text of a stream statement. Takes << of strings, numbers, bool ("true"/"false") and any value
// with operator<<; stream manipulators are not supported (the {} form has format specs).
class TraceStream {
 public:
  template <class T>
  TraceStream& operator<<(T const& value) {
    fmt::format_to(std::back_inserter(buffer_), "{}", TraceImpl::fmtArg(value));
    return *this;
  }
  [[nodiscard]] std::string_view view() const noexcept { return {buffer_.data(), buffer_.size()}; }

 private:
  fmt::memory_buffer buffer_;
};

// One stream statement: opened by the statement after its level test, emitted when it ends.
class TraceHelper {
 public:
  TraceHelper(TraceHandle const& handle, int level, char const* file, int line, char const* function) noexcept
      : handle_(handle), level_(level), file_(file), line_(line), function_(function) {}
  ~TraceHelper();
  TraceHelper(TraceHelper const&) = delete;
  TraceHelper& operator=(TraceHelper const&) = delete;

  [[nodiscard]] TraceStream& stream() noexcept { return stream_; }
  template <class T>
  TraceStream& operator<<(T const& value) {
    return stream_ << value;
  }

 private:
  TraceHandle const& handle_;
  int level_;
  char const* file_;
  int line_;
  char const* function_;
  TraceStream stream_;
};

}  // namespace Zel

namespace Quill {

// The {} form: one line "prefix + format(args)" if the handle enables the level. The statement macros
// test the level before evaluating the arguments; this tests it again for direct callers.
template <class... Args>
void fmtrace(Zel::TraceHandle const& handle, int level, char const* file, char const* function, int line,
             std::string_view prefix, Zel::TraceFormat<Args...> format, Args const&... args) {
  if (!handle.enabled(level)) return;
  Zel::TraceImpl::fmtraceEmit(handle, level, file, function, line, prefix, fmt::string_view(format),
                              fmt::make_format_args(Zel::TraceImpl::fmtArg(args)...));
}

}  // namespace Quill

// Declares this translation unit's _defaultTraceHandle(), at namespace scope in a module's .cpp:
//   ZEL_TRACE_FACILITY("IpRib::RouteStatusSm");
// The handle is looked up on the first statement that runs, so that the registry exists by then.
#define ZEL_TRACE_FACILITY(facility)                                   \
  namespace {                                                          \
  [[maybe_unused, gnu::always_inline]] inline ::Zel::TraceHandle const& _defaultTraceHandle() { \
    static ::Zel::TraceHandle const& handle = ::Zel::traceHandle(facility); \
    return handle;                                                     \
  }                                                                    \
  }                                                                    \
  static_assert(true)

#define TRACE_H(handle, level, expr)                                                \
  do {                                                                              \
    ::Zel::TraceHandle const& zelTraceHandle_ = (handle);                           \
    if (zelTraceHandle_.enabled(level)) [[unlikely]] {                              \
      ::Zel::TraceHelper(zelTraceHandle_, (level), __FILE__, __LINE__, __func__) << expr; \
    }                                                                               \
  } while (0)
#define TRACE(level, expr) TRACE_H(_defaultTraceHandle(), level, expr)

#define FMTRACE_H(handle, level, format, ...)                                        \
  do {                                                                               \
    ::Zel::TraceHandle const& zelTraceHandle_ = (handle);                            \
    if (zelTraceHandle_.enabled(level)) [[unlikely]] {                               \
      ::Quill::fmtrace(zelTraceHandle_, (level), __FILE__, __func__, __LINE__, {}, \
                       format __VA_OPT__(, ) __VA_ARGS__);                           \
    }                                                                                \
  } while (0)
#define FMTRACE(level, format, ...) FMTRACE_H(_defaultTraceHandle(), level, format __VA_OPT__(, ) __VA_ARGS__)
