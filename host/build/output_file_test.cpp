#include "host/build/output_file.h"

#include "host/build/build_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using BuildOutputTest = BuildFixture;

TEST_F(BuildOutputTest, ReplacesAFileAndKnowsItsStamp) {
  write("out/a", "before");
  FileStamp stamp;
  EXPECT_EQ(replaceStamped(path("out/a"), "after it", path("out"), stamp), std::nullopt);
  EXPECT_EQ(read("out/a"), "after it");
  EXPECT_EQ(stamp.size, 8u);
  EXPECT_EQ(contents("out").size(), 1u);
}

TEST_F(BuildOutputTest, KeepsTheRightsOfTheFile) {
  namespace fs = std::filesystem;
  write("out/a", "before");
  fs::permissions(path("out/a"), fs::perms::owner_read | fs::perms::owner_write);
  FileStamp stamp;
  EXPECT_EQ(replaceStamped(path("out/a"), "after", {}, stamp), std::nullopt);
  EXPECT_EQ(fs::status(path("out/a")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(BuildOutputTest, SaysWhyItCannotAndLeavesNothing) {
  FileStamp stamp;
  EXPECT_EQ(replaceStamped(path("none/a"), "text", {}, stamp), "No such file or directory");
  write("out/folder/file", "text");
  EXPECT_TRUE(replaceStamped(path("out/folder"), "text", path("out"), stamp));
  EXPECT_EQ(contents("out").size(), 1u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
