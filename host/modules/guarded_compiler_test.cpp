#include "host/modules/guarded_compiler.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

template <class Error>
std::string guardedThrow(const Error& error) {
  try {
    guarded([&]() -> int { throw error; });
  } catch (const CompileError& caught) {
    return caught.what();
  }
  return "(nothing thrown)";
}

TEST(GuardedCompilerTest, AnswersWhatTheCompilerDoes) {
  EXPECT_EQ(guarded([] { return 3; }), 3);
}

TEST(GuardedCompilerTest, MakesWhateverACompilerThrowsAnErrorOfItsOwn) {
  EXPECT_EQ(guardedThrow(std::runtime_error("register 3")), "a compiler fails: register 3");
  EXPECT_EQ(guardedThrow(17), "a compiler fails");
}

TEST(GuardedCompilerTest, LetsItsOwnErrorsAndMissingMemoryThrough) {
  try {
    guarded([]() -> int { throw CompileError("does not compile", {{3, "here"}}, true); });
    FAIL();
  } catch (const CompileError& error) {
    EXPECT_STREQ(error.what(), "does not compile");
    ASSERT_EQ(error.messages().size(), 1u);
    EXPECT_EQ(error.messages()[0].line, 3u);
    EXPECT_TRUE(error.inAssembledText());
  }
  EXPECT_THROW(guarded([]() -> int { throw std::bad_alloc(); }), std::bad_alloc);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
