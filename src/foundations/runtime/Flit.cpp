#include "foundations/runtime/Flit.h"

#include <bit>
#include <deque>
#include <mutex>

#include <fmt/args.h>

namespace Flit {

namespace {

// The registered messages of the process, by id - 1. A deque keeps every element where it is.
struct MsgTable {
  std::mutex mutex;
  std::deque<MsgDesc> messages;
};

MsgTable& msgTable() {
  static MsgTable* table = new MsgTable;
  return *table;
}

// Turns a slot's payload back into format arguments; text stays in the payload copy, which outlives
// the formatting.
void argsDecoded(std::byte const* payload, std::size_t used, std::size_t argCount,
                 fmt::dynamic_format_arg_store<fmt::format_context>& args) {
  std::size_t at = 0;
  std::size_t decoded = 0;
  auto raw = [&](auto value) {
    std::memcpy(&value, payload + at + 1, sizeof(value));
    at += 1 + sizeof(value);
    return value;
  };
  while (at < used) {
    switch (Impl::Tag(payload[at])) {
      case Impl::Tag::signedInt: args.push_back(raw(std::int64_t())); break;
      case Impl::Tag::unsignedInt: args.push_back(raw(std::uint64_t())); break;
      case Impl::Tag::floating: args.push_back(raw(double())); break;
      case Impl::Tag::boolean: args.push_back(raw(bool())); break;
      case Impl::Tag::character: args.push_back(raw(char())); break;
      case Impl::Tag::address:
        args.push_back(reinterpret_cast<void const*>(std::uintptr_t(raw(std::uint64_t()))));
        break;
      case Impl::Tag::text: {
        auto const size = std::size_t(payload[at + 1]);
        args.push_back(std::string_view(reinterpret_cast<char const*>(payload + at + 2), size));
        at += 2 + size;
        break;
      }
      default:
        at = used;  // not a tag this code writes: stop here, the rest is dumped as missing
        continue;
    }
    ++decoded;
  }
  for (; decoded < argCount; ++decoded) args.push_back(std::string_view("<?>"));
}

}  // namespace

std::uint32_t msgRegister(MsgSite& site, char const* file, int line, std::string_view format,
                          std::string_view facility, int level) {
  MsgTable& table = msgTable();
  std::lock_guard lock(table.mutex);
  if (auto const id = site.id.load(std::memory_order_acquire)) return id;  // another thread was first
  auto const id = std::uint32_t(table.messages.size() + 1);
  table.messages.push_back(
      MsgDesc{id, file ? file : "", line, std::string(format), std::string(facility), level});
  site.id.store(id, std::memory_order_release);
  return id;
}

MsgDesc const* msgDesc(std::uint32_t id) {
  MsgTable& table = msgTable();
  std::lock_guard lock(table.mutex);
  return id == 0 || id > table.messages.size() ? nullptr : &table.messages[id - 1];
}

std::size_t msgCount() {
  MsgTable& table = msgTable();
  std::lock_guard lock(table.mutex);
  return table.messages.size();
}

RingBuf::RingBuf(std::size_t slotsPerLevel) : slotsPerLevel_(std::bit_ceil(std::max<std::size_t>(slotsPerLevel, 1))) {}

RingBuf::~RingBuf() { clear(); }

RingBuf& RingBuf::instance() {
  static RingBuf* ring = new RingBuf;
  return *ring;
}

RingBuf::Ring& RingBuf::ringCreated(int level) {
  auto& cell = rings_[std::size_t(level)];
  auto fresh = std::make_unique<Ring>(slotsPerLevel_);
  Ring* expected = nullptr;
  if (cell.compare_exchange_strong(expected, fresh.get(), std::memory_order_acq_rel)) return *fresh.release();
  return *expected;  // another thread created it first
}

std::vector<std::string> RingBuf::lines(int level, bool withLocation) const {
  std::vector<std::string> out;
  if (unsigned(level) >= unsigned(Zel::traceLevelCount)) return out;
  Ring const* ring = rings_[std::size_t(level)].load(std::memory_order_acquire);
  if (!ring) return out;
  std::uint64_t const end = ring->next.load(std::memory_order_acquire);
  std::uint64_t const size = ring->mask + 1;
  std::uint64_t const begin = end > size ? end - size : 0;
  for (std::uint64_t index = begin; index < end; ++index) {
    Slot const& slot = ring->slots[index & ring->mask];
    if (slot.seq.load(std::memory_order_acquire) != index + 1) continue;  // being written or overwritten
    std::uint32_t const msgId = slot.msgId;
    std::size_t const used = std::min<std::size_t>(slot.used, payloadBytes);
    std::size_t const argCount = slot.argCount;
    std::byte payload[payloadBytes];
    std::memcpy(payload, slot.payload, used);
    std::atomic_thread_fence(std::memory_order_acquire);
    if (slot.seq.load(std::memory_order_relaxed) != index + 1) continue;  // overwritten while copied

    MsgDesc const* desc = msgDesc(msgId);
    if (!desc) {
      out.push_back(fmt::format("<unknown message {}>", msgId));
      continue;
    }
    fmt::dynamic_format_arg_store<fmt::format_context> args;
    argsDecoded(payload, used, argCount, args);
    std::string message;
    try {
      message = fmt::vformat(desc->format, args);
    } catch (fmt::format_error const& error) {
      message = fmt::format("<format error: {}> {}", error.what(), desc->format);
    }
    Zel::TraceLine const line{desc->facility, level, desc->file.c_str(), desc->line, "", message};
    out.push_back(line.text(withLocation));
  }
  return out;
}

std::string RingBuf::dumpText(bool withLocation) const {
  std::string out;
  for (int level = 0; level < Zel::traceLevelCount; ++level) {
    auto const levelLines = lines(level, withLocation);
    if (levelLines.empty()) continue;
    fmt::format_to(std::back_inserter(out), "level {}:\n", level);
    for (auto const& line : levelLines) fmt::format_to(std::back_inserter(out), "{}\n", line);
  }
  return out;
}

std::uint64_t RingBuf::writeCount(int level) const noexcept {
  if (unsigned(level) >= unsigned(Zel::traceLevelCount)) return 0;
  Ring const* ring = rings_[std::size_t(level)].load(std::memory_order_acquire);
  return ring ? ring->next.load(std::memory_order_relaxed) : 0;
}

void RingBuf::clear() {
  for (auto& cell : rings_) delete cell.exchange(nullptr, std::memory_order_acq_rel);
}

void RingBuf::slotsPerLevelIs(std::size_t slotsPerLevel) {
  clear();
  slotsPerLevel_ = std::bit_ceil(std::max<std::size_t>(slotsPerLevel, 1));
}

}  // namespace Flit
