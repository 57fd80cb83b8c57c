// Zel::Dir: a named directory of entities that another agent populates (the VRFs' tables, the
// per-VRF status entities). An entry may exist before its entity does. Every change notifies the
// entry-state attribute with the entry's name as key, for a new entity and a removed one alike;
// the reactor tells which by calling entityPtr(name).
#pragma once

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"

namespace Zel {

class Dir : public Entity {
 public:
  ZEL_ATTR_ID(entryState, 130);
  using Entries = HashMap2018<Quill::String, Quill::Ptr<Entity>>;

  static Quill::Ptr<Dir> DirIs(Quill::String name) { return make<Dir>(std::move(name)); }

  [[nodiscard]] Quill::String const& name() const noexcept { return name_; }
  [[nodiscard]] Quill::Ptr<Entity> entityPtr(Quill::String const& entry) const {
    auto const* p = entries_.find(entry);
    return p ? *p : Quill::Ptr<Entity>();
  }
  template <class T>
  [[nodiscard]] Quill::Ptr<T> entityPtr(Quill::String const& entry) const {
    return Quill::dynamic_ptr_cast<T>(entityPtr(entry));
  }
  [[nodiscard]] bool entryHas(Quill::String const& entry) const { return entries_.contains(entry); }
  [[nodiscard]] std::size_t entries() const noexcept { return entries_.size(); }

  // The writer's side. An entry without an entity is a name announced before its table exists.
  void entryIs(Quill::String const& entry) {
    if (entries_.tryEmplace(entry).second) publish(entryStateId, &entry);
  }
  void entityIs(Quill::String const& entry, Quill::Ptr<Entity> entity) {
    auto [p, inserted] = entries_.tryEmplace(entry, entity);
    if (!inserted) {
      if (*p == entity) return;
      *p = std::move(entity);
    }
    publish(entryStateId, &entry);
  }
  void entityDel(Quill::String const& entry) {
    if (entries_.erase(entry)) publish(entryStateId, &entry);
  }

  // Walks the names, also of entries that have no entity yet.
  [[nodiscard]] Entries::ConstIterator entryStateIteratorConst() const { return entries_.iterator(); }

  // Walks the entries that have an entity.
  template <class It>
  class EntityIterator {
   public:
    explicit EntityIterator(It it) : it_(std::move(it)) { skip(); }
    explicit operator bool() const { return bool(it_); }
    [[nodiscard]] Quill::String const& name() const { return it_.key(); }
    [[nodiscard]] Quill::Ptr<Entity> const& entity() const { return it_.value(); }
    void advance() {
      it_.advance();
      skip();
    }

   private:
    void skip() {
      while (it_ && !it_.value()) it_.advance();
    }
    It it_;
  };
  [[nodiscard]] EntityIterator<Entries::Iterator> entityPtrIterator() {
    return EntityIterator<Entries::Iterator>(entries_.iterator());
  }
  [[nodiscard]] EntityIterator<Entries::ConstIterator> entityPtrIteratorConst() const {
    return EntityIterator<Entries::ConstIterator>(entries_.iterator());
  }
  [[nodiscard]] Entries const& entryColl() const noexcept { return entries_; }
  [[nodiscard]] Entries const& zelColl(AttrTag<entryStateId>) const noexcept { return entries_; }

 protected:
  friend struct Factory;
  explicit Dir(Quill::String name) : name_(std::move(name)), entries_(ZEL_SALT(entryStateId)) {}

 private:
  Quill::String name_;
  Entries entries_;
};

}  // namespace Zel
