#include "tools/watch/watcher.h"

#include <thread>
#include <utility>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kStopIsSeenWithin{50};
/// Looking takes no more than this part of the time, however often something else changes nearby.
constexpr int kPartForLooking = 10;

}  // namespace

Watcher::Watcher(std::unique_ptr<ChangeSignal> signal, WatchTimes times)
    : signal_(std::move(signal)), times_(times) {}

void Watcher::watch(const WatchedPaths& paths) {
  paths_ = paths;
  watchFolders();
  states_ = look(paths_);
}

std::vector<std::string> Watcher::waitForChanges(const std::atomic<bool>& stop) {
  while (!stop) {
    if (!signal_->wait(kStopIsSeenWithin)) continue;
    const Clock::time_point start = Clock::now();
    if (!folders_.isComplete) watchFolders();
    FileStates now = look(paths_);
    if (now == states_) {
      std::this_thread::sleep_for((Clock::now() - start) * kPartForLooking);
      continue;
    }
    now = settle(std::move(now), stop);
    std::vector<std::string> changed = changedPaths(states_, now);
    states_ = std::move(now);
    if (!changed.empty()) return changed;
  }
  return {};
}

void Watcher::watchFolders() {
  folders_ = foldersOf(paths_);
  signal_->watch(folders_.folders);
  // A folder may have been made between the two steps, and would be watched from above only.
  while (!folders_.isComplete) {
    HoldingFolders again = foldersOf(paths_);
    if (again == folders_) break;
    folders_ = std::move(again);
    signal_->watch(folders_.folders);
  }
}

FileStates Watcher::settle(FileStates states, const std::atomic<bool>& stop) {
  const Clock::time_point end = Clock::now() + times_.patience;
  while (!stop) {
    std::this_thread::sleep_for(times_.quiet);
    // A folder may be another one now under its old name. What changed before it is watched is seen below.
    watchFolders();
    FileStates now = look(paths_);
    const bool isStill = now == states;
    states = std::move(now);
    if (isStill || Clock::now() >= end) break;
  }
  return states;
}

}  // namespace TolmSDK::Graphics::sfg::tools
