#pragma once

// Checks of documents, made by a thread of their own.

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "sfg/host/diagnostic.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// A document as it was when the check was asked for.
struct CheckJob {
  std::string uri;
  std::int64_t version = 0;
  /// Keeps everything that it needs.
  std::function<std::vector<host::Diagnostic>()> run;
};

struct CheckResult {
  std::string uri;
  std::int64_t version = 0;
  std::vector<host::Diagnostic> diagnostics;
  /// Why there is no result; empty with one.
  std::string failure;
};

/// Never throws.
CheckResult runCheck(const CheckJob& job);

/// Runs one job after another. The destructor waits for the one that is running.
class CheckThread {
public:
  using Done = std::function<void(CheckResult)>;

  /// `done` is called by the thread.
  explicit CheckThread(Done done);
  CheckThread(const CheckThread&) = delete;
  CheckThread& operator=(const CheckThread&) = delete;
  ~CheckThread();

  void start(CheckJob job);

private:
  void work();

  Done done_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<CheckJob> jobs_;
  bool isStopped_ = false;
  std::thread thread_;
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
