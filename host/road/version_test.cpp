#include "sfg/host/version.h"

#include <gtest/gtest.h>

#include "sfg/version.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(VersionTest, IsTheGenerators) { EXPECT_STREQ(hostVersion(), sfgVersion()); }

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
