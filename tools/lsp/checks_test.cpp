#include "tools/lsp/checks.h"

#include <gtest/gtest.h>

#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

TEST(ChecksTest, TurnsRefusalsIntoFindingsAndOtherFailuresIntoTexts) {
  const CheckResult refused = runCheck({"u", 3, []() -> std::vector<host::Diagnostic> {
                                          throw host::InputError("a.json", {1, 2}, "why", "wrong-value");
                                        }});
  EXPECT_EQ(refused.version, 3);
  ASSERT_EQ(refused.diagnostics.size(), 1u);
  EXPECT_EQ(refused.diagnostics[0].place(), "a.json:1:2");
  const CheckResult failed =
      runCheck({"u", 4, []() -> std::vector<host::Diagnostic> { throw std::runtime_error("broken"); }});
  EXPECT_EQ(failed.failure, "broken");
}

TEST(ChecksTest, RunsOneJobAfterAnotherInItsThread) {
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::string> done;
  {
    CheckThread thread([&](CheckResult result) {
      const std::lock_guard lock(mutex);
      done.push_back(result.uri + result.failure);
      changed.notify_one();
    });
    const std::thread::id here = std::this_thread::get_id();
    for (const char* uri : {"a", "b", "c"}) {
      thread.start({uri, 1, [here]() -> std::vector<host::Diagnostic> {
                      if (std::this_thread::get_id() == here)
                        throw std::runtime_error(" in the wrong thread");
                      return {};
                    }});
    }
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return done.size() == 3; });
  }
  EXPECT_EQ(done, (std::vector<std::string>{"a", "b", "c"}));
}

TEST(ChecksTest, EndsWithoutAJob) {
  const CheckThread thread([](CheckResult) {});
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
