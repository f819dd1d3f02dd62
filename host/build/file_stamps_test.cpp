#include "host/build/file_stamps.h"

#include <chrono>

#include "host/build/build_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

namespace fs = std::filesystem;

class FileStamps : public BuildFixture {
protected:
  void age(const std::string& name) const {
    fs::last_write_time(path(name), fs::file_time_type::clock::now() - std::chrono::hours(1));
  }
};

TEST_F(FileStamps, FileWithTheSameSizeAndTimeIsNotReadAgain) {
  write("a", "one");
  age("a");
  FileHashes hashes;
  hashes.add(path("a"), {*stampOf(path("a")), "known"});
  EXPECT_EQ(hashes.hashOf(path("a")), "known");
  EXPECT_TRUE(hashes.takeLearnt().empty());
}

TEST_F(FileStamps, AnotherTimeOrSizeIsReadAgain) {
  write("a", "one");
  age("a");
  FileStamp stamp = *stampOf(path("a"));
  ++stamp.time;
  FileHashes hashes;
  hashes.add(path("a"), {stamp, "known"});
  EXPECT_EQ(hashes.hashOf(path("a")), "fe05bcdcdc4928012781a5f1a2a77cbb5398e106");  // sha1sum of "one"
  EXPECT_EQ(hashes.takeLearnt().size(), 1u);
}

/// Within a tick of the clock a file may change again and keep its time.
TEST_F(FileStamps, FileThatIsNewIsReadAgainTheNextTime) {
  write("a", "one");
  FileHashes hashes;
  hashes.hashOf(path("a"));
  const auto learnt = hashes.takeLearnt();
  ASSERT_EQ(learnt.size(), 1u);
  EXPECT_FALSE(learnt[0].second.stamp.isSame(*stampOf(path("a"))));
}

TEST_F(FileStamps, FileThatCannotBeReadHasNoHash) {
  FileHashes hashes;
  EXPECT_EQ(hashes.hashOf(path("gone")), "");
  EXPECT_EQ(hashes.hashOf(path("lib")), "");
  EXPECT_EQ(readBytes(path("gone")), std::nullopt);
  EXPECT_EQ(stampOf(path("lib")), std::nullopt);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
