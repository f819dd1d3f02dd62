#include "host/modules/crash_guard.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "host/modules/child_process.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

int deeper(int depth) {
  volatile char room[1000] = {};
  room[0] = static_cast<char>(depth);
  return depth < 0 ? 0 : deeper(depth + 1) + room[0];
}

/// In a process of its own: crashes are expected there from then on.
std::string work(const std::string& request) {
  expectCrashes();
  std::string told = "before";
  bool isSurvived = true;
  if (request == "nothing") isSurvived = survives([&] { told = "done"; });
  if (request == "signal") {
    isSurvived = survives([&] {
      told = "begun";
      std::raise(SIGSEGV);
    });
  }
  if (request == "abort") isSurvived = survives([] { std::abort(); });
  if (request == "stack") isSurvived = survives([&] { told = std::to_string(deeper(0)); });
  if (request == "twice") {
    survives([] { std::abort(); });
    isSurvived = survives([&] { told = "again"; });
  }
  if (request == "throw") {
    try {
      survives([] { throw std::runtime_error("thrown"); });
    } catch (const std::runtime_error& error) {
      told = error.what();
    }
  }
  return told + (isSurvived ? "" : ", crashed") + (hasCrashed() ? ", to be thrown away" : "");
}

class CrashGuardTest : public testing::Test {
protected:
  void SetUp() override {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer takes the signals";
#endif
    maker_ = ChildMaker::start(work, {});
    if (maker_ == nullptr) GTEST_SKIP() << "there are no processes here";
  }
  std::string told(const std::string& request) { return maker_->make()->ask(request).answer; }

private:
  std::shared_ptr<ChildMaker> maker_;
};

TEST_F(CrashGuardTest, SaysWhetherWorkCrashed) {
  EXPECT_EQ(told("nothing"), "done");
  EXPECT_EQ(told("signal"), "begun, crashed, to be thrown away");
  EXPECT_EQ(told("abort"), "before, crashed, to be thrown away");
  EXPECT_EQ(told("stack"), "before, crashed, to be thrown away");
}

TEST_F(CrashGuardTest, GoesOnAfterACrash) { EXPECT_EQ(told("twice"), "again, to be thrown away"); }

TEST_F(CrashGuardTest, LetsWhatIsThrownThrough) { EXPECT_EQ(told("throw"), "thrown"); }

TEST_F(CrashGuardTest, CallsTheWorkWhereNoneIsExpected) {
  bool isDone = false;
  EXPECT_TRUE(survives([&] { isDone = true; }));
  EXPECT_TRUE(isDone);
  EXPECT_FALSE(hasCrashed());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
