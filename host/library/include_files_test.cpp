#include "host/library/include_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class IncludeFilesTest : public testing::Test {
protected:
  IncludeFilesTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_include_files_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~IncludeFilesTest() override { std::filesystem::remove_all(folder_); }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
  }
  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  std::filesystem::path folder_;
};

TEST_F(IncludeFilesTest, KnowWhereTheyNameOthers) {
  write("a.h", "float a;\n  #include \"b.h\" // \"c.h\"\n#include <d.h>\n\n#include \"e.h\"");
  IncludeFiles files;
  files.addFolder(folder_.string());
  const IncludeFiles::File* const file = files.find(L"a.h");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->path, path("a.h"));
  EXPECT_EQ(file->fault, "");
  std::string named;
  for (const IncludeFiles::Named& other : file->includes) {
    named += toUtf8(other.name) + " " + std::to_string(other.position.line) + ":" +
             std::to_string(other.position.column) + "\n";
  }
  EXPECT_EQ(named, "b.h 2:12\ne.h 5:10\n");
  EXPECT_EQ(files.find(L"b.h"), nullptr);
}

TEST_F(IncludeFilesTest, SayWhyThereIsNoText) {
  std::filesystem::create_directory(folder_ / "folder.h");
  std::filesystem::create_symlink("nowhere", folder_ / "link.h");
  ASSERT_EQ(mkfifo(path("pipe.h").c_str(), 0600), 0);
  write("large.h", "");
  std::filesystem::resize_file(folder_ / "large.h", std::uintmax_t{1} << 30);
  write("other.hpp", "");
  IncludeFiles files;
  files.addFolder(folder_.string());
  EXPECT_EQ(files.find(L"folder.h")->fault, "it is a folder");
  EXPECT_EQ(files.find(L"link.h")->fault, "it is a link to nothing");
  EXPECT_EQ(files.find(L"pipe.h")->fault, "it is a pipe");
  EXPECT_EQ(files.find(L"large.h")->fault, "the file is larger than 256 MiB");
  EXPECT_EQ(files.find(L"other.hpp"), nullptr);
  EXPECT_EQ(whyNoFile("/dev/null"), "it is a device");
  EXPECT_EQ(whyNoFile(path("gone.h")), "it does not exist");
}

TEST_F(IncludeFilesTest, PreferOneThatCanBeRead) {
  std::filesystem::create_directories(folder_ / "one/x.h");
  std::filesystem::create_directories(folder_ / "two");
  write("two/x.h", "#include \"y.h\"\n");
  IncludeFiles files;
  files.addFolder(path("one"));
  files.addFolder(path("two"));
  EXPECT_EQ(files.find(L"x.h")->path, path("two/x.h"));
  EXPECT_EQ(files.find(L"x.h")->fault, "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
