#include "host/modules/isolation.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "host/modules/child_process.h"
#include "host/modules/crash_guard.h"
#include "host/modules/message_bytes.h"
#include "sfg/host/compile.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// On a busy machine processor time takes longer by the clock.
constexpr int kPatience = 20;

/// What a process answers with.
enum class Answer { result, refused, outOfMemory };

/// What is asked: an address of this program, which is the same in its copies.
using Work = std::string (*)(const std::string&);

std::string written(const CompileError& error) {
  ByteWriter writer;
  writer.number(static_cast<std::uint64_t>(Answer::refused))
      .text(error.what())
      .number(error.inAssembledText() ? 1 : 0);
  writer.number(error.messages().size());
  for (const CompilerMessage& message : error.messages())
    writer.number(message.line).number(message.column).text(message.text);
  return writer.take();
}

CompileError readError(ByteReader& reader) {
  const std::string what = reader.text();
  const bool inAssembledText = reader.number() != 0;
  std::vector<CompilerMessage> messages(reader.number());
  for (CompilerMessage& message : messages) {
    message.line = reader.number();
    message.column = reader.number();
    message.text = reader.text();
  }
  return {what, std::move(messages), inAssembledText};
}

std::string doneOrRefused(const std::string& bytes) {
  ByteReader reader(bytes);
  const auto work = reinterpret_cast<Work>(reader.number());
  try {
    const std::string result = work(reader.text());
    return ByteWriter().number(static_cast<std::uint64_t>(Answer::result)).text(result).take();
  } catch (const CompileError& error) {
    return written(error);
  } catch (const std::bad_alloc&) {
    return ByteWriter().number(static_cast<std::uint64_t>(Answer::outOfMemory)).take();
  }
}

/// Behind the words stands whether the process has survived a crash.
std::string answerOf(const std::string& bytes) {
  expectCrashes();
  const std::string words = doneOrRefused(bytes);
  return words + (hasCrashed() ? '!' : '.');
}

std::string resultOf(const std::string& answer) {
  ByteReader reader(answer);
  switch (static_cast<Answer>(reader.number())) {
  case Answer::result: return reader.text();
  case Answer::refused: throw readError(reader);
  case Answer::outOfMemory: break;
  }
  throw std::bad_alloc();
}

/// The processes that wait for work.
class Workers {
public:
  /// Whether there can be any.
  bool start(const CompilerLimits& limits) {
    const std::chrono::seconds time(limits.processorSeconds);
    std::shared_ptr<ChildMaker> maker = ChildMaker::start(answerOf, {time, limits.memory, time * kPatience});
    if (maker == nullptr) return false;
    const std::lock_guard<std::mutex> lock(mutex_);
    limits_ = limits;
    maker_ = std::move(maker);
    idle_.clear();
    isOn_ = true;
    return true;
  }
  bool isOn() const noexcept { return isOn_; }
  CompilerLimits limits() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return limits_;
  }

  /// Null where there can be none.
  std::unique_ptr<ChildProcess> take() {
    std::shared_ptr<ChildMaker> maker;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (!idle_.empty()) {
        std::unique_ptr<ChildProcess> worker = std::move(idle_.back());
        idle_.pop_back();
        return worker;
      }
      maker = maker_;
    }
    return maker->make();
  }

  void giveBack(std::unique_ptr<ChildProcess> worker) {
    const std::lock_guard<std::mutex> lock(mutex_);
    idle_.push_back(std::move(worker));
  }

private:
  std::atomic<bool> isOn_ = false;
  std::mutex mutex_;
  CompilerLimits limits_;
  std::shared_ptr<ChildMaker> maker_;
  std::vector<std::unique_ptr<ChildProcess>> idle_;
};

Workers& workers() {
  static Workers all;
  return all;
}

}  // namespace

bool isolateCompilers(const CompilerLimits& limits) { return workers().start(limits); }

bool isIsolated() noexcept { return workers().isOn(); }

std::string inIsolation(const std::string& request, Work work) {
  std::unique_ptr<ChildProcess> worker = workers().take();
  // Not done here instead: what was to crash in another process would crash in this one.
  if (worker == nullptr) throw CompileError("the system gives no process for the compiler", {}, false);
  const ChildOutcome outcome =
      worker->ask(ByteWriter().number(reinterpret_cast<std::uintptr_t>(work)).text(request).take());
  if (outcome.kind == ChildOutcome::Kind::answered) {
    if (outcome.answer.back() == '.') workers().giveBack(std::move(worker));
    return resultOf(outcome.answer);
  }
  if (outcome.kind == ChildOutcome::Kind::outOfTime) {
    throw CompileError("the compiler works on the generated shader for more than " +
                           std::to_string(workers().limits().processorSeconds) + " s and was ended",
                       {}, true);
  }
  const std::string signal = outcome.signal > 0 ? " (signal " + std::to_string(outcome.signal) + ")" : "";
  throw CompileError("the compiler crashes on the generated shader" + signal, {}, true);
}

}  // namespace TolmSDK::Graphics::sfg::host
