#include "tolmsdk/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/test_folder.h"
#include "tests/support/cost.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK {
namespace {

namespace fs = std::filesystem;

/// Tests with a folder of their own.
class Files : public testing::Test {
protected:
  WString path(std::string_view name) const { return folder_.file(name); }
  WString write(std::string_view name, std::string_view bytes) const { return folder_.write(name, bytes); }

  const TestFolder folder_;
};

TEST_F(Files, EnumeratesRegularFilesOrderedByNameBytes) {
  write("b.fraglib", "");
  write("a.fraglib", "");
  write("B.fraglib", "");
  write("\xC3\xA4.fraglib", "");
  write("a", "");
  fs::create_directories(folder_.path() / "c.fraglib");
  write("c.fraglib/inside", "");
  const Array<WString> expected{path("B.fraglib"), path("a"), path("a.fraglib"), path("b.fraglib"),
                                path("\xC3\xA4.fraglib")};
  EXPECT_EQ(EnumFiles(folder_.text()), expected);
  EXPECT_EQ(EnumFiles(folder_.text() + L"/"), expected);
}

TEST_F(Files, MissingFolderHasNoFiles) {
  EXPECT_TRUE(EnumFiles(path("missing")).empty());
  EXPECT_TRUE(EnumFiles(write("file", "x")).empty());
  EXPECT_TRUE(EnumFiles(L"").empty());
}

TEST(PathNames, AreCutAtSeparatorsAndTheLastDot) {
  struct Case {
    const wchar_t* path;
    const wchar_t* name;
    const wchar_t* base;
    const wchar_t* extension;
  };
  for (const Case& c :
       {Case{L"lib/noise.fraglib", L"noise.fraglib", L"noise", L"fraglib"},
        Case{L"noise.fraglib", L"noise.fraglib", L"noise", L"fraglib"},
        Case{L"c:\\lib\\noise.h", L"noise.h", L"noise", L"h"}, Case{L"a.b/noise", L"noise", L"noise", L""},
        Case{L"a.b.c", L"a.b.c", L"a.b", L"c"}, Case{L"noise.", L"noise.", L"noise", L""},
        Case{L".hidden", L".hidden", L"", L"hidden"}, Case{L"lib/", L"", L"", L""},
        Case{L"", L"", L"", L""}}) {
    EXPECT_EQ(GetFilename(c.path), c.name) << toUtf8(c.path);
    EXPECT_EQ(GetBaseName(c.path), c.base) << toUtf8(c.path);
    EXPECT_EQ(GetExtension(c.path), c.extension) << toUtf8(c.path);
  }
}

TEST_F(Files, ReadsUtf8) {
  WString text;
  WString error = L"before";
  EXPECT_TRUE(GetUTF8TextFileString(write("a", "\xC3\xA4 1\n"), text, &error));
  EXPECT_EQ(text, L"\u00e4 1\n");
  EXPECT_EQ(error, L"");
}

TEST_F(Files, ReadsFilesOfOtherNames) {
  WString text;
  EXPECT_TRUE(GetUTF8TextFileString(write("\xE2\x82\xAC \xF0\x9F\x98\x80.txt", "x"), text));
  EXPECT_EQ(text, L"x");
}

TEST_F(Files, DropsOneLeadingByteOrderMark) {
  WString text;
  EXPECT_TRUE(GetUTF8TextFileString(write("a", "\xEF\xBB\xBFx\xEF\xBB\xBF"), text));
  EXPECT_EQ(text, L"x\uFEFF");
  EXPECT_TRUE(GetUTF8TextFileString(write("b", "\xEF\xBB\xBF"), text));
  EXPECT_EQ(text, L"");
  EXPECT_TRUE(GetUTF8TextFileString(write("c", "\xEF\xBB\xBF\xEF\xBB\xBF"), text));
  EXPECT_EQ(text, L"\uFEFF");
  EXPECT_TRUE(GetUTF8TextFileString(write("d", "\xEF\xBB"), text));
  EXPECT_EQ(text, L"\uFFFD");
}

TEST_F(Files, KeepsLineEnds) {
  WString text;
  EXPECT_TRUE(GetUTF8TextFileString(write("a", "one\r\ntwo\nthree\rfour"), text));
  EXPECT_EQ(text, L"one\r\ntwo\nthree\rfour");
}

TEST_F(Files, ReplacesInvalidUtf8) {
  WString text;
  EXPECT_TRUE(GetUTF8TextFileString(write("a", "a\xE2\x82z\x80\xFF"), text));
  EXPECT_EQ(text, L"a\uFFFDz\uFFFD\uFFFD");
}

TEST_F(Files, ReadsAnEmptyFile) {
  WString text = L"before";
  EXPECT_TRUE(GetUTF8TextFileString(write("a", ""), text));
  EXPECT_EQ(text, L"");
}

TEST_F(Files, ReadsAFileLongerThanOneStep) {
  const std::string bytes(200001, 'x');
  WString text;
  EXPECT_TRUE(GetUTF8TextFileString(write("a", bytes), text));
  EXPECT_EQ(text, WString(200001, L'x'));
}

TEST_F(Files, RefusesAMissingFile) {
  WString text = L"before";
  WString error;
  EXPECT_FALSE(GetUTF8TextFileString(path("missing"), text, &error));
  EXPECT_EQ(text, L"");
  EXPECT_EQ(error, L"no such file");
  EXPECT_FALSE(GetUTF8TextFileString(L"", text));
}

TEST_F(Files, RefusesAFolder) {
  WString text;
  WString error;
  EXPECT_FALSE(GetUTF8TextFileString(folder_.text(), text, &error));
  EXPECT_EQ(error, L"this is a folder, not a file");
}

TEST_F(Files, DoesNotCutAPathAtANullCharacter) {
  WString withNull = write("a", "x");
  withNull.push_back(L'\0');
  withNull += L"b";
  WString text;
  EXPECT_FALSE(GetUTF8TextFileString(withNull, text));
}

// A sparse file: it takes no room, and it must be refused before anything is read.
TEST_F(Files, RefusesAFileOfOneGibibyteAtOnce) {
  const WString file = write("big", "");
  fs::resize_file(folder_.path() / "big", std::uintmax_t{1} << 30);
  const WString small = write("small", std::string(std::size_t{1} << 24, 'x'));
  WString text;
  WString error;
  const std::clock_t refused =
      test::processorTime([&] { EXPECT_FALSE(GetUTF8TextFileString(file, text, &error)); });
  EXPECT_EQ(error, L"the file is larger than 256 MiB");
  EXPECT_LT(refused, test::processorTime([&] { EXPECT_TRUE(GetUTF8TextFileString(small, text)); }));
}

#if !defined(_WIN32)
// Streams tell no size beforehand.
TEST_F(Files, RefusesAnEndlessStream) {
  WString text;
  WString error;
  EXPECT_FALSE(GetUTF8TextFileString(L"/dev/zero", text, &error));
  EXPECT_EQ(error, L"the file is larger than 256 MiB");
}
#endif

}  // namespace
}  // namespace TolmSDK
