#include "tools/depfile.h"

#include <gtest/gtest.h>

#include <vector>

namespace TolmSDK::Graphics::sfg::tools {
namespace {

TEST(DepfileTest, ListsFilesAsMakeAndNinjaReadThem) {
  EXPECT_EQ(writeDepfile("out.x", {}), "out.x:\n");
  const std::vector<std::string> files = {"graph.json", "more lib/a#b.fraglib", "back\\slash", "two$"};
  EXPECT_EQ(writeDepfile("an out.x", files),
            "an\\ out.x: \\\n  graph.json \\\n  more\\ lib/a\\#b.fraglib \\\n  back\\\\slash \\\n  two$$\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
