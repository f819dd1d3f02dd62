#include "tolmsdk/files.h"

#include <gtest/gtest.h>

#if __has_include(<poll.h>)
#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "platform/test_folder.h"

namespace TolmSDK {
namespace {

class NamedPipe : public testing::Test {
protected:
  void SetUp() override { ASSERT_EQ(mkfifo((folder_.path() / "pipe").c_str(), 0600), 0); }
  WString name() const { return folder_.file("pipe"); }

  const TestFolder folder_;
};

TEST_F(NamedPipe, IsRefusedWhenNobodyWrites) {
  WString text = L"before";
  WString error;
  EXPECT_FALSE(GetUTF8TextFileString(name(), text, &error));
  EXPECT_EQ(text, L"");
  EXPECT_EQ(error, L"nobody writes into this pipe");
}

TEST_F(NamedPipe, GivesWhatALateAndSlowWriterWrites) {
  const std::string long_(300'000, 'x');
  std::thread writer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    std::ofstream stream(folder_.path() / "pipe");
    stream << "a" << std::flush;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    stream << long_;
  });
  WString text;
  EXPECT_TRUE(GetUTF8TextFileString(name(), text));
  writer.join();
  EXPECT_EQ(text, L"a" + WString(long_.begin(), long_.end()));
}

TEST_F(NamedPipe, MayBeEmpty) {
  std::thread writer([&] {
    const std::ofstream stream(folder_.path() / "pipe");
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
  });
  WString text = L"before";
  EXPECT_TRUE(GetUTF8TextFileString(name(), text));
  writer.join();
  EXPECT_EQ(text, L"");
}

}  // namespace
}  // namespace TolmSDK
#endif
