#include "foundations/runtime/Publisher.h"

namespace Quill {

Subscriber::~Subscriber() {
  if (publisher_) publisher_->subscriberRemove(this);
}

Publisher::~Publisher() {
  for (Subscriber* s = head_; s;) {
    Subscriber* next = s->next_;
    s->publisher_ = nullptr;
    s->next_ = s->prev_ = nullptr;
    s = next;
  }
  head_ = tail_ = nullptr;
  for (Cursor* c = cursors_; c; c = c->outer) c->next = nullptr;
}

void Publisher::subscriberAdd(Subscriber* s, bool /*immediate*/) noexcept {
  if (s->publisher_ == this) return;
  if (s->publisher_) s->publisher_->subscriberRemove(s);
  s->publisher_ = this;
  s->next_ = nullptr;
  s->prev_ = tail_;
  if (tail_)
    tail_->next_ = s;
  else
    head_ = s;
  tail_ = s;
  // A running publish that had reached the end picks the newcomer up: it sees the latest state.
  for (Cursor* c = cursors_; c; c = c->outer)
    if (c->next == nullptr) c->next = s;
}

void Publisher::subscriberRemove(Subscriber* s) noexcept {
  if (s->publisher_ != this) return;
  for (Cursor* c = cursors_; c; c = c->outer)
    if (c->next == s) c->next = s->next_;
  if (s->prev_)
    s->prev_->next_ = s->next_;
  else
    head_ = s->next_;
  if (s->next_)
    s->next_->prev_ = s->prev_;
  else
    tail_ = s->prev_;
  s->publisher_ = nullptr;
  s->next_ = s->prev_ = nullptr;
}

std::uint32_t Publisher::subscriberCount() const noexcept {
  std::uint32_t n = 0;
  for (Subscriber* s = head_; s; s = s->next_) ++n;
  return n;
}

void Publisher::publishSlow(Zel::AttrId attributeId, void const* key) const {
  Cursor cursor{head_, cursors_};
  cursors_ = &cursor;
  struct Pop {  // also when a reactor throws: the cursor lives on this frame
    Publisher const* p;
    Cursor* c;
    ~Pop() { p->cursors_ = c->outer; }
  } pop{this, &cursor};
  while (Subscriber* s = cursor.next) {
    cursor.next = s->next_;
    if (s->dispatch) s->dispatch(*s, attributeId, key);
  }
}

}  // namespace Quill
