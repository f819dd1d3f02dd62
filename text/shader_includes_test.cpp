#include "sfg/shader_includes.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "platform/test_folder.h"
#include "text/test_views.h"
#include "tolmsdk/sha1.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using Names = Set<WString>;
using Flat = Array<WString>;
using Files = std::vector<std::pair<const char*, std::string>>;

class ShaderIncludesTest : public ::testing::Test {
protected:
  void add(const Files& files) {
    const TestFolder folder;
    for (const auto& [name, bytes] : files) folder.write(name, bytes);
    includes_.addIncludePath(folder.text().c_str());
  }
  WString content(const wchar_t* name) const { return includes_.getIncludeContent(name); }
  Names included(const wchar_t* name) const { return includes_.getAncestorIncludes(name); }
  Flat flat(const Names& names, Names done = {}) const {
    Flat out;
    includes_.createFlatIncludeArray(out, done, names);
    return out;
  }

  ShaderIncludes includes_;
};

TEST_F(ShaderIncludesTest, ThereIsOneRegistry) {
  EXPECT_EQ(&ShaderIncludes::Singleton(), &ShaderIncludes::Singleton());
}

TEST_F(ShaderIncludesTest, TakesIncludeLinesOutOfTheText) {
  add({{"a.h", "#include \"b.h\"\nfloat x;"}});
  EXPECT_EQ(content(L"a.h"), L"float x;");
  EXPECT_EQ(included(L"a.h"), Names{L"b.h"});
}

TEST_F(ShaderIncludesTest, ReadsDirectivesAnywhere) {
  struct {
    std::string text;
    const wchar_t* content;
    Names names;
  } const cases[] = {
      {"", L"", {}},
      {"float x;\n#include \"c.h\"", L"float x;\n", {L"c.h"}},
      {"#include \"b.h\"\nx\n#include \"a.h\"\r\ny\n", L"x\ny\n", {L"a.h", L"b.h"}},
      {"#include \"b.h\"\n#include \"b.h\"\n", L"", {L"b.h"}},
      {"x #include \"b.h\" y\nz", L"x z", {L"b.h"}},
      {"// #include \"b.h\"\nz", L"// z", {L"b.h"}},
      {"#include <d.h>\nz", L"z", {}},
      {"#include <d.h>\n\"x.h\"", L"\"x.h\"", {}},
      {"#include \"d.h\n\"", L"\"", {}},
      {"#include \"\"\nz", L"z", {}},
      {"#include\"b.h\"\nz", L"z", {L"b.h"}},
      {"#includes \"b.h\" \"c.h\"\nz", L"z", {L"b.h"}},
      {"# include \"b.h\"\n#INCLUDE \"c.h\"\n", L"# include \"b.h\"\n#INCLUDE \"c.h\"\n", {}},
      {"#include #include \"b.h\"\nz", L"z", {L"b.h"}},
      {"#include", L"", {}},
      {"#include \"sub/b.h\"\n", L"", {L"sub/b.h"}},
      {"\xEF\xBB\xBF#include \"\xC3\xA9.h\"\n\xC3\xA9\r\n", L"\u00e9\r\n", {L"\u00e9.h"}},
  };
  for (const auto& c : cases) {
    includes_.clear();
    add({{"a.h", c.text}});
    EXPECT_EQ(content(L"a.h"), c.content) << c.text;
    EXPECT_EQ(included(L"a.h"), c.names) << c.text;
  }
}

TEST_F(ShaderIncludesTest, ReadsHeadersOnly) {
  add({{"A.H", "a"}, {"b.txt", "b"}, {"c.hlsl", "c"}, {"h", "d"}, {"d.h.bak", "e"}, {".h", "f"}});
  EXPECT_EQ(content(L"A.H"), L"a");
  EXPECT_EQ(content(L"a.h"), L"") << "names are compared with case";
  for (const wchar_t* other : {L"b.txt", L"c.hlsl", L"h", L"d.h.bak"}) EXPECT_EQ(content(other), L"");
}

TEST_F(ShaderIncludesTest, AFileMetAgainAddsToItsText) {
  add({{"a.h", "#include \"b.h\"\none\n"}});
  add({{"a.h", "two\n#include \"c.h\"\n"}});
  EXPECT_EQ(content(L"a.h"), L"one\ntwo\n");
  EXPECT_EQ(included(L"a.h"), (Names{L"b.h", L"c.h"}));
}

TEST_F(ShaderIncludesTest, AnUnreadableFolderAddsNothing) {
  includes_.addIncludePath(nullptr);
  includes_.addIncludePath(L"");
  includes_.addIncludePath(L"/nowhere/at/all");
  EXPECT_EQ(flat({L"a.h"}), Flat{L"a.h"});
}

TEST_F(ShaderIncludesTest, AnUnreadableFileAddsNothing) {
  const TestFolder folder;
  folder.write("a.h", "x");
  // Larger than a text file may be; takes no room, since nothing is written.
  std::filesystem::resize_file(folder.path() / "a.h", (std::uintmax_t{1} << 28) + 1);
  includes_.addIncludePath(folder.text().c_str());
  EXPECT_EQ(content(L"a.h"), L"");
}

TEST_F(ShaderIncludesTest, UnknownNamesAreEmpty) {
  EXPECT_EQ(content(L"unknown.h"), L"");
  EXPECT_EQ(included(L"unknown.h"), Names{});
  EXPECT_EQ(content(nullptr), L"");
  EXPECT_EQ(included(nullptr), Names{});
}

TEST_F(ShaderIncludesTest, ClearForgetsTheFiles) {
  add({{"a.h", "#include \"b.h\"\nx"}});
  includes_.clear();
  EXPECT_EQ(content(L"a.h"), L"");
  EXPECT_EQ(included(L"a.h"), Names{});
}

TEST_F(ShaderIncludesTest, TheFlatListHoldsWhatIsIncludedFirst) {
  add({{"a.h", "#include \"b.h\"\n#include \"c.h\"\n"}, {"b.h", "#include \"c.h\"\n"}, {"c.h", ""}});
  EXPECT_EQ(flat({L"a.h"}), (Flat{L"c.h", L"b.h", L"a.h"}));
  EXPECT_EQ(flat({L"b.h", L"a.h"}), (Flat{L"c.h", L"b.h", L"a.h"}));
  EXPECT_EQ(flat({L"c.h", L"b.h"}), (Flat{L"c.h", L"b.h"}));
  EXPECT_EQ(flat({}), Flat{});
}

TEST_F(ShaderIncludesTest, TheFlatListTakesNamesInTheirOrder) {
  add({{"a.h", "#include \"z.h\"\n#include \"y.h\"\n"}});
  EXPECT_EQ(flat({L"a.h"}), (Flat{L"y.h", L"z.h", L"a.h"})) << "unknown names too";
}

TEST_F(ShaderIncludesTest, TheFlatListOmitsWhatIsDoneButNotWhatThatIncludes) {
  add({{"a.h", "#include \"b.h\"\n"}, {"b.h", "#include \"c.h\"\n"}});
  EXPECT_EQ(flat({L"a.h"}, {L"b.h"}), (Flat{L"c.h", L"a.h"}));
  EXPECT_EQ(flat({L"a.h"}, {L"a.h", L"c.h"}), (Flat{L"b.h"}));
}

TEST_F(ShaderIncludesTest, TheFlatListIsAppendedAndMarkedAsDone) {
  add({{"a.h", "#include \"b.h\"\n"}});
  Flat out{L"old"};
  Names done{L"old"};
  includes_.createFlatIncludeArray(out, done, L"a.h");
  EXPECT_EQ(out, (Flat{L"old", L"b.h", L"a.h"}));
  EXPECT_EQ(done, (Names{L"a.h", L"b.h", L"old"}));
  includes_.createFlatIncludeArray(out, done, out[2]);
  EXPECT_EQ(out.size(), 3u);
}

TEST_F(ShaderIncludesTest, TheNameMayBeAnElementOfTheList) {
  add({{"a.h", "#include \"b.h\"\n"}});
  Flat out{L"a.h"};
  out.shrink_to_fit();
  Names done;
  includes_.createFlatIncludeArray(out, done, out[0]);
  EXPECT_EQ(out, (Flat{L"a.h", L"b.h", L"a.h"}));
}

TEST_F(ShaderIncludesTest, CyclesEnd) {
  add({{"a.h", "#include \"b.h\"\n"},
       {"b.h", "#include \"c.h\"\n#include \"a.h\"\n"},
       {"c.h", "#include \"c.h\"\n"}});
  EXPECT_EQ(flat({L"a.h"}), (Flat{L"c.h", L"b.h", L"a.h"}));
  EXPECT_EQ(flat({L"b.h"}), (Flat{L"a.h", L"c.h", L"b.h"}));
  EXPECT_EQ(flat({L"a.h", L"b.h"}), (Flat{L"c.h", L"b.h", L"a.h"}));
}

TEST_F(ShaderIncludesTest, DeepAndSharedIncludesTakeTimeInProportion) {
  // A ladder, in which each file is included twice: 2^N ways lead to the last one.
  constexpr int kFiles = 300;
  Files files;
  std::vector<std::string> names;
  for (int i = 0; i <= kFiles; ++i) {
    names.push_back(std::to_string(i) + "a.h");
    names.push_back(std::to_string(i) + "b.h");
  }
  for (int i = 0; i < kFiles; ++i)
    for (int side = 0; side < 2; ++side)
      files.emplace_back(names[static_cast<std::size_t>(2 * i + side)].c_str(),
                         "#include \"" + std::to_string(i + 1) + "a.h\"\n#include \"" +
                             std::to_string(i + 1) + "b.h\"\n");
  add(files);
  const Flat out = flat({L"0a.h"});
  EXPECT_EQ(out.size(), 2u * kFiles + 1);
  EXPECT_EQ(out.front(), L"300a.h");
  EXPECT_EQ(out.back(), L"0a.h");
}

TEST_F(ShaderIncludesTest, TheHashIsThatOfEveryFileInTheFlatOrder) {
  add({{"a.h", "#include \"b.h\"\nfloat a;\n"}, {"b.h", "float b;\n"}});
  const WString a = SHA1_GetStringHash(L"float a;\n");
  const WString b = SHA1_GetStringHash(L"float b;\n");
  EXPECT_EQ(includes_.getIncludesHash({L"a.h"}), b + a);
  EXPECT_EQ(includes_.getIncludesHash({L"b.h"}), b);
  EXPECT_EQ(includes_.getIncludesHash({}), L"");
  EXPECT_EQ(includes_.getIncludesHash({L"unknown.h"}), L"da39a3ee5e6b4b0d3255bfef95601890afd80709");
}

TEST_F(ShaderIncludesTest, AHashOutlivesTheTextItWasComputedFor) {
  add({{"a.h", "float a;\n"}});
  const WString hash = includes_.getIncludesHash({L"a.h"});
  includes_.clear();
  add({{"a.h", "float b;\n"}});
  EXPECT_EQ(includes_.getIncludesHash({L"a.h"}), hash);
  ShaderIncludes fresh;
  EXPECT_NE(fresh.getIncludesHash({L"a.h"}), hash);
}

TEST_F(ShaderIncludesTest, ThreadsMayAskForHashes) {
  add({{"a.h", "#include \"b.h\"\nfloat a;\n"}, {"b.h", "float b;\n"}});
  const WString expected = SHA1_GetStringHash(L"float b;\n") + SHA1_GetStringHash(L"float a;\n");
  std::vector<std::thread> threads;
  std::vector<WString> results(4);
  for (WString& result : results)
    threads.emplace_back([this, &result] { result = includes_.getIncludesHash({L"a.h"}); });
  for (std::thread& thread : threads) thread.join();
  for (const WString& result : results) EXPECT_EQ(result, expected);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
