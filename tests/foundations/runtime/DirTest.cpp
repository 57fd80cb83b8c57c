// Directories: entries before entities, one notification per change keyed by the entry's name.
#include "foundations/runtime/Dir.h"

#include <gtest/gtest.h>

#include <set>

#include "foundations/runtime/Notifiee.h"
#include "support/TestRecords.h"

namespace BowlineTest {
namespace {

class DirWatcher : public Zel::Notifiee<Zel::Dir> {
 public:
  void onAttribute(Zel::AttrId id, void const* key) override {
    if (id != Zel::Dir::entryStateId) return;
    auto const& name = *static_cast<Quill::String const*>(key);
    seen.push_back(name.str() + (notifier()->entityPtr(name) ? " entity" : " none"));
  }
  std::vector<std::string> seen;
};

TEST(DirTest, EntriesEntitiesAndTheirNotifications) {
  auto dir = Zel::Dir::DirIs("vrf");
  auto w = Zel::make<DirWatcher>();
  w->notifierIs(dir);

  dir->entryIs("red");  // announced, no table yet
  auto blue = Record::RecordIs();
  dir->entityIs("blue", blue);
  dir->entityIs("blue", blue);  // same entity: silent
  dir->entityIs("red", Record::RecordIs());
  dir->entityDel("blue");
  dir->entityDel("blue");  // absent: silent
  EXPECT_EQ(w->seen, (std::vector<std::string>{"red none", "blue entity", "red entity", "blue none"}));

  dir->entryIs("green");
  std::set<std::string> names, withEntity;
  for (auto it = dir->entryStateIteratorConst(); it; it.advance()) names.insert(it.key().str());
  for (auto it = dir->entityPtrIteratorConst(); it; it.advance()) withEntity.insert(it.name().str());
  EXPECT_EQ(names, (std::set<std::string>{"red", "green"}));
  EXPECT_EQ(withEntity, (std::set<std::string>{"red"}));
  EXPECT_NE(dir->entityPtr<Record>("red"), nullptr);
  EXPECT_EQ(dir->entityPtr<Item>("red"), nullptr) << "a typed look-up of another type finds nothing";
}

}  // namespace
}  // namespace BowlineTest
