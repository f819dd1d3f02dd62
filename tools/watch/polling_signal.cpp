#include <algorithm>
#include <thread>

#include "tools/watch/change_signal.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

using Clock = std::chrono::steady_clock;

class PollingSignal : public ChangeSignal {
public:
  explicit PollingSignal(std::chrono::milliseconds interval) : interval_(interval) {}

  void watch(const std::set<std::string>& /*folders*/) override { next_ = Clock::now() + interval_; }

  bool wait(std::chrono::milliseconds time) override {
    const Clock::time_point end = Clock::now() + time;
    std::this_thread::sleep_until(std::min(end, next_));
    if (end < next_) return false;
    next_ = Clock::now() + interval_;
    return true;
  }

private:
  std::chrono::milliseconds interval_;
  Clock::time_point next_ = Clock::now();
};

}  // namespace

std::unique_ptr<ChangeSignal> makePollingSignal(std::chrono::milliseconds interval) {
  return std::make_unique<PollingSignal>(interval);
}

}  // namespace TolmSDK::Graphics::sfg::tools
