// Dualog: one statement, two back ends. A FlitConverter holds the place of one statement (handle,
// level, location, the statement's Flit site) and writes each message it is given to the stream/fmt
// sink when the handle's mask enables the level, and to the Flit ring when its Flit mask does. The
// arguments are evaluated once and read by both.
//
//   DUALOG(1, "Vrf: {}, Initialized --> True", vrf);   // DUALOG_H(handle, level, format, args...) too
//
// The statement costs one test of both masks when neither enables the level. Threads: as Flit.h
// for the ring, as Trace.h for the sink.
#pragma once

#include "foundations/runtime/Flit.h"
#include "foundations/runtime/Trace.h"

namespace Dualog {

class FlitConverter {
 public:
  FlitConverter(Zel::TraceHandle const& handle, int level, Flit::MsgSite& site, char const* file, int line,
                char const* function) noexcept;
  FlitConverter(FlitConverter const&) = delete;
  FlitConverter& operator=(FlitConverter const&) = delete;

  template <class... Args>
  void operator()(Zel::TraceFormat<Args...> format, Args const&... args) const {
    Quill::fmtrace(handle_, level_, file_, function_, line_, {}, format, args...);  // tests its own level
    if (handle_.flitEnabled(level_)) {
      Flit::write(site_, handle_, level_, file_, line_, format, args...);
    }
  }

 private:
  Zel::TraceHandle const& handle_;
  int level_;
  Flit::MsgSite& site_;
  char const* file_;
  int line_;
  char const* function_;
};

}  // namespace Dualog

#define DUALOG_H(handle, level, format, ...)                                                       \
  do {                                                                                             \
    ::Zel::TraceHandle const& zelDualogHandle_ = (handle);                                         \
    if (zelDualogHandle_.anyEnabled(level)) [[unlikely]] {                                         \
      static constinit ::Flit::MsgSite zelDualogSite_;                                             \
      ::Dualog::FlitConverter(zelDualogHandle_, (level), zelDualogSite_, __FILE__, __LINE__, __func__)( \
          format __VA_OPT__(, ) __VA_ARGS__);                                                      \
    }                                                                                              \
  } while (0)
#define DUALOG(level, format, ...) DUALOG_H(_defaultTraceHandle(), level, format __VA_OPT__(, ) __VA_ARGS__)
