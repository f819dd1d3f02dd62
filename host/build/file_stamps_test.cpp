#include "host/build/file_stamps.h"

#include "host/build/build_fixture.h"
#include "tolmsdk/sha1.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using FileStampsTest = BuildFixture;

TEST_F(FileStampsTest, AreThoseOfRegularFiles) {
  write("a", "four");
  ASSERT_TRUE(stampOf(path("a")));
  EXPECT_EQ(stampOf(path("a"))->size, 4u);
  EXPECT_FALSE(stampOf(path("none")));
  EXPECT_FALSE(stampOf(path("lib")));
  EXPECT_EQ(readBytes(path("a")), "four");
  EXPECT_EQ(readBytes(path("none")), std::nullopt);
}

TEST_F(FileStampsTest, OfUnknownTimeEqualNone) {
  EXPECT_TRUE((FileStamp{4, 9}.isSame({4, 9})));
  EXPECT_FALSE((FileStamp{4, 9}.isSame({5, 9})));
  EXPECT_FALSE((FileStamp{4, 9}.isSame({4, 8})));
  EXPECT_FALSE((FileStamp{4, 0}.isSame({4, 0})));
}

TEST_F(FileStampsTest, SpareReadingWhatIsKnown) {
  write("a", "four");
  std::filesystem::last_write_time(path("a"),
                                   std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  FileHashes first;
  EXPECT_EQ(first.hashOf(path("a")), SHA1_GetBytesHash("four"));
  const auto learnt = first.takeLearnt();
  ASSERT_EQ(learnt.size(), 1u);
  EXPECT_EQ(learnt[0].first, path("a"));
  EXPECT_TRUE(first.takeLearnt().empty());

  FileHashes next;
  next.add(path("a"), {learnt[0].second.stamp, "what was noted"});
  EXPECT_EQ(next.hashOf(path("a")), "what was noted");
  write("a", "other");
  FileHashes last;
  last.add(path("a"), learnt[0].second);
  EXPECT_EQ(last.hashOf(path("a")), SHA1_GetBytesHash("other"));
  EXPECT_EQ(last.hashOf(path("none")), "");
}

TEST_F(FileStampsTest, KnowATextThatIsRead) {
  write("a", "four");
  FileHashes hashes;
  std::string hash;
  EXPECT_EQ(hashes.read(path("a"), hash), "four");
  EXPECT_EQ(hash, SHA1_GetBytesHash("four"));
  EXPECT_EQ(hashes.read(path("none"), hash), std::nullopt);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
