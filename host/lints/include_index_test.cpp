#include "host/lints/include_index.h"

#include "host/lints/lint_fixture.h"
#include "tests/support/cost.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class IncludeIndexTest : public LintFixture {
protected:
  const IncludeIndex& read() {
    libraries_ = load();
    return index_.emplace(*libraries_);
  }
  std::string filesOf(const Set<std::wstring_view>& names) const {
    Set<std::string> found;
    for (const IncludeIndex::File* const file : index_->filesOf(names)) found.insert(toUtf8(file->name));
    std::string text;
    for (const std::string& name : found) text += name + " ";
    return text;
  }

  std::shared_ptr<const LoadedLibraries> libraries_;
  std::optional<IncludeIndex> index_;
};

TEST_F(IncludeIndexTest, FindsFilesByWhatTheyDeclareAndWhoIncludesThem) {
  write("a.h", "#include \"b.h\"\nfloat a();\n");
  write("b.h", "#include \"c.h\"\nfloat b();\n");
  write("c.h", "float c();\n");
  write("d.h", "float c();\n");
  read();
  EXPECT_EQ(filesOf({L"c"}), "a.h b.h c.h d.h ");
  EXPECT_EQ(filesOf({L"a", L"none"}), "a.h ");
  EXPECT_EQ(filesOf({}), "");
}

TEST_F(IncludeIndexTest, KnowsWhichFilesLackSomething) {
  write("a.h", "#include \"b.h\"\n");
  write("b.h", "#include \"gone.h\"\n");
  write("c.h", "void f() {\n");
  write("d.h", "float d();\n");
  const IncludeIndex& index = read();
  EXPECT_FALSE(index.isComplete(L"a.h"));
  EXPECT_FALSE(index.isComplete(L"b.h"));
  EXPECT_FALSE(index.isComplete(L"c.h"));
  EXPECT_TRUE(index.isComplete(L"d.h"));
  EXPECT_FALSE(index.isComplete(L"gone.h"));
}

TEST_F(IncludeIndexTest, EndsWhereFilesIncludeEachOther) {
  write("a.h", "#include \"b.h\"\nfloat a();\n");
  write("b.h", "#include \"a.h\"\nfloat b();\n");
  const IncludeIndex& index = read();
  EXPECT_TRUE(index.isComplete(L"a.h"));
  EXPECT_EQ(filesOf({L"a"}), "a.h b.h ");
}

TEST_F(IncludeIndexTest, JoinsWhatSeveralFilesDeclare) {
  write("a.h",
        "void f(out float x, float y);\nstruct S { float m; };\nstruct T { float m; };\n#define M 1\n");
  write("b.h", "void f(float x, float y, out float z);\nstruct S { float n; };\n#define M return\n");
  const IncludeIndex& index = read();
  ASSERT_NE(index.findFunction(L"f"), nullptr);
  EXPECT_EQ(*index.findFunction(L"f"), (std::vector<bool>{true, false, true}));
  EXPECT_EQ(index.findFunction(L"g"), nullptr);
  EXPECT_EQ(index.findStructure(L"S"), nullptr);
  ASSERT_NE(index.findStructure(L"T"), nullptr);
  EXPECT_EQ(index.findStructure(L"T")->members.size(), 1u);
  ASSERT_NE(index.findMacro(L"M"), nullptr);
  EXPECT_FALSE(index.findMacro(L"M")->isExpression);
}

TEST_F(IncludeIndexTest, GivesPlacesOfCharacters) {
  write("a.h", "float a();\n  float b();\n");
  const IncludeIndex& index = read();
  const IncludeIndex::File* const file = index.find(L"a.h");
  ASSERT_NE(file, nullptr);
  const TextPosition place = file->placeOf(file->text.find(L"b("));
  EXPECT_EQ(place.line, 2u);
  EXPECT_EQ(place.column, 9u);
}

TEST_F(IncludeIndexTest, LeavesOutWhatCannotBeRead) {
  std::filesystem::create_directories(path("a.h"));
  EXPECT_EQ(read().find(L"a.h"), nullptr);
}

TEST_F(IncludeIndexTest, FollowsLongChainsInLinearTime) {
  EXPECT_LT(test::costGrowth(20,
                             [&](std::size_t count) {
                               for (std::size_t i = 0; i < count; ++i) {
                                 write("f" + std::to_string(i) + ".h",
                                       "#include \"f" + std::to_string(i + 1) + ".h\"\nfloat f();\n");
                               }
                               read();
                               index_->filesOf({L"f"});
                             }),
            test::kLinearGrowth);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
