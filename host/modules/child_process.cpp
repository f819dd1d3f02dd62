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
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr int kUnforeseen = 70;

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
  bool isTooLate() const noexcept { return isTooLate_; }

private:
  using Clock = std::chrono::steady_clock;

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

void takeSignals() {
  for (const int number : {SIGTERM, SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGXCPU, SIGCHLD})
    signal(number, SIG_DFL);
  // Ctrl-C reaches all processes; these end with the one that they work for.
  for (const int number : {SIGINT, SIGHUP, SIGQUIT}) signal(number, SIG_IGN);
}

[[noreturn]] void serve(int socket, ChildProcess::Work work, const ChildLimits& limits) {
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

/// What a maker is asked for: another child, or the end of one.
using Order = pid_t;
constexpr Order kAnother = 0;

/// A process that has been made, with the socket to it beside these bytes, or the status of one that has
/// ended.
struct Made {
  pid_t process = -1;
  int status = 0;
};

/// A socket that goes with bytes, in the layout that the system asks for.
class Enclosure {
public:
  explicit Enclosure(Made& made) : bytes_{&made, sizeof(made)} {
    header_.msg_iov = &bytes_;
    header_.msg_iovlen = 1;
    header_.msg_control = space_;
    header_.msg_controllen = sizeof(space_);
  }
  bool send(int through, int socket) {
    cmsghdr* const part = CMSG_FIRSTHDR(&header_);
    part->cmsg_level = SOL_SOCKET;
    part->cmsg_type = SCM_RIGHTS;
    part->cmsg_len = CMSG_LEN(sizeof(socket));
    std::memcpy(CMSG_DATA(part), &socket, sizeof(socket));
    ssize_t sent = 0;
    while ((sent = sendmsg(through, &header_, MSG_NOSIGNAL)) < 0 && errno == EINTR) {
    }
    return sent == static_cast<ssize_t>(sizeof(Made));
  }
  /// The socket; -1 where there is none.
  int receive(int through) {
    ssize_t got = 0;
    while ((got = recvmsg(through, &header_, MSG_CMSG_CLOEXEC | MSG_WAITALL)) < 0 && errno == EINTR) {
    }
    const cmsghdr* const part = CMSG_FIRSTHDR(&header_);
    int socket = -1;
    if (got == static_cast<ssize_t>(sizeof(Made)) && part != nullptr && part->cmsg_type == SCM_RIGHTS)
      std::memcpy(&socket, CMSG_DATA(part), sizeof(socket));
    return socket;
  }

private:
  msghdr header_{};
  iovec bytes_;
  alignas(cmsghdr) char space_[CMSG_SPACE(sizeof(int))] = {};
};

/// Two ends that no program started later gets.
bool openSockets(int (&ends)[2]) {
  if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return false;
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  return true;
}

/// A maker's answer to an order of another child.
bool makeOne(int control, ChildProcess::Work work, const ChildLimits& limits) {
  Made made;
  int ends[2];
  if (!openSockets(ends)) return sendBytes(control, reinterpret_cast<const char*>(&made), sizeof(made));
  made.process = fork();
  if (made.process == 0) {
    close(control);
    close(ends[0]);
    serve(ends[1], work, limits);
  }
  const bool isSent = Enclosure(made).send(control, ends[0]);
  for (const int end : ends) close(end);
  return isSent;
}

int waitFor(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

[[noreturn]] void makeChildren(int control, ChildProcess::Work work, const ChildLimits& limits) {
  takeSignals();
  Order order = kAnother;
  for (bool isAsked = true; isAsked;) {
    isAsked = MessageReader(control, {}).readBytes(reinterpret_cast<char*>(&order), sizeof(order));
    if (isAsked && order == kAnother) {
      isAsked = makeOne(control, work, limits);
    } else if (isAsked) {
      const Made ended{order, waitFor(order)};
      isAsked = sendBytes(control, reinterpret_cast<const char*>(&ended), sizeof(ended));
    }
  }
  _exit(0);
}

}  // namespace

std::shared_ptr<ChildMaker> ChildMaker::start(Work work, const ChildLimits& limits) {
  int ends[2];
  if (!openSockets(ends)) return nullptr;
  const pid_t process = fork();
  if (process == 0) {
    close(ends[0]);
    makeChildren(ends[1], work, limits);
  }
  close(ends[1]);
  if (process < 0) {
    close(ends[0]);
    return nullptr;
  }
  return std::shared_ptr<ChildMaker>(new ChildMaker(ends[0], process, limits));
}

ChildMaker::ChildMaker(int socket, int process, const ChildLimits& limits)
    : socket_(socket), process_(process), limits_(limits) {}

ChildMaker::~ChildMaker() {
  close(socket_);
  kill(process_, SIGKILL);
  waitFor(process_);
}

std::unique_ptr<ChildProcess> ChildMaker::make() {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Order order = kAnother;
  if (!sendBytes(socket_, reinterpret_cast<const char*>(&order), sizeof(order))) return nullptr;
  Made made;
  const int socket = Enclosure(made).receive(socket_);
  if (socket >= 0 && made.process > 0)
    return std::unique_ptr<ChildProcess>(new ChildProcess(shared_from_this(), socket, made.process));
  if (socket >= 0) close(socket);
  return nullptr;
}

int ChildMaker::statusOf(int process) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Order order = process;
  Made ended;
  if (!sendBytes(socket_, reinterpret_cast<const char*>(&order), sizeof(order)) ||
      !MessageReader(socket_, {}).readBytes(reinterpret_cast<char*>(&ended), sizeof(ended)))
    return 0;
  return ended.status;
}

ChildProcess::ChildProcess(std::shared_ptr<ChildMaker> maker, int socket, int process)
    : maker_(std::move(maker)), socket_(socket), process_(process) {}

ChildProcess::~ChildProcess() {
  close(socket_);
  if (process_ < 0) return;
  kill(process_, SIGKILL);
  maker_->statusOf(process_);
}

ChildOutcome ChildProcess::ask(const std::string& request) {
  ChildOutcome outcome;
  MessageReader reader(socket_, maker_->limits_.patience);
  if (process_ >= 0 && sendMessage(socket_, request) && reader.read(outcome.answer)) {
    outcome.kind = ChildOutcome::Kind::answered;
    return outcome;
  }
  if (reader.isTooLate()) kill(process_, SIGKILL);
  const int status = process_ >= 0 ? maker_->statusOf(process_) : 0;
  process_ = -1;
  outcome.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  if (reader.isTooLate() || outcome.signal == SIGXCPU) outcome.kind = ChildOutcome::Kind::outOfTime;
  return outcome;
}

}  // namespace TolmSDK::Graphics::sfg::host

#else

namespace TolmSDK::Graphics::sfg::host {

ChildProcess::~ChildProcess() = default;
ChildOutcome ChildProcess::ask(const std::string&) { return {}; }
std::shared_ptr<ChildMaker> ChildMaker::start(Work, const ChildLimits&) { return nullptr; }
ChildMaker::~ChildMaker() = default;
std::unique_ptr<ChildProcess> ChildMaker::make() { return nullptr; }

}  // namespace TolmSDK::Graphics::sfg::host

#endif
