// Small records and state machines on which the runtime's own tests drive the attribute
// templates, the reactor dispatch, nested machines, tasks and timers.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/Backlog.h"
#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/TaskMember.h"

namespace BowlineTest {

class Item : public Zel::Entity {
 public:
  ZEL_CONST(int, key)
  ZEL_ATTR(int, value, 130)

 protected:
  friend struct Zel::Factory;
  explicit Item(int key) : key_(key) {}
};

class Record : public Zel::Entity {
 public:
  static Quill::Ptr<Record> RecordIs() { return Zel::make<Record>(); }
  ZEL_ATTR(int, status, 130)
  ZEL_ATTR_DEFAULT(std::uint8_t, version, 131, 0)
  ZEL_OWNED_MAP(int, Item, item, 132)
  ZEL_MAP(int, std::string, label, 133)
  ZEL_SET(int, flag, 134)
  ZEL_OWNED_TREE(int, Item, pref, 135)

 protected:
  friend struct Zel::Factory;
  Record() = default;
};

// Watches a Record: a reactor on status, one on item with a nested machine per item.
class WatchSm : public Zel::StateMachine<WatchSm> {
 public:
  class NestedSm_item : public Zel::NestedSm<WatchSm, int, Item> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const*) override {
      if (id == Item::valueId) owner()->handleItemValue(key());
    }
  };

  static Quill::Ptr<WatchSm> WatchSmIs(Quill::Ptr<Record const> record) { return Zel::make<WatchSm>(record); }

  void handleStatus() { log.push_back("status " + std::to_string(record()->status())); }
  void handleItem(int const& key) {
    log.push_back("item " + std::to_string(key) + (record()->itemHas(key) ? " present" : " gone") +
                  (itemSmHas(key) ? " nested" : " no-nested"));
    if (onItem) onItem(key);
  }
  void handleItemSecond(int const& key) {
    log.push_back("second " + std::to_string(key));
    if (onSecond) onSecond(key);
  }
  void handleItemValue(int key) {
    log.push_back("value " + std::to_string(key) + "=" + std::to_string(record()->item(key)->value()));
  }
  void handleInitialized() { initializedIs(true); }

  ZEL_ATTR(bool, initialized, 130)
  ZEL_NESTED(int, NestedSm_item, itemSm)
  using RecordReactors = Zel::Reactors<Zel::On<Record::statusId, &WatchSm::handleStatus>,
                                       Zel::On<Record::itemId, &WatchSm::handleItem>,
                                       Zel::On<Record::itemId, &WatchSm::handleItemSecond>,
                                       Zel::Reconcile<Record::itemId, &WatchSm::itemSm_>>;
  ZEL_INPUT(Record, record, RecordReactors)

  std::vector<std::string> log;
  std::function<void(int)> onItem;
  std::function<void(int)> onSecond;

 protected:
  friend struct Zel::Factory;
  explicit WatchSm(Quill::Ptr<Record const> r) {
    recordIs(std::move(r));
    if (record()) handleInitialized();
  }
  // As an owned element of a collection keyed by int.
  WatchSm(int const&, Quill::Ptr<Record const> r) : WatchSm(std::move(r)) {}
};

// Owns watchers by key, as a container owns its machines.
class WatchHolder : public Zel::Entity {
 public:
  static Quill::Ptr<WatchHolder> WatchHolderIs() { return Zel::make<WatchHolder>(); }
  ZEL_OWNED_MAP(int, WatchSm, watcher, 130)

 protected:
  friend struct Zel::Factory;
  WatchHolder() = default;
};

// A backlog of keys worked off by a task, as the route machines do.
class BacklogSm : public Zel::StateMachine<BacklogSm> {
 public:
  static Quill::Ptr<BacklogSm> BacklogSmIs() { return Zel::make<BacklogSm>(); }

  void add(int key) {
    workIs(key);
    workTask()->scheduleTask();
  }
  void workBody() {
    lastProgress = workRun(*workTask(), [this](int const& key) {
      handled.push_back(key);
      if (onHandle) onHandle(key);
    });
    ++runs;
  }
  void tick() { ++ticks; }

  ZEL_BACKLOG(int, work)
  ZEL_TASK(workTask, workBody)
  ZEL_TIMER(timer, tick)

  std::vector<int> handled;
  std::function<void(int)> onHandle;
  ZelQuill::QuillBacklogProgress lastProgress;
  int runs = 0;
  int ticks = 0;

 protected:
  friend struct Zel::Factory;
  BacklogSm() { workTaskIs(Halyard::TaskSchedulerRoot::findOrCreateScheduler(), 3, "work"); }
};

}  // namespace BowlineTest
