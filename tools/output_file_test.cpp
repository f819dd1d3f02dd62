#include "tools/output_file.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#endif

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

#if !defined(_WIN32)
TEST_F(OutputFileTest, LeavesNothingElseWhenInterrupted) {
  const std::string bytes(std::size_t{1} << 20, 'x');
  for (int round = 0; round < 20; ++round) {
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
      for (;;) writeOutput(path("out"), bytes);
    }
    while (!fs::exists(path("out"))) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::microseconds(500 * round));
    kill(writer, round % 2 == 0 ? SIGINT : SIGTERM);
    int status = 0;
    ASSERT_EQ(waitpid(writer, &status, 0), writer);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(read("out"), bytes);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
    fs::remove(path("out"));
  }
}
#endif

TEST_F(OutputFileTest, SaysWhatItCannotWrite) {
  try {
    writeOutput(path("gone/out"), "text");
    FAIL();
  } catch (const host::InputError& error) {
    EXPECT_EQ(error.place(), path("gone/out"));
    EXPECT_STREQ(error.what(), "cannot be written: No such file or directory");
  }
}

TEST_F(OutputFileTest, SaysThatAFolderIsMissing) {
  const auto refusalOf = [this](const std::string& name) -> std::string {
    try {
      checkFolder(path(name));
    } catch (const host::InputError& error) {
      EXPECT_EQ(error.place(), path(name));
      return error.what();
    }
    return "there";
  };
  writeOutput(path("file"), "text");
  EXPECT_EQ(refusalOf("gone/out"), "cannot be written: No such file or directory");
  EXPECT_EQ(refusalOf("file/out"), "cannot be written: Not a directory");
  EXPECT_EQ(refusalOf("out"), "there");
  EXPECT_NO_THROW(checkFolder("out"));
}

TEST_F(OutputFileTest, SaysThatADeviceIsFull) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no full device here";
  try {
    writeOutput("/dev/full", "text");
    FAIL();
  } catch (const host::InputError& error) {
    EXPECT_STREQ(error.what(), "cannot be written: No space left on device");
  }
}

TEST_F(OutputFileTest, WritesAFileOfTheLongestName) {
  const std::string longest(255, 'x');
  writeOutput(path(longest), "text");
  EXPECT_EQ(read(longest), "text");
  try {
    writeOutput(path(longest + "x"), "text");
    FAIL();
  } catch (const host::InputError& error) {
    EXPECT_STREQ(error.what(), "cannot be written: File name too long");
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
}

class OutputNamesTest : public OutputFileTest {
protected:
  std::string refusal(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs) const {
    try {
      checkOutputs(outputs, inputs);
    } catch (const host::InputError& error) {
      return error.place().substr(folder_.string().size() + 1) + ": " + error.what();
    }
    return std::string();
  }
};

TEST_F(OutputNamesTest, AreNoInputs) {
  writeOutput(path("graph.json"), "{}");
  fs::create_symlink("graph.json", path("link"));
  const std::vector<std::string> inputs{path("graph.json"), ""};
  EXPECT_EQ(refusal({path("graph.json")}, inputs),
            "graph.json: is read by this command; write to another file");
  EXPECT_EQ(refusal({path("link")}, inputs), "link: is read by this command; write to another file");
  EXPECT_EQ(refusal({"", path("./graph.json")}, inputs),
            "./graph.json: is read by this command; write to another file");
  EXPECT_EQ(refusal({path("other.json"), ""}, inputs), "");
}

TEST_F(OutputNamesTest, AreDifferent) {
  EXPECT_EQ(refusal({path("out"), path("./out")}, {}), "./out: is named for two results; write to two files");
  EXPECT_EQ(refusal({path("out"), path("out.d")}, {}), "");
  EXPECT_EQ(refusal({"/dev/null", "/dev/null"}, {"/dev/null"}), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
