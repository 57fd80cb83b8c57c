// Flit: the always-on ring-buffer trace. A statement registers its message once (a MsgDesc: file,
// line, format, facility, level, under an id kept in the statement's own static MsgSite) and from then
// on writes only the id and its arguments into the process RingBuf, which owns one fixed ring of slots
// per level and overwrites the oldest. Dumping formats the stored arguments with the registered format.
//
//   FLIT(2, "Vrf: {}, added {}", vrf, prefix);      // FLIT_H(handle, level, format, args...) too
//
// A statement runs when the handle's Flit mask enables its level (levels 0-2 unless a rule says
// otherwise, see Trace.h). A statement in a template registers once per instantiation. The ids are
// for this process only; the id of a statement site is the same each time it runs.
//
// Arguments are stored raw where they can be (integers, floating point, bool, char, addresses),
// strings are copied, and any other value is formatted to text once, when written. A slot holds
// payloadBytes of arguments; text that does not fit is cut, and arguments past the end are dumped
// as "<?>".
//
// Threads: writes are safe from any number of threads: each takes its slot with an atomic index, and
// marks it busy while it fills it. A dump taken while writers run skips the slots being written or
// overwritten under it. clear() and slotsPerLevelIs() need the writers to be quiet.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundations/runtime/Trace.h"

namespace Flit {

struct MsgDesc {
  std::uint32_t id = 0;
  std::string file;
  int line = 0;
  std::string format;
  std::string facility;  // of the handle the statement first ran with
  int level = 0;
};

// The static id of one statement: 0 until the statement first runs.
struct MsgSite {
  std::atomic<std::uint32_t> id{0};
};

// Registers a statement's message unless its site already has an id; returns the id (from 1 up).
std::uint32_t msgRegister(MsgSite& site, char const* file, int line, std::string_view format,
                          std::string_view facility, int level);
// The registered message of an id, or null. Messages are never removed, so the pointer stays valid.
[[nodiscard]] MsgDesc const* msgDesc(std::uint32_t id);
[[nodiscard]] std::size_t msgCount();

namespace Impl {

enum class Tag : std::uint8_t { signedInt = 1, unsignedInt, floating, boolean, character, text, address };

// Appends tagged arguments to a slot's payload.
class SlotWriter {
 public:
  SlotWriter(std::byte* payload, std::size_t capacity) noexcept : out_(payload), capacity_(capacity) {}

  template <class T>
  void put(T const& value) {
    using D = std::decay_t<T>;
    if constexpr (std::is_same_v<D, bool>) {
      putRaw(Tag::boolean, value);
    } else if constexpr (std::is_same_v<D, char>) {
      putRaw(Tag::character, value);
    } else if constexpr (std::is_integral_v<D> && std::is_signed_v<D>) {
      putRaw(Tag::signedInt, std::int64_t(value));
    } else if constexpr (std::is_integral_v<D>) {
      putRaw(Tag::unsignedInt, std::uint64_t(value));
    } else if constexpr (std::is_floating_point_v<D>) {
      putRaw(Tag::floating, double(value));
    } else {
      using Arg = Zel::TraceFmtArg<T>;
      if constexpr (std::is_same_v<Arg, std::string_view>) {
        putText(Zel::TraceImpl::fmtArg(value));
      } else if constexpr (std::is_same_v<Arg, void const*>) {
        putRaw(Tag::address, std::uint64_t(reinterpret_cast<std::uintptr_t>(Zel::TraceImpl::fmtArg(value))));
      } else if constexpr (std::is_enum_v<T> && std::is_integral_v<Arg>) {
        put(Zel::TraceImpl::fmtArg(value));
      } else {
        putFormatted(Zel::TraceImpl::fmtArg(value));
      }
    }
  }

  [[nodiscard]] std::size_t used() const noexcept { return used_; }
  [[nodiscard]] bool cut() const noexcept { return cut_; }

 private:
  template <class V>
  void putRaw(Tag tag, V value) noexcept {
    if (used_ + 1 + sizeof(V) > capacity_) {
      cut_ = true;
      return;
    }
    out_[used_] = std::byte(tag);
    std::memcpy(out_ + used_ + 1, &value, sizeof(V));
    used_ += 1 + sizeof(V);
  }
  // Tag, one length byte, the bytes; cut to what is left of the slot.
  bool textStarted() noexcept {
    if (cut_ || used_ + 2 > capacity_) {
      cut_ = true;
      return false;
    }
    out_[used_] = std::byte(Tag::text);
    return true;
  }
  void textEnded(std::size_t size, std::size_t room) noexcept {
    if (size > room) cut_ = true;
    auto const stored = std::min(std::min(size, room), std::size_t(255));
    out_[used_ + 1] = std::byte(stored);
    used_ += 2 + stored;
  }
  void putText(std::string_view text) noexcept {
    if (!textStarted()) return;
    auto const room = capacity_ - used_ - 2;
    std::memcpy(out_ + used_ + 2, text.data(), std::min(text.size(), room));
    textEnded(text.size(), room);
  }
  template <class V>
  void putFormatted(V const& value) {
    if (!textStarted()) return;
    auto const room = capacity_ - used_ - 2;
    auto const result = fmt::format_to_n(reinterpret_cast<char*>(out_ + used_ + 2), room, "{}", value);
    textEnded(result.size, room);
  }

  std::byte* out_;
  std::size_t capacity_;
  std::size_t used_ = 0;
  bool cut_ = false;
};

}  // namespace Impl

class RingBuf {
 public:
  static constexpr std::size_t slotBytes = 128;
  static constexpr std::size_t payloadBytes = slotBytes - 16;
  static constexpr std::size_t defaultSlotsPerLevel = 512;

  // Slots per level, rounded up to a power of two. A level's ring is allocated on its first write.
  explicit RingBuf(std::size_t slotsPerLevel = defaultSlotsPerLevel);
  ~RingBuf();
  RingBuf(RingBuf const&) = delete;
  RingBuf& operator=(RingBuf const&) = delete;

  // The process ring that the statements write to; never destroyed.
  [[nodiscard]] static RingBuf& instance();

  template <class... Args>
  void write(std::uint32_t msgId, int level, Args const&... args) {
    if (unsigned(level) >= unsigned(Zel::traceLevelCount)) return;
    Ring& ring = ringOf(level);
    std::uint64_t const index = ring.next.fetch_add(1, std::memory_order_relaxed);
    Slot& slot = ring.slots[index & ring.mask];
    slot.seq.store(0, std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_release);
    Impl::SlotWriter writer(slot.payload, payloadBytes);
    (writer.put(args), ...);
    slot.msgId = msgId;
    slot.used = std::uint8_t(writer.used());
    slot.argCount = std::uint8_t(sizeof...(Args));
    slot.seq.store(index + 1, std::memory_order_release);
  }

  // The messages of a level, oldest first, as "facility[level] message" (with " (file:line)" if asked).
  [[nodiscard]] std::vector<std::string> lines(int level, bool withLocation = false) const;
  // Every level that holds messages, from level 0 up: a "level N:" line, then its messages.
  [[nodiscard]] std::string dumpText(bool withLocation = false) const;
  // Messages ever written at a level, overwritten ones included.
  [[nodiscard]] std::uint64_t writeCount(int level) const noexcept;
  [[nodiscard]] std::size_t slotsPerLevel() const noexcept { return slotsPerLevel_; }

  void clear();
  void slotsPerLevelIs(std::size_t slotsPerLevel);

 private:
  struct Slot {
    std::atomic<std::uint64_t> seq{0};  // write index + 1 once filled; 0 while empty or being filled
    std::uint32_t msgId = 0;
    std::uint8_t used = 0;
    std::uint8_t argCount = 0;
    std::byte payload[payloadBytes];
  };
  static_assert(sizeof(Slot) == slotBytes);
  struct Ring {
    explicit Ring(std::size_t slots) : mask(slots - 1), slots(new Slot[slots]) {}
    std::atomic<std::uint64_t> next{0};
    std::size_t mask;
    std::unique_ptr<Slot[]> slots;
  };

  Ring& ringOf(int level) {
    Ring* ring = rings_[std::size_t(level)].load(std::memory_order_acquire);
    return ring ? *ring : ringCreated(level);
  }
  Ring& ringCreated(int level);

  std::array<std::atomic<Ring*>, Zel::traceLevelCount> rings_{};
  std::size_t slotsPerLevel_;
};

// One statement: registers on its first run, then writes to the process ring.
template <class... Args>
void write(MsgSite& site, Zel::TraceHandle const& handle, int level, char const* file, int line,
           Zel::TraceFormat<Args...> format, Args const&... args) {
  std::uint32_t id = site.id.load(std::memory_order_acquire);
  if (id == 0) [[unlikely]] {
    fmt::string_view const text = format;
    id = msgRegister(site, file, line, {text.data(), text.size()}, handle.name(), level);
  }
  RingBuf::instance().write(id, level, args...);
}

}  // namespace Flit

#define FLIT_H(handle, level, format, ...)                                                        \
  do {                                                                                            \
    ::Zel::TraceHandle const& zelFlitHandle_ = (handle);                                          \
    if (zelFlitHandle_.flitEnabled(level)) [[unlikely]] {                                         \
      static constinit ::Flit::MsgSite zelFlitSite_;                                              \
      ::Flit::write(zelFlitSite_, zelFlitHandle_, (level), __FILE__, __LINE__, format __VA_OPT__(, ) \
                        __VA_ARGS__);                                                             \
    }                                                                                             \
  } while (0)
#define FLIT(level, format, ...) FLIT_H(_defaultTraceHandle(), level, format __VA_OPT__(, ) __VA_ARGS__)
