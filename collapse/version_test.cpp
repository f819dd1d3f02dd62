#include <sfg/version.h>
#include <tolmsdk/version.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(Version, IsThreeNumbers) {
  EXPECT_THAT(sfgVersion(), ::testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
}

TEST(Version, IsThePlatformsToo) { EXPECT_STREQ(sfgVersion(), platformVersion()); }

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
