#include "tools/lsp/inbox.h"

#include <utility>

namespace TolmSDK::Graphics::sfg::tools::lsp {

void Inbox::put(Message message) {
  if (message.method != "$/cancelRequest") return add(std::move(message));
  const Json& id = memberOf(message.params, "id");
  const std::lock_guard lock(mutex_);
  for (Event& event : events_) {
    auto* const waiting = std::get_if<Message>(&event);
    if (waiting != nullptr && waiting->isRequest() && *waiting->id == id) waiting->isCancelled = true;
  }
}

void Inbox::put(Refused refused) { add(std::move(refused)); }
void Inbox::put(CheckResult result) { add(std::move(result)); }

void Inbox::add(Event event) {
  {
    const std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
  }
  changed_.notify_one();
}

void Inbox::close() {
  {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
  }
  changed_.notify_one();
}

Inbox::State Inbox::take(Event& event, std::optional<Clock::time_point> until) {
  std::unique_lock lock(mutex_);
  const auto isSomething = [this] { return !events_.empty() || isClosed_; };
  if (until) {
    if (!changed_.wait_until(lock, *until, isSomething)) return State::nothing;
  } else {
    changed_.wait(lock, isSomething);
  }
  if (events_.empty()) return State::closed;
  event = std::move(events_.front());
  events_.pop_front();
  return State::event;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
