#include "tools/output_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

namespace fs = std::filesystem;

class OutputFileTest : public testing::Test {
protected:
  OutputFileTest() {
    std::string pattern = (fs::temp_directory_path() / "sfg_output_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~OutputFileTest() override { fs::remove_all(folder_); }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  std::string read(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(folder_ / name, std::ios::binary).rdbuf();
    return text.str();
  }

  fs::path folder_;
};

TEST_F(OutputFileTest, ReplacesAFileAsAWholeAndLeavesNothingElse) {
  writeOutput(path("out"), "first, and longer");
  fs::permissions(path("out"), fs::perms::owner_read | fs::perms::owner_write);
  writeOutput(path("out"), "second");
  EXPECT_EQ(read("out"), "second");
  EXPECT_EQ(fs::status(path("out")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
}

TEST_F(OutputFileTest, WritesThroughASymbolicLink) {
  writeOutput(path("target"), "old");
  fs::create_symlink("target", path("link"));
  writeOutput(path("link"), "new");
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_EQ(read("target"), "new");
}

TEST_F(OutputFileTest, SaysWhatItCannotWrite) {
  try {
    writeOutput(path("gone/out"), "text");
    FAIL();
  } catch (const host::InputError& error) {
    EXPECT_EQ(error.place(), path("gone/out"));
    EXPECT_STREQ(error.what(), "cannot be written: the folder is missing, not writable or full");
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
