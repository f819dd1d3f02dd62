#include "host/modules/child_process.h"

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define SFG_WATCHES_THREADS 1
#endif
#if __has_feature(address_sanitizer)
#define SFG_WATCHES_ADDRESSES 1
#endif
#endif
#ifdef __SANITIZE_THREAD__
#define SFG_WATCHES_THREADS 1
#endif
#ifdef __SANITIZE_ADDRESS__
#define SFG_WATCHES_ADDRESSES 1
#endif

#if defined(__unix__) && !defined(SFG_WATCHES_THREADS)

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <set>

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr int kUnforeseen = 70;

/// Sockets of this process to its children: none of them gets those of others.
struct Sockets {
  std::mutex mutex;
  std::set<int> open;
};

Sockets& sockets() {
  static Sockets one;
  return one;
}

bool sendBytes(int socket, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t sent = send(socket, bytes, size, MSG_NOSIGNAL);
    if (sent < 0 && errno != EINTR) return false;
    if (sent < 0) continue;
    bytes += sent;
    size -= static_cast<std::size_t>(sent);
  }
  return true;
}

/// A message is its length and its bytes.
bool sendMessage(int socket, const std::string& message) {
  const std::uint64_t size = message.size();
  return sendBytes(socket, reinterpret_cast<const char*>(&size), sizeof(size)) &&
         sendBytes(socket, message.data(), message.size());
}

/// Until all of it is there, the other side has ended, or it is too late.
class MessageReader {
public:
  MessageReader(int socket, std::chrono::milliseconds patience)
      : socket_(socket), isPatient_(patience.count() == 0), end_(Clock::now() + patience) {}

  bool read(std::string& message) {
    std::uint64_t size = 0;
    if (!readBytes(reinterpret_cast<char*>(&size), sizeof(size))) return false;
    message.resize(size);
    return readBytes(message.data(), size);
  }
  bool isTooLate() const noexcept { return isTooLate_; }

private:
  using Clock = std::chrono::steady_clock;

  bool readBytes(char* bytes, std::size_t size) {
    while (size > 0) {
      if (!wait()) return false;
      const ssize_t count = recv(socket_, bytes, size, 0);
      if (count == 0 || (count < 0 && errno != EINTR)) return false;
      if (count < 0) continue;
      bytes += count;
      size -= static_cast<std::size_t>(count);
    }
    return true;
  }

  bool wait() {
    if (isPatient_) return true;
    for (;;) {
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end_ - Clock::now()).count();
      isTooLate_ = left <= 0;
      if (isTooLate_) return false;
      pollfd waited{socket_, POLLIN, 0};
      const int ready = poll(&waited, 1, static_cast<int>(std::min<long long>(left, 1 << 30)));
      if (ready > 0) return true;
      if (ready < 0 && errno != EINTR) return false;
    }
  }

  int socket_;
  bool isPatient_;
  Clock::time_point end_;
  bool isTooLate_ = false;
};

/// The system's own limit stays.
template <class Resource>
void setLimit(Resource resource, rlim_t value) {
  rlimit limit{};
  if (getrlimit(resource, &limit) != 0) return;
  limit.rlim_cur = std::min(limit.rlim_max, value);
  setrlimit(resource, &limit);
}

/// From now on, in all threads of the process.
void limitProcessorTime(std::chrono::seconds limit) {
  rusage used{};
  if (limit.count() == 0 || getrusage(RUSAGE_SELF, &used) != 0) return;
  const auto seconds = used.ru_utime.tv_sec + used.ru_stime.tv_sec + 1;
  setLimit(RLIMIT_CPU, static_cast<rlim_t>(seconds + limit.count()));
}

void limitMemory(std::uint64_t limit) {
#ifdef SFG_WATCHES_ADDRESSES  // which asks for all addresses that there are
  static_cast<void>(limit);
#else
  unsigned long long pages = 0;
  std::FILE* const file = limit > 0 ? std::fopen("/proc/self/statm", "r") : nullptr;
  if (file == nullptr) return;
  const bool isRead = std::fscanf(file, "%llu", &pages) == 1;
  std::fclose(file);
  const auto page = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  if (isRead) setLimit(RLIMIT_AS, static_cast<rlim_t>(pages * page + limit));
#endif
}

[[noreturn]] void serve(int socket, ChildProcess::Work work, const ChildLimits& limits) {
  for (const int number : {SIGTERM, SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGXCPU})
    signal(number, SIG_DFL);
  // Ctrl-C reaches all processes; this one ends with the one that it works for.
  for (const int number : {SIGINT, SIGHUP, SIGQUIT}) signal(number, SIG_IGN);
  for (const int other : sockets().open) close(other);
  setLimit(RLIMIT_CORE, 0);
  limitMemory(limits.memory);
  try {
    for (std::string request; MessageReader(socket, {}).read(request);) {
      limitProcessorTime(limits.processorTime);
      if (!sendMessage(socket, work(request))) break;
    }
    _exit(0);
  } catch (...) {
    _exit(kUnforeseen);
  }
}

}  // namespace

std::unique_ptr<ChildProcess> ChildProcess::start(Work work, const ChildLimits& limits) {
  const std::lock_guard<std::mutex> lock(sockets().mutex);
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return nullptr;
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  const pid_t process = fork();
  if (process == 0) {
    close(ends[0]);
    serve(ends[1], work, limits);
  }
  close(ends[1]);
  if (process < 0) {
    close(ends[0]);
    return nullptr;
  }
  sockets().open.insert(ends[0]);
  return std::unique_ptr<ChildProcess>(new ChildProcess(ends[0], process, limits));
}

ChildProcess::ChildProcess(int socket, int process, const ChildLimits& limits)
    : socket_(socket), process_(process), limits_(limits) {}

ChildProcess::~ChildProcess() {
  {
    const std::lock_guard<std::mutex> lock(sockets().mutex);
    sockets().open.erase(socket_);
    close(socket_);
  }
  if (process_ < 0) return;
  kill(process_, SIGKILL);
  while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

ChildOutcome ChildProcess::ask(const std::string& request) {
  ChildOutcome outcome;
  MessageReader reader(socket_, limits_.patience);
  if (process_ >= 0 && sendMessage(socket_, request) && reader.read(outcome.answer)) {
    outcome.kind = ChildOutcome::Kind::answered;
    return outcome;
  }
  int status = 0;
  if (reader.isTooLate()) kill(process_, SIGKILL);
  while (process_ >= 0 && waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  outcome.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  if (reader.isTooLate() || outcome.signal == SIGXCPU) outcome.kind = ChildOutcome::Kind::outOfTime;
  return outcome;
}

}  // namespace TolmSDK::Graphics::sfg::host

#else

namespace TolmSDK::Graphics::sfg::host {

std::unique_ptr<ChildProcess> ChildProcess::start(Work, const ChildLimits&) { return nullptr; }
ChildProcess::ChildProcess(int socket, int process, const ChildLimits& limits)
    : socket_(socket), process_(process), limits_(limits) {}
ChildProcess::~ChildProcess() = default;
ChildOutcome ChildProcess::ask(const std::string&) { return {}; }

}  // namespace TolmSDK::Graphics::sfg::host

#endif
