#include "foundations/runtime/Mount.h"

#include "foundations/runtime/Exception.h"

namespace Cell {
Quill::String path(std::string_view relativePath, std::uint32_t cellId) {
  return Quill::String("cell/" + std::to_string(cellId) + "/" + std::string(relativePath));
}
}  // namespace Cell

namespace Zel {

Quill::Ptr<Entity> EntityStore::getEntity(std::string_view path) const {
  auto it = entities_.find(path);
  return it == entities_.end() ? Quill::Ptr<Entity>() : it->second;
}

void EntityStore::entityIs(std::string_view path, Quill::Ptr<Entity> entity) {
  entities_[std::string(path)] = std::move(entity);
}

void EntityStore::entityDel(std::string_view path) {
  auto it = entities_.find(path);
  if (it != entities_.end()) entities_.erase(it);
}

std::vector<std::string> EntityStore::paths() const {
  std::vector<std::string> out;
  for (auto const& [p, e] : entities_) out.push_back(p);
  return out;
}

void EntityStore::typeFactoryIs(std::string_view typeName, TypeFactory factory) {
  factories_[std::string(typeName)] = std::move(factory);
}

Quill::Ptr<Entity> EntityStore::findOrCreate(std::string_view path, std::string_view typeName) {
  if (auto e = getEntity(path)) return e;
  auto f = factories_.find(typeName);
  if (f == factories_.end()) return {};
  Quill::Ptr<Entity> e = f->second();
  entityIs(path, e);
  return e;
}

}  // namespace Zel

namespace Cairn {

std::size_t MountGroup::doCompleteMounts() {
  std::size_t n = 0;
  for (Mount const& m : queued_) {
    manager_->findOrCreate(m.path.view(), m.typeName.view());
    done_.push_back(m);
    ++n;
  }
  queued_.clear();
  return n;
}

}  // namespace Cairn

namespace ZelSharedMem {

Quill::Ptr<Zel::Entity> EntityManager::doMount(std::string_view path, std::string_view typeName,
                                               ZelSkein::MountInfo const& info) {
  mounts_.insert_or_assign(std::string(path), MountRecord{Quill::String(typeName), info});
  return findOrCreate(path, typeName);
}

void EntityManager::assertSafeToAccess(Zel::Entity const* entity, std::string_view path) const {
  QUILL_ASSERT(entity != nullptr && getEntity(path).get() == entity, "ZelSharedMem::EntityManager: entity not mounted");
}

void EntityManager::doUnmount(std::string_view path) {
  auto it = mounts_.find(path);
  if (it != mounts_.end()) mounts_.erase(it);
}

EntityManager::MountRecord const* EntityManager::mountRecord(std::string_view path) const {
  auto it = mounts_.find(path);
  return it == mounts_.end() ? nullptr : &it->second;
}

void MountGroup::doMount(std::string_view path, std::string_view typeName, ZelBrine::MountInfo const& info) {
  queued_.push_back(Queued{std::string(path), std::string(typeName), info});
}

std::size_t MountGroup::doCompleteMounts() {
  std::size_t n = 0;
  for (Queued const& q : queued_) {
    manager_->doMount(q.path, q.typeName, ZelSkein::MountInfo(ZelSkein::readerWithWriter));
    ++n;
  }
  queued_.clear();
  return n;
}

}  // namespace ZelSharedMem
