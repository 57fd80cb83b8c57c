// Zel::PtrInterface: the base of every record and state machine. It holds the intrusive reference
// count together with the two life flags in one word; a factory is the only way to make an object,
// and the object is destroyed (and its slab block freed) when the count drops to zero.
#pragma once

#include <atomic>
#include <cstdint>

namespace Zel {

// Reference changes are plain unless the process sets this before sharing objects across threads.
extern bool threadSafePointers;

class PtrInterface {
 public:
  class NotifieeConst;  // a reactor object on one notifier; see Notifiee.h

  // Count bits: everything but the two flag bits (mask 0x5fffffff).
  static constexpr std::uint32_t kCountMask = 0x5fffffffU;
  static constexpr std::uint32_t kNotificationActive = 0x80000000U;
  static constexpr std::uint32_t kMarkedForDeletion = 0x20000000U;

  PtrInterface(PtrInterface const&) = delete;
  PtrInterface& operator=(PtrInterface const&) = delete;

  void retain() const noexcept {
    if (threadSafePointers) [[unlikely]]
      std::atomic_ref<std::uint32_t>(word_).fetch_add(1, std::memory_order_relaxed);
    else
      ++word_;
  }
  void release() const noexcept {
    std::uint32_t now;
    if (threadSafePointers) [[unlikely]]
      now = std::atomic_ref<std::uint32_t>(word_).fetch_sub(1, std::memory_order_acq_rel) - 1;
    else
      now = --word_;
    if ((now & kCountMask) == 0) handleZeroRef();
  }
  [[nodiscard]] std::uint32_t references() const noexcept { return word_ & kCountMask; }

  [[nodiscard]] bool hasNotificationActive() const noexcept { return word_ & kNotificationActive; }
  // A state machine's override subscribes or unsubscribes its inputs and passes the flag down.
  virtual void hasNotificationActiveIs(bool active) { flagIs(kNotificationActive, active); }

  [[nodiscard]] bool zelMarkedForDeletion() const noexcept { return word_ & kMarkedForDeletion; }
  void zelMarkedForDeletionIs(bool marked) noexcept { flagIs(kMarkedForDeletion, marked); }

  // The zombie walk: marks the object's notifiees and nested machines, then the object itself.
  // An override walks its own children before calling this base.
  virtual void zelDoZombieReactors(bool marked) { zelMarkedForDeletionIs(marked); }

  // Objects live in slab blocks, counted per type; only factories create them.
  static void* operator new(std::size_t size);
  static void operator delete(void* pointer, std::size_t size) noexcept;

 protected:
  PtrInterface() noexcept = default;
  virtual ~PtrInterface();
  // Called when the last reference goes; destroys the object.
  virtual void handleZeroRef() const noexcept;

 private:
  void flagIs(std::uint32_t flag, bool on) noexcept {
    if (threadSafePointers) [[unlikely]] {
      std::atomic_ref<std::uint32_t> w(word_);
      if (on)
        w.fetch_or(flag);
      else
        w.fetch_and(~flag);
    } else {
      word_ = on ? (word_ | flag) : (word_ & ~flag);
    }
  }

  mutable std::uint32_t word_ = 0;
};

}  // namespace Zel
