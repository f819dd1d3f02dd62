#pragma once

// Messages of exceptions, lines of the debug log and texts on the standard wide output stream, as values to
// compare.

#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tolmsdk/debug_log.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::test {

/// The message of the Exception that `action` throws; "(nothing thrown)" when it throws none.
template <class Action>
std::wstring messageOf(Action&& action) {
  try {
    action();
  } catch (const Exception& error) {
    return std::wstring(std::wstring_view(error.getMessage()));
  }
  return L"(nothing thrown)";
}

/// Collects the debug log while it lives.
class LogCapture {
public:
  LogCapture() : before_(setDebugLogSink([this](std::wstring_view line) { lines.emplace_back(line); })) {}
  ~LogCapture() { setDebugLogSink(before_); }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<std::wstring> lines;

private:
  DebugLogSink before_;
};

/// Collects what is written to std::wcout while it lives.
class WideOutputCapture {
public:
  WideOutputCapture() : before_(std::wcout.rdbuf(stream_.rdbuf())) {}
  ~WideOutputCapture() { std::wcout.rdbuf(before_); }
  WideOutputCapture(const WideOutputCapture&) = delete;
  WideOutputCapture& operator=(const WideOutputCapture&) = delete;

  std::wstring text() const { return stream_.str(); }

private:
  std::wostringstream stream_;
  std::wstreambuf* before_;
};

}  // namespace TolmSDK::test
