#include "tolmsdk/debug_log.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "platform/never_destroyed.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK {

namespace {

struct Log {
  // Recursive, because a sink may itself call what logs.
  std::recursive_mutex mutex;
  std::shared_ptr<DebugLogSink> sink;
};

Log& theLog() {
  static NeverDestroyed<Log> log;
  return log.get();
}

}  // namespace

DebugLogSink setDebugLogSink(DebugLogSink sink) {
  auto next = sink ? std::make_shared<DebugLogSink>(std::move(sink)) : nullptr;
  Log& log = theLog();
  const std::lock_guard lock(log.mutex);
  std::swap(log.sink, next);
  return next == nullptr ? DebugLogSink() : *next;
}

void debugLogLine(std::wstring_view line) {
  Log& log = theLog();
  const std::lock_guard lock(log.mutex);
  // Held here as well: the sink may replace itself while it runs.
  if (const std::shared_ptr<DebugLogSink> sink = log.sink) {
    (*sink)(line);
    return;
  }
  const std::string bytes = toUtf8(line) + '\n';
  std::fwrite(bytes.data(), 1, bytes.size(), stderr);
}

}  // namespace TolmSDK
