#pragma once

// Work in a process of its own: whatever it does, this process goes on.

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
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

class ChildMaker;

/// A process that does one kind of work, over and over, and ends with this object or with this process. Used
/// by one thread at a time.
class ChildProcess {
public:
  using Work = std::string (*)(const std::string& request);

  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Once it is not `answered`, the process is gone.
  ChildOutcome ask(const std::string& request);

private:
  friend class ChildMaker;
  ChildProcess(std::shared_ptr<ChildMaker> maker, int socket, int process);

  std::shared_ptr<ChildMaker> maker_;
  int socket_;
  int process_;
};

/// A copy of this process that is copied in turn for every child. It has one thread, so that no child waits
/// for a lock that a thread of this process held when it was copied. Used by several threads at once.
class ChildMaker : public std::enable_shared_from_this<ChildMaker> {
public:
  using Work = ChildProcess::Work;

  /// To be called before this process has threads that may hold locks. What the work throws is a crash of the
  /// child. Null where there can be no such process: on systems that do not copy them, and under the thread
  /// sanitizer.
  static std::shared_ptr<ChildMaker> start(Work work, const ChildLimits& limits);
  ~ChildMaker();
  ChildMaker(const ChildMaker&) = delete;
  ChildMaker& operator=(const ChildMaker&) = delete;

  /// Null where the system has no more processes.
  std::unique_ptr<ChildProcess> make();

private:
  friend class ChildProcess;
  ChildMaker(int socket, int process, const ChildLimits& limits);

  /// Waits for the end of a child, and gives its status; 0 where that is not known.
  int statusOf(int process);

  std::mutex mutex_;
  int socket_;
  int process_;
  ChildLimits limits_;
};

}  // namespace TolmSDK::Graphics::sfg::host
