#include "host/library/source_texts.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace TolmSDK::Graphics::sfg::host {
namespace {

class SourceTextsTest : public testing::Test {
protected:
  SourceTextsTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_texts_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~SourceTextsTest() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  /// Answers the file's path.
  std::string write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }

  std::filesystem::path folder_;
};

TEST_F(SourceTextsTest, KeepsTextsAsTheyWere) {
  const std::string file = write("a.fraglib", "one\r\ntwo");
  SourceTexts texts;
  texts.add(file);
  write("a.fraglib", "three");
  ASSERT_NE(texts.find(file), nullptr);
  EXPECT_EQ(*texts.find(file), "one\r\ntwo");
  texts.add(file);
  EXPECT_EQ(*texts.find(file), "three");
}

TEST_F(SourceTextsTest, DropsAByteOrderMarkInFront) {
  const std::string marked = write("marked.h", "\xEF\xBB\xBFx\xEF\xBB\xBF");
  const std::string empty = write("empty.h", "");
  SourceTexts texts;
  texts.add(marked);
  texts.add(empty);
  ASSERT_NE(texts.find(marked), nullptr);
  EXPECT_EQ(*texts.find(marked), "x\xEF\xBB\xBF");
  ASSERT_NE(texts.find(empty), nullptr);
  EXPECT_EQ(*texts.find(empty), "");
}

TEST_F(SourceTextsTest, LeavesOutWhatCannotBeRead) {
  SourceTexts texts;
  texts.add(path("nothing.h"));
  texts.add(folder_.string());
  texts.addInclude(L"nothing.h", path("nothing.h"));
  EXPECT_EQ(texts.find(path("nothing.h")), nullptr);
  EXPECT_EQ(texts.find(folder_.string()), nullptr);
  EXPECT_EQ(texts.includeFiles(L"nothing.h"), std::vector<std::string>());
}

TEST_F(SourceTextsTest, KeepsIncludesOfOneNameInOrder) {
  const std::string second = write("b.h", "b");
  const std::string first = write("a.h", "a");
  const std::string other = write("c.h", "c");
  SourceTexts texts;
  texts.addInclude(L"name.h", second);
  texts.addInclude(L"other.h", other);
  texts.addInclude(L"name.h", first);
  EXPECT_EQ(texts.includeFiles(L"name.h"), (std::vector<std::string>{second, first}));
  EXPECT_EQ(texts.includeFiles(L"other.h"), std::vector<std::string>{other});
  ASSERT_NE(texts.find(first), nullptr);
  EXPECT_EQ(*texts.find(first), "a");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
