#pragma once

// What waits to be done.

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <variant>

#include "tools/lsp/checks.h"
#include "tools/lsp/rpc.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// Something that came in and is no message.
struct Refused {
  ErrorCode code = ErrorCode::parseError;
  std::string why;
};

/// Any thread puts in, one takes out.
class Inbox {
public:
  using Clock = std::chrono::steady_clock;
  using Event = std::variant<Message, Refused, CheckResult>;
  enum class State { event, nothing, closed };

  /// A cancellation marks the request that it names while that waits, and is not put in itself.
  void put(Message message);
  void put(Refused refused);
  void put(CheckResult result);
  /// No more messages come.
  void close();

  /// Waits for an event until the time given, if there is one. What was put in before the end is still taken
  /// out.
  State take(Event& event, std::optional<Clock::time_point> until);

private:
  void add(Event event);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Event> events_;
  bool isClosed_ = false;
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
