// Mounts: how the library reaches the tables that other agents share with it. A mount group queues
// mounts and completes them all together; the hosting agent then calls the root's
// doMountsComplete(), after which getEntity(path) returns the mounted entity. Here every store is
// in-process: the platform stand-ins put entities at paths, and a mount of a path that holds
// nothing yet creates an empty entity of the mounted type through the type's registered factory.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "foundations/runtime/Entity.h"
#include "foundations/runtime/String.h"

namespace Cell {
// The path of a relative path in this cell.
Quill::String path(std::string_view relativePath, std::uint32_t cellId = 0);
}  // namespace Cell

namespace Zel {

// Entities by path, with factories by type name for mounts of paths not yet populated.
class EntityStore {
 public:
  using TypeFactory = std::function<Quill::Ptr<Entity>()>;

  [[nodiscard]] Quill::Ptr<Entity> getEntity(std::string_view path) const;
  void entityIs(std::string_view path, Quill::Ptr<Entity> entity);
  void entityDel(std::string_view path);
  [[nodiscard]] std::vector<std::string> paths() const;
  void typeFactoryIs(std::string_view typeName, TypeFactory factory);
  // The entity at the path, created from the type's factory when absent (null: unknown type).
  Quill::Ptr<Entity> findOrCreate(std::string_view path, std::string_view typeName);

  template <class T>
  [[nodiscard]] Quill::Ptr<T> get(std::string_view path) const {
    return Quill::dynamic_ptr_cast<T>(getEntity(path));
  }

 private:
  std::map<std::string, Quill::Ptr<Entity>, std::less<>> entities_;
  std::map<std::string, TypeFactory, std::less<>> factories_;
};

}  // namespace Zel

namespace Cairn {

struct AllMountFlags {
  std::uint32_t value = 0;
  void valIs(std::uint32_t v) { value = v; }
};

// A mount request: path, type name, flags ("r" read access, "w" write access).
struct Mount {
  Quill::String path;
  Quill::String typeName;
  std::string flags;
  AllMountFlags allFlags;
  Mount(Quill::String p, Quill::String type) : path(std::move(p)), typeName(std::move(type)) {}
  Mount& handleFlags(std::string_view f) {
    flags = std::string(f);
    return *this;
  }
};

// The central state database of this process.
class EntityManager : public Zel::EntityStore {};

class MountGroup {
 public:
  explicit MountGroup(EntityManager* manager) : manager_(manager) {}
  virtual ~MountGroup() = default;

  void doMount(Mount const& mount) { queued_.push_back(mount); }
  // Completes every queued mount at once; returns how many were completed.
  std::size_t doCompleteMounts();
  [[nodiscard]] bool mountsComplete() const noexcept { return queued_.empty(); }
  [[nodiscard]] std::vector<Mount> const& pendingMounts() const noexcept { return queued_; }
  [[nodiscard]] std::vector<Mount> const& completedMounts() const noexcept { return done_; }

 private:
  EntityManager* manager_;
  std::vector<Mount> queued_;
  std::vector<Mount> done_;
};

}  // namespace Cairn

namespace ZelSkein {

enum ZelSkeinType : std::uint8_t {
  writerTable = 0,         // a table this process writes
  readerWithWriter = 2,    // a table this process reads and another writes
  readOnlyNoCollection = 3 // a read-only table without collection info
};

struct CollectionInfo {
  Quill::String name;
  std::uint32_t capacity = 0;
  std::uint32_t reserved = 0;  // always 0
};

class MountInfo {
 public:
  explicit MountInfo(ZelSkeinType type) : type_(type) {}
  void collectionInfoIs(CollectionInfo info) { collections_.push_back(std::move(info)); }
  [[nodiscard]] ZelSkeinType type() const noexcept { return type_; }
  [[nodiscard]] std::vector<CollectionInfo> const& collectionInfo() const noexcept { return collections_; }

 private:
  ZelSkeinType type_;
  std::vector<CollectionInfo> collections_;
};

}  // namespace ZelSkein

namespace ZelBrine {
// A read mount made through a shared-memory mount group.
struct MountInfo {
  bool readOnly = true;
};
}  // namespace ZelBrine

namespace ZelSharedMem {

// The shared-memory tables of this process, in-process here.
class EntityManager : public Zel::EntityStore {
 public:
  struct MountRecord {
    Quill::String typeName;
    ZelSkein::MountInfo info;
  };
  // Mounts the table at the path (creating it when this process is its writer or it is absent).
  Quill::Ptr<Zel::Entity> doMount(std::string_view path, std::string_view typeName, ZelSkein::MountInfo const& info);
  void assertSafeToAccess(Zel::Entity const* entity, std::string_view path) const;
  void doUnmount(std::string_view path);
  // Removes what a writer left at the path.
  void cleanup(std::string_view path) { entityDel(path); }
  [[nodiscard]] MountRecord const* mountRecord(std::string_view path) const;

 private:
  std::map<std::string, MountRecord, std::less<>> mounts_;
};

class MountGroup {
 public:
  explicit MountGroup(EntityManager* manager) : manager_(manager) {}
  virtual ~MountGroup() = default;
  virtual void doMount(std::string_view path, std::string_view typeName, ZelBrine::MountInfo const& info);
  std::size_t doCompleteMounts();
  [[nodiscard]] bool mountsComplete() const noexcept { return queued_.empty(); }

 private:
  struct Queued {
    std::string path;
    std::string typeName;
    ZelBrine::MountInfo info;
  };
  EntityManager* manager_;
  std::vector<Queued> queued_;
};

}  // namespace ZelSharedMem
