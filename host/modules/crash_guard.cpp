#include "host/modules/crash_guard.h"

#include <atomic>

#if defined(__unix__)
#include <setjmp.h>
#include <signal.h>
#include <unistd.h>

#include <vector>
#endif

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::atomic<bool> isExpecting = false;
std::atomic<bool> crashed = false;

}  // namespace

bool hasCrashed() noexcept { return crashed; }

#if defined(__unix__)

namespace {

/// Where this thread goes on; null outside survives().
thread_local sigjmp_buf* wayOut = nullptr;

extern "C" void leave(int number) {
  if (wayOut != nullptr) siglongjmp(*wayOut, number);
  signal(number, SIG_DFL);
  kill(getpid(), number);
}

/// For the handler, when it is the stack that is used up.
class OtherStack {
public:
  OtherStack() : bytes_(std::size_t{64} << 10) {
    stack_t wanted{};
    wanted.ss_sp = bytes_.data();
    wanted.ss_size = bytes_.size();
    isSet_ = sigaltstack(&wanted, &before_) == 0;
  }
  ~OtherStack() {
    if (isSet_) sigaltstack(&before_, nullptr);
  }
  OtherStack(const OtherStack&) = delete;
  OtherStack& operator=(const OtherStack&) = delete;

private:
  std::vector<char> bytes_;
  stack_t before_{};
  bool isSet_ = false;
};

}  // namespace

void expectCrashes() noexcept {
  if (isExpecting.exchange(true)) return;
  struct sigaction action {};
  action.sa_handler = leave;
  action.sa_flags = SA_ONSTACK | SA_NODEFER;
  sigemptyset(&action.sa_mask);
  for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) sigaction(number, &action, nullptr);
}

bool survives(const std::function<void()>& work) {
  if (!isExpecting) {
    work();
    return true;
  }
  const OtherStack stack;
  sigjmp_buf here;
  if (sigsetjmp(here, 1) != 0) {
    wayOut = nullptr;
    crashed = true;
    return false;
  }
  wayOut = &here;
  try {
    work();
  } catch (...) {
    wayOut = nullptr;
    throw;
  }
  wayOut = nullptr;
  return true;
}

#else

void expectCrashes() noexcept {}

bool survives(const std::function<void()>& work) {
  work();
  return true;
}

#endif

}  // namespace TolmSDK::Graphics::sfg::host
