#include "host/build/output_file.h"

#include "host/build/build_fixture.h"
#include "sfg/host/output.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

namespace fs = std::filesystem;

class OutputFiles : public BuildFixture {};

TEST_F(OutputFiles, StampIsThatOfTheFileWritten) {
  FileStamp stamp;
  EXPECT_EQ(replaceStamped(path("out"), "bytes", path("lib"), stamp), std::nullopt);
  EXPECT_EQ(read("out"), "bytes");
  EXPECT_TRUE(stampOf(path("out"))->isSame(stamp));
}

TEST_F(OutputFiles, FailureLeavesTheOldContentsAndNothingElse) {
  fs::create_directories(path("out/full"));
  EXPECT_EQ(replaceFile(path("out"), "bytes", path("lib")), "Is a directory");
  EXPECT_EQ(replaceFile(path("gone/out"), "bytes"), "No such file or directory");
  EXPECT_TRUE(fs::is_directory(path("out/full")));
  for (const auto& entry : fs::directory_iterator(path("lib"))) EXPECT_NE(entry.path().extension(), ".part");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
