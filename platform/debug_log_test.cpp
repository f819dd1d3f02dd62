#include "tolmsdk/debug_log.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace TolmSDK {
namespace {

/// Collects the lines of one test and puts the sink before back afterwards.
class DebugLog : public testing::Test {
protected:
  void SetUp() override {
    before_ = setDebugLogSink([this](std::wstring_view line) { lines.emplace_back(line); });
  }
  void TearDown() override { setDebugLogSink(before_); }

  std::vector<std::wstring> lines;

private:
  DebugLogSink before_;
};

TEST_F(DebugLog, HandsFormattedLinesToTheSink) {
  debugLog(L"sfgError : Failed to load json file: %s!", L"a.fraglib");
  debugLog(L"plain");
  debugLogLine(L"100%");
  EXPECT_EQ(lines, (std::vector<std::wstring>{L"sfgError : Failed to load json file: a.fraglib!", L"plain",
                                              L"100%"}));
}

TEST_F(DebugLog, AnswersTheSinkBefore) {
  const DebugLogSink mine = setDebugLogSink([](std::wstring_view) {});
  mine(L"through the answer");
  EXPECT_EQ(lines, (std::vector<std::wstring>{L"through the answer"}));
}

TEST_F(DebugLog, WritesLinesToStandardErrorWithoutASink) {
  setDebugLogSink({});
  testing::internal::CaptureStderr();
  debugLog(L"%s %d", L"\u00e4", 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "\xC3\xA4 1\n");
  EXPECT_TRUE(lines.empty());
}

TEST_F(DebugLog, SinkMayLogAndReplaceItself) {
  setDebugLogSink([this](std::wstring_view line) {
    setDebugLogSink([this](std::wstring_view inner) { lines.push_back(L"inner " + std::wstring(inner)); });
    debugLogLine(line);
  });
  debugLogLine(L"x");
  EXPECT_EQ(lines, (std::vector<std::wstring>{L"inner x"}));
}

TEST_F(DebugLog, HandsOutOneLineAtATime) {
  std::vector<std::thread> threads;
  threads.reserve(8);
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([] {
      for (int line = 0; line < 100; ++line) debugLogLine(L"line");
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(lines, std::vector<std::wstring>(800, L"line"));
}

}  // namespace
}  // namespace TolmSDK
