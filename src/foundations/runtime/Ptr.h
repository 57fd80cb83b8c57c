// Quill::Ptr<T>: the owning, intrusive reference to a runtime object; Quill::Ptr<T const> is the
// read-only form that inputs use. The count lives in Zel::PtrInterface; retain and release work on
// const objects. Zel::make<T>(args...) is the factory every `XIs` goes through.
#pragma once

#include <cstddef>
#include <functional>
#include <ostream>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "foundations/runtime/Hash.h"
#include "foundations/runtime/PtrInterface.h"

namespace Quill {

template <class T>
class Ptr {
 public:
  using element_type = T;

  Ptr() noexcept = default;
  Ptr(std::nullptr_t) noexcept {}  // NOLINT: null is a normal value of every input
  explicit Ptr(T* raw) noexcept : p_(raw) {
    if (p_) p_->retain();
  }
  Ptr(Ptr const& o) noexcept : p_(o.p_) {
    if (p_) p_->retain();
  }
  Ptr(Ptr&& o) noexcept : p_(o.p_) { o.p_ = nullptr; }
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ptr(Ptr<U> const& o) noexcept : p_(o.get()) {  // NOLINT: derived to base, mutable to const
    if (p_) p_->retain();
  }
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ptr(Ptr<U>&& o) noexcept : p_(o.detach()) {}  // NOLINT
  ~Ptr() {
    if (p_) p_->release();
  }
  Ptr& operator=(Ptr const& o) noexcept {
    Ptr(o).swap(*this);
    return *this;
  }
  Ptr& operator=(Ptr&& o) noexcept {
    Ptr(std::move(o)).swap(*this);
    return *this;
  }
  Ptr& operator=(std::nullptr_t) noexcept {
    Ptr().swap(*this);
    return *this;
  }

  [[nodiscard]] T* get() const noexcept { return p_; }
  T* operator->() const noexcept { return p_; }
  T& operator*() const noexcept { return *p_; }
  explicit operator bool() const noexcept { return p_ != nullptr; }
  void swap(Ptr& o) noexcept { std::swap(p_, o.p_); }
  // Gives up ownership without releasing; for moves between pointer types.
  [[nodiscard]] T* detach() noexcept {
    T* r = p_;
    p_ = nullptr;
    return r;
  }

  template <class U>
  friend bool operator==(Ptr const& a, Ptr<U> const& b) noexcept {
    return static_cast<void const*>(a.get()) == static_cast<void const*>(b.get());
  }
  friend bool operator==(Ptr const& a, std::nullptr_t) noexcept { return a.p_ == nullptr; }
  friend bool operator<(Ptr const& a, Ptr const& b) noexcept { return std::less<T*>()(a.p_, b.p_); }

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept { return Zel::hashOf(p_, seed); }

 private:
  T* p_ = nullptr;
};

template <class T, class U>
Ptr<T> ptr_cast(Ptr<U> const& p) noexcept {
  return Ptr<T>(static_cast<T*>(p.get()));
}
template <class T, class U>
Ptr<T> dynamic_ptr_cast(Ptr<U> const& p) noexcept {
  return Ptr<T>(dynamic_cast<T*>(p.get()));
}
// Drops const; only the owner of an object may do this with what it created itself.
template <class T>
Ptr<T> ownedPtr(Ptr<T const> const& p) noexcept {
  return Ptr<T>(const_cast<T*>(p.get()));
}

}  // namespace Quill

namespace Zel {

// Grants the factory access to protected constructors: `friend struct ::Zel::Factory;`.
struct Factory {
  template <class T, class... A>
  static T* create(A&&... args) {
    return new T(std::forward<A>(args)...);
  }
};

void setPendingAllocationType(std::type_info const* type) noexcept;

// Constructs an object without activating its notification; for the steps of a factory.
template <class T, class... A>
Quill::Ptr<T> construct(A&&... args) {
  setPendingAllocationType(&typeid(T));
  return Quill::Ptr<T>(Factory::create<T>(std::forward<A>(args)...));
}

// The factory: allocate from the slab, construct, activate notification, hand out the reference.
template <class T, class... A>
Quill::Ptr<T> make(A&&... args) {
  Quill::Ptr<T> p = construct<T>(std::forward<A>(args)...);
  p->hasNotificationActiveIs(true);
  return p;
}

}  // namespace Zel
