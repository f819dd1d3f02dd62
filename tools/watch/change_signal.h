#pragma once

// When to look at files again.

#include <chrono>
#include <memory>
#include <set>
#include <string>

namespace TolmSDK::Graphics::sfg::tools {

/// Says that something may have changed in some folders, never what: whoever waits looks for himself. So
/// nothing is lost when a system tells too little, and little when it tells too much. Used by one thread.
class ChangeSignal {
public:
  virtual ~ChangeSignal() = default;
  /// The folders from now on, absolute paths. Changes after this call are told; those told already may be
  /// told again.
  virtual void watch(const std::set<std::string>& folders) = 0;
  /// Waits until something may have changed, and answers true; false when the time is over, or a signal came.
  virtual bool wait(std::chrono::milliseconds time) = 0;
};

/// Lets `interval` pass, behind which anything may have changed.
std::unique_ptr<ChangeSignal> makePollingSignal(std::chrono::milliseconds interval);

/// What the system tells of folders; polls those of which it cannot. Null for a system that tells nothing.
std::unique_ptr<ChangeSignal> makeSystemSignal(std::chrono::milliseconds pollingInterval);

}  // namespace TolmSDK::Graphics::sfg::tools
