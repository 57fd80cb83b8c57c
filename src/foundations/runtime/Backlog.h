// Backlogs: how a reactor moves a large amount of work out of itself. The reactor adds a key (a
// key already present stays once) and schedules the task; the task's body runs _processBacklog,
// which works on a snapshot of the keys, yields when the scheduler says so, and keeps a bookmark
// so that the next run resumes after the last key handled. Keys added during a run land in the
// live set and are handled in a later run, never lost.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <utility>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/HashMap2018.h"
#include "foundations/runtime/TaskScheduler.h"

namespace ZelQuill {

struct QuillBacklogProgress {
  std::uint64_t handled = 0;
  std::uint64_t pending = 0;
  friend std::ostream& operator<<(std::ostream& os, QuillBacklogProgress const& p) {
    return os << "backlog progress: handled " << p.handled << ", pending " << p.pending;
  }
};

// The progress of a walk over a whole collection held outside a backlog.
struct TaskWalkCollectionProgress {
  std::uint64_t handled = 0;
  bool finished = false;
  friend std::ostream& operator<<(std::ostream& os, TaskWalkCollectionProgress const& p) {
    return os << "walk progress: handled " << p.handled << (p.finished ? ", finished" : ", yielded");
  }
};

namespace Impl {

// One run over a backlog set: snapshot, resume at the bookmark, wrap round to it, and on yield
// put the unhandled keys back with the bookmark at the next one.
template <class K, class ShouldYield, class ProcessOne>
QuillBacklogProgress _processBacklog(Zel::HashMap2018<K, void>& backlog, std::optional<K>& bookmark,
                                     ShouldYield&& shouldYield, ProcessOne&& processOne) {
  // Keys added from here on go to the now empty live set, which keeps its seed and so its order.
  Zel::HashMap2018<K, void> snapshot(std::move(backlog));
  QuillBacklogProgress progress;
  bool const fromBookmark = bookmark.has_value();
  std::optional<K> const mark = bookmark;
  bool wrapped = false;
  bool stopped = false;
  auto it = fromBookmark ? snapshot.iteratorAt(*mark) : snapshot.iterator();
  for (;;) {
    for (; it; it.advance()) {
      if (wrapped && !snapshot.orderLess(it.currNodeMaybeStale(), *mark)) break;
      if (shouldYield()) {
        stopped = true;
        break;
      }
      K const key = it.currNodeMaybeStale();
      processOne(key);
      ++progress.handled;
    }
    if (stopped || !fromBookmark || wrapped) break;
    wrapped = true;
    it = snapshot.iterator();
  }
  if (!stopped) {
    bookmark.reset();
    progress.pending = backlog.size();
    return progress;
  }
  K const next = it.currNodeMaybeStale();
  if (!wrapped) {
    if (fromBookmark)
      snapshot.eraseRange(*mark, next);
    else
      snapshot.eraseBefore(next);
  } else {
    snapshot.eraseFrom(*mark);
    snapshot.eraseBefore(next);
  }
  bookmark = next;
  backlog.updateG(std::move(snapshot));
  progress.pending = backlog.size();
  return progress;
}

}  // namespace Impl
}  // namespace ZelQuill

namespace Zel {

// A backlog attribute: the live key set and its bookmark. While a run is going on only adding is
// allowed; other mutations are programming errors.
template <class K, std::uint32_t Salt>
class Backlog {
 public:
  Backlog() : set_(Salt) {}

  bool add(K const& k) { return set_.insert(k); }
  [[nodiscard]] bool has(K const& k) const { return set_.contains(k); }
  bool del(K const& k) {
    check("backlogDel");
    return set_.erase(k);
  }
  void delAll() {
    check("backlogDelAll");
    set_.clear();
    bookmark_.reset();
  }
  [[nodiscard]] std::size_t size() const noexcept { return set_.size(); }
  [[nodiscard]] bool empty() const noexcept { return set_.empty(); }
  [[nodiscard]] std::optional<K> const& bookmark() const noexcept { return bookmark_; }
  [[nodiscard]] bool processing() const noexcept { return processing_; }
  [[nodiscard]] HashMap2018<K, void> const& set() const noexcept { return set_; }

  // One run of the backlog for `task`: handles keys until the task should yield, counts the work
  // on the task, and schedules it again if keys remain.
  template <class ProcessOne>
  ZelQuill::QuillBacklogProgress run(Halyard::Task& task, ProcessOne&& processOne) {
    check("backlogRun");
    processing_ = true;
    struct Done {
      bool& flag;
      ~Done() { flag = false; }
    } done{processing_};
    auto progress = ZelQuill::Impl::_processBacklog(
        set_, bookmark_, [&task] { return task.taskShouldYield(); }, std::forward<ProcessOne>(processOne));
    task.taskWorkCountInc(progress.handled);
    task.taskWorkPendingIs(progress.pending);
    if (progress.pending) task.scheduleTask();
    return progress;
  }

 private:
  void check(char const* method) const {
    if (processing_) throwBacklogProcessingException(method);
  }

  HashMap2018<K, void> set_;
  std::optional<K> bookmark_;
  bool processing_ = false;
};

}  // namespace Zel

// A backlog: xIs(key) adds a key, xHas, xDel, xDelAll, xSize, xBookmark, and xRun(task, handler).
#define ZEL_BACKLOG(Key, name)                                                                 \
 public:                                                                                       \
  bool name##Is(Key const& k) { return name##_.add(k); }                                       \
  [[nodiscard]] bool name##Has(Key const& k) const { return name##_.has(k); }                  \
  bool name##Del(Key const& k) { return name##_.del(k); }                                      \
  void name##DelAll() { name##_.delAll(); }                                                    \
  [[nodiscard]] std::size_t name##Size() const noexcept { return name##_.size(); }             \
  [[nodiscard]] std::optional<Key> const& name##Bookmark() const noexcept { return name##_.bookmark(); } \
  template <class F>                                                                           \
  ::ZelQuill::QuillBacklogProgress name##Run(::Halyard::Task& task, F&& processOne) {          \
    return name##_.run(task, std::forward<F>(processOne));                                     \
  }                                                                                            \
                                                                                               \
 private:                                                                                      \
  ::Zel::Backlog<Key, ZEL_SALT(__LINE__)> name##_;                                             \
                                                                                               \
 public:
