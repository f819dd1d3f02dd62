#include "sfg/size_limit.h"

#include <gtest/gtest.h>

#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(CheckTextLength, RefusesMoreThanTheLimit) {
  EXPECT_EQ(kMaximumTextLength, 67108864u);
  EXPECT_NO_THROW(checkTextLength(0));
  EXPECT_NO_THROW(checkTextLength(kMaximumTextLength));
  try {
    checkTextLength(kMaximumTextLength + 1);
    FAIL() << "not refused";
  } catch (const Exception& e) {
    EXPECT_EQ(e.getMessage(), L"sfgError : the generated code is too large!");
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
