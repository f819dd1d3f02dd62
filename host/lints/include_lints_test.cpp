// Include files that are missing, or of which nothing is used.

#include "host/lints/include_lints.h"

#include "host/lints/lint_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string including(const std::string& names, const std::string& body) {
  return fragment("f", "float x, out float r", body, "\"includes\": [" + names + "],\n");
}

using UnusedInclude = LintFixture;

TEST_F(UnusedInclude, IsToldAtItsName) {
  write("a.h", "float twice(float x) { return x + x; }\n");
  EXPECT_EQ(lintsOf(including("\"a.h\"", "r = x; // twice(x)")),
            "lib.fraglib:1:45: fragment `f` uses nothing of `a.h` [unused-include]\n");
}

TEST_F(UnusedInclude, IsToldAlsoOfWhatItIncludes) {
  write("a.h", "#include \"b.h\"\nfloat twice(float x) { return half(x); }\n");
  write("b.h", "float half(float x) { return x * 0.5; }\n");
  EXPECT_EQ(lintsOf(including("\"a.h\"", "r = x;")),
            "lib.fraglib:1:45: fragment `f` uses nothing of `a.h` [unused-include]\n");
  EXPECT_EQ(lintsOf(including("\"a.h\"", "r = half(x);")), "");
  EXPECT_EQ(lintsOf(including("\"b.h\", \"a.h\"", "r = half(x);")), "");
}

TEST_F(UnusedInclude, IsToldOfIncludeFiles) {
  write("a.h", "#ifndef A_H\n#define A_H\n  #include \"b.h\"\n// half(x)\nfloat twice(float x);\n#endif\n");
  write("b.h", "#ifndef B_H\n#define B_H\nfloat half(float x);\n#endif\n");
  EXPECT_EQ(lintsOf(including("\"a.h\"", "r = twice(x);")),
            "a.h:3:12: this include file uses nothing of `b.h` [unused-include]\n");
}

TEST_F(UnusedInclude, IsNoneThatAnIncludeFileKeeps) {
  const std::string library = including("\"a.h\"", "r = twice(x);");
  write("b.h", "float half(float x);\n");
  write("a.h", "#include \"b.h\"  // keep \r\nfloat twice(float x);\n");
  EXPECT_EQ(lintsOf(library), "");
  write("a.h", "#include \"b.h\"  // keep it\nfloat twice(float x);  // keep\n");
  EXPECT_EQ(lintsOf(library), "a.h:1:10: this include file uses nothing of `b.h` [unused-include]\n");
}

TEST_F(UnusedInclude, IsNoneWhoseMacroStructureOrVariableIsUsed) {
  write("a.h", "#define GAIN 2.0\n");
  EXPECT_EQ(lintsOf(including("\"a.h\"", "{ if (x > 0.0) { r = x * GAIN; } } r = x;")), "");
  write("a.h", "struct Glow { float amount; };\n");
  EXPECT_EQ(lintsOf(fragment("f", "out Glow r", "r.amount = 1.0;", "\"includes\": [\"a.h\"],\n")), "");
  write("a.h", "static const float gain = 2.0;\n");
  EXPECT_EQ(lintsOf(including("\"a.h\"", "r = x * gain;")), "");
}

TEST_F(UnusedInclude, IsNoneThatThePredefinesUse) {
  write("a.h", "float twice(float x);\n");
  EXPECT_EQ(
      lintsOf(fragment("f", "float x, out float r", "r = FOUR(x);",
                       "\"predefine\": [\"#define FOUR(x) twice(twice(x))\"], \"includes\": [\"a.h\"],\n")),
      "");
}

TEST_F(UnusedInclude, IsNoneThatAnotherIncludeFileNeeds) {
  write("a.h", "#define FAST\n");
  write("b.h", "#ifdef FAST\nfloat twice(float x);\n#endif\n");
  EXPECT_EQ(lintsOf(including("\"a.h\", \"b.h\"", "r = twice(x);")), "");
}

TEST_F(UnusedInclude, IsNoneThatOnlyIncludesOthers) {
  write("all.h", "#include \"a.h\"\n#include \"b.h\"\n");
  write("a.h", "float twice(float x);\n");
  write("b.h", "float half(float x);\n");
  EXPECT_EQ(lintsOf(including("\"all.h\"", "r = twice(x);")), "");
}

TEST_F(UnusedInclude, IsNoneWhereNamesAreJoined) {
  write("a.h", "float twiceFloat(float x);\n");
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "r = CALL(twice);",
                             "\"predefine\": [\"#define CALL(f) f##Float(x)\"], \"includes\": [\"a.h\"],\n")),
            "");
}

TEST_F(UnusedInclude, IsNoneOfFilesThatIncludeEachOther) {
  write("a.h", "#include \"b.h\"\nfloat twice(float x) { return half(x); }\n");
  write("b.h", "#include \"a.h\"\nfloat half(float x) { return twice(x); }\n");
  EXPECT_EQ(lintsOf(including("\"a.h\"", "r = half(x);")), "");
}

using MissingInclude = LintFixture;

TEST_F(MissingInclude, IsToldWhereAFragmentNamesIt) {
  write("sfg_math.h", "float twice(float x);\n");
  EXPECT_EQ(
      lintsOf(including("\"sfg_mth.h\"", "r = x;")),
      "lib.fraglib:1:45: fragment `f` includes `sfg_mth.h`, which is in no include folder; did you mean "
      "`sfg_math.h`? [missing-include]\n");
}

TEST_F(MissingInclude, IsToldWhereAnIncludeFileNamesIt) {
  write("a.h", "// first\n#include \"gone.h\"\nfloat twice(float x);\n");
  EXPECT_EQ(
      lintsOf(including("\"a.h\"", "r = twice(x);")),
      "a.h:2:10: this include file includes `gone.h`, which is in no include folder [missing-include]\n");
}

TEST_F(MissingInclude, IsNoFileThatIsThereButEmpty) {
  write("a.h", "");
  EXPECT_EQ(lintsOf(including("\"a.h\"", "r = x;")), "");
}

TEST_F(MissingInclude, SaysThatNoFolderIsGiven) {
  writeLibrary("{ " + including("\"a.h\"", "r = x;") + " }");
  const LoadedLibraries libraries({folder_.string()}, {}, "dx11");
  EXPECT_EQ(
      textOf(lintLibraries(libraries)),
      path("lib.fraglib") +
          ":1:45: fragment `f` includes `a.h`, which is in no include folder; none is given (see -I)\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
