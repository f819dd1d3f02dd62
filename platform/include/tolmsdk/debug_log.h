#pragma once

// The debug log: where a library says what it passed over.

#include <functional>
#include <string_view>

#include "tolmsdk/exception.h"
#include "tolmsdk/export.h"
#include "tolmsdk/types.h"

namespace TolmSDK {

using DebugLogSink = std::function<void(std::wstring_view line)>;

/// Sends every later line to `sink`; an empty one brings back the standard error stream. Answers the sink
/// before. May be called from any thread; lines are handed out one at a time.
TOLMSDK_API DebugLogSink setDebugLogSink(DebugLogSink sink);

/// Hands one line (without its line feed) to the sink, or writes it and a line feed to the standard error
/// stream.
TOLMSDK_API void debugLogLine(std::wstring_view line);

/// One formatted line of the debug log; the wide printf rules of appendFormatted hold.
template <class... Arguments>
void debugLog(std::wstring_view format, const Arguments&... arguments) {
  debugLogLine(formatted(format, arguments...));
}

}  // namespace TolmSDK
