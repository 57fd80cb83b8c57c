#include "host/fuzz/Subprocess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include <fmt/format.h>

extern char** environ;

namespace BowlineTest::Fuzz {

namespace {

std::string readAll(std::filesystem::path const& p) {
  std::ifstream in(p, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

// The environment of the child: ours, with the sanitizers told to abort on a report.
std::vector<std::string> childEnvironment() {
  std::vector<std::string> env;
  std::string asan = "ASAN_OPTIONS=abort_on_error=1";
  std::string ubsan = "UBSAN_OPTIONS=abort_on_error=1:print_stacktrace=1";
  for (char** e = environ; *e; ++e) {
    std::string_view const v(*e);
    if (v.rfind("ASAN_OPTIONS=", 0) == 0) {
      asan += ":" + std::string(v.substr(13));
    } else if (v.rfind("UBSAN_OPTIONS=", 0) == 0) {
      ubsan += ":" + std::string(v.substr(14));
    } else {
      env.emplace_back(v);
    }
  }
  env.push_back(asan);
  env.push_back(ubsan);
  return env;
}

std::vector<char*> pointers(std::vector<std::string>& strings) {
  std::vector<char*> out;
  for (auto& s : strings) out.push_back(s.data());
  out.push_back(nullptr);
  return out;
}

// Waits for the child up to the limit: true when it ended (and was reaped into `status`).
bool waitWithin(pid_t pid, double seconds, int& status) {
  int const pidfd = int(syscall(SYS_pidfd_open, pid, 0));
  if (pidfd < 0) return waitpid(pid, &status, 0) == pid;  // no pidfd (an old kernel): no watchdog
  pollfd p{pidfd, POLLIN, 0};
  int ready = 0;
  do {
    ready = poll(&p, 1, int(seconds * 1000));
  } while (ready < 0 && errno == EINTR);
  close(pidfd);
  return ready != 0 && waitpid(pid, &status, 0) == pid;
}

}  // namespace

std::string ProcessOutcome::describe() const {
  switch (end) {
    case End::exited: return fmt::format("exit {}", code);
    case End::signalled: return fmt::format("signal {} ({})", code, strsignal(code));
    case End::timedOut: return "killed by the watchdog";
    case End::failedToStart: break;
  }
  return fmt::format("could not start: {}", std::strerror(code));
}

ProcessOutcome runProcess(std::vector<std::string> const& argv, std::filesystem::path const& dir,
                          std::string const& stem, double timeoutSeconds) {
  ProcessOutcome result;
  auto const outPath = dir / (stem + ".out");
  auto const errPath = dir / (stem + ".err");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  std::vector<std::string> args = argv;
  std::vector<std::string> env = childEnvironment();
  auto argp = pointers(args);
  auto envp = pointers(env);
  pid_t pid = 0;
  int const rc = posix_spawn(&pid, args[0].c_str(), &actions, nullptr, argp.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) {
    result.code = rc;
    return result;
  }
  int status = 0;
  if (!waitWithin(pid, timeoutSeconds, status)) {
    kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
    result.end = ProcessOutcome::End::timedOut;
  } else if (WIFSIGNALED(status)) {
    result.end = ProcessOutcome::End::signalled;
    result.code = WTERMSIG(status);
  } else {
    result.end = ProcessOutcome::End::exited;
    result.code = WEXITSTATUS(status);
  }
  result.out = readAll(outPath);
  result.err = readAll(errPath);
  return result;
}

}  // namespace BowlineTest::Fuzz
