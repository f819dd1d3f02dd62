#pragma once

// Waits for changes of files.

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "tools/watch/change_signal.h"
#include "tools/watch/watched_paths.h"

namespace TolmSDK::Graphics::sfg::tools {

struct WatchTimes {
  /// Changes are told when nothing more has changed for so long,
  std::chrono::milliseconds quiet{60};
  /// or when the first of them is so old.
  std::chrono::milliseconds patience{2000};
};

/// Used by one thread.
class Watcher {
public:
  explicit Watcher(std::unique_ptr<ChangeSignal> signal, WatchTimes times = {});

  /// What is watched from now on. Changes are counted from this call: read the files behind it.
  void watch(const WatchedPaths& paths);
  /// Waits until something of it has changed since the last answer, and answers which paths, a burst of
  /// changes together; empty when `stop` has become true. `stop` is looked at twenty times a second.
  std::vector<std::string> waitForChanges(const std::atomic<bool>& stop);

private:
  void watchFolders();
  /// The states once they hold still.
  FileStates settle(FileStates states, const std::atomic<bool>& stop);

  std::unique_ptr<ChangeSignal> signal_;
  WatchTimes times_;
  WatchedPaths paths_;
  HoldingFolders folders_;
  FileStates states_;
};

}  // namespace TolmSDK::Graphics::sfg::tools
