// Linux.

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <map>

#include "tools/watch/change_signal.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kEvents = IN_CREATE | IN_DELETE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVE | IN_ATTRIB |
                                  IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

class InotifySignal : public ChangeSignal {
public:
  InotifySignal(int queue, std::chrono::milliseconds interval) : queue_(queue), interval_(interval) {}
  InotifySignal(const InotifySignal&) = delete;
  InotifySignal& operator=(const InotifySignal&) = delete;
  ~InotifySignal() override { ::close(queue_); }

  void watch(const std::set<std::string>& folders) override {
    // A folder that is another one now under its old name gets a number of its own, so all are added again.
    std::map<int, std::string> watched;
    isComplete_ = true;
    for (const std::string& folder : folders) {
      const int number = ::inotify_add_watch(queue_, folder.c_str(), kEvents);
      if (number >= 0) {
        watched.emplace(number, folder);
      } else {
        isComplete_ = false;
      }
    }
    for (const auto& [number, folder] : watched_) {
      if (watched.count(number) == 0) ::inotify_rm_watch(queue_, number);
    }
    watched_ = std::move(watched);
    nextPoll_ = Clock::now() + interval_;
  }

  bool wait(std::chrono::milliseconds time) override {
    const bool polls = !isComplete_;
    const Clock::time_point end = Clock::now() + time;
    const Clock::time_point until = polls ? std::min(end, nextPoll_) : end;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
    pollfd wanted = {queue_, POLLIN, 0};
    const int ready = ::poll(&wanted, 1, static_cast<int>(std::max<std::int64_t>(0, left.count())));
    if (ready > 0) {
      drop();
      return true;
    }
    if (ready < 0 || !polls || Clock::now() < nextPoll_) return false;
    nextPoll_ = Clock::now() + interval_;
    return true;
  }

private:
  /// Takes all events that are there from the queue.
  void drop() const {
    alignas(inotify_event) std::array<char, 16384> events;
    while (::read(queue_, events.data(), events.size()) > 0) {
    }
  }

  int queue_;
  std::chrono::milliseconds interval_;
  std::map<int, std::string> watched_;
  bool isComplete_ = true;  ///< every folder is watched
  Clock::time_point nextPoll_ = Clock::now();
};

}  // namespace

std::unique_ptr<ChangeSignal> makeSystemSignal(std::chrono::milliseconds pollingInterval) {
  const int queue = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (queue < 0) return nullptr;
  return std::make_unique<InotifySignal>(queue, pollingInterval);
}

}  // namespace TolmSDK::Graphics::sfg::tools
