#pragma once

// Work in a process of its own: whatever it does, this process goes on.

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace TolmSDK::Graphics::sfg::host {

/// Zero is no limit.
struct ChildLimits {
  std::chrono::seconds processorTime{0};  ///< of one request
  std::uint64_t memory = 0;  ///< bytes of addresses beyond those that this process has at the start
  std::chrono::milliseconds patience{0};  ///< with a child that neither works nor ends
};

/// What became of a request.
struct ChildOutcome {
  enum class Kind {
    answered,  ///< `answer` is all that the work gave
    crashed,   ///< by the signal; 0 where it is not known
    outOfTime  ///< the processor time, or the patience, is used up
  };
  Kind kind = Kind::crashed;
  std::string answer;
  int signal = 0;
};

/// A copy of this process that does one kind of work, over and over, and ends with this object or with this
/// process. Used by one thread at a time.
class ChildProcess {
public:
  using Work = std::string (*)(const std::string& request);

  /// Only the calling thread goes on in the copy; locks that other threads hold stay locked there, but for
  /// the allocator's. What the work throws is a crash. Null where there can be no such process: on systems
  /// that do not copy them, and under the thread sanitizer.
  static std::unique_ptr<ChildProcess> start(Work work, const ChildLimits& limits);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Once it is not `answered`, the process is gone.
  ChildOutcome ask(const std::string& request);

private:
  ChildProcess(int socket, int process, const ChildLimits& limits);

  int socket_;
  int process_;
  ChildLimits limits_;
};

}  // namespace TolmSDK::Graphics::sfg::host
