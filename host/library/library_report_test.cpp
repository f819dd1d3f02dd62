// What is told of library files.

#include "host/library/library_report.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "host/library/loaded_libraries.h"
#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class LibraryReportTest : public testing::Test {
protected:
  LibraryReportTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_report_XXXXXX").string();
    root_ = mkdtemp(pattern.data());
    std::filesystem::create_directories(root_ / "lib");
    std::filesystem::create_directories(root_ / "later");
  }
  ~LibraryReportTest() override { std::filesystem::remove_all(root_); }

  void write(const std::string& name, const std::string& text) const { std::ofstream(root_ / name) << text; }
  std::string path(const std::string& name) const { return (root_ / name).string(); }

  LoadedLibraries load(const std::vector<std::string>& folders = {"lib"}) const {
    std::vector<std::string> paths;
    for (const std::string& folder : folders) paths.push_back(path(folder));
    return LoadedLibraries(paths, {}, "dx11");
  }
  /// All problems, a line each, paths from the test's folder.
  std::string problems(const std::vector<std::string>& folders = {"lib"}) const {
    const LoadedLibraries loaded = load(folders);
    std::string text;
    for (const Diagnostic& problem : loaded.problems()) {
      const char* const kinds[] = {"error", "warning", "note", "message"};
      text += problem.place() + ": " + kinds[static_cast<int>(problem.severity)] + ": " + problem.text +
              " [" + problem.identifier + "]\n";
    }
    for (std::size_t at = text.find(root_.string()); at != text.npos; at = text.find(root_.string())) {
      text.erase(at, root_.string().size() + 1);
    }
    return text;
  }

  std::filesystem::path root_;
};

constexpr const char* kSound =
    R"json({ "language": ["dx11"], "implementation": ["void f(out float r)", "{", "}"] })json";

TEST_F(LibraryReportTest, TellsNothingOfASoundLibraryWithComments) {
  write("lib/a.fraglib", "{ \"$schema\": \"x\", \"//\": \"text\", \"// later\": { \"odd\": 1 }, \"f\": " +
                             std::string(kSound) + " }");
  EXPECT_EQ(problems(), "");
  const LoadedLibraries loaded = load();
  EXPECT_EQ(loaded.files().entries().size(), 1u);
}

TEST_F(LibraryReportTest, TellsOfPortsAndUniformsOnceInTheOrderOfTheText) {
  write("lib/a.fraglib", R"json({ "f": { "language": ["dx11"], "ports": {
  "a": { "vaule": 1, "kind": "mass" },
  "b": "no such port", "// b": 3 },
  "uniforms": [ { "name": "u", "type": "float", "unit": "m", "min": [1, 2] } ],
  "implementation": ["void f(float a, out float r)", "{", "}"] } })json");
  EXPECT_EQ(
      problems(),
      "lib/a.fraglib:2:10: warning: unknown key `vaule` of a port; did you mean `value`? [unknown-key]\n"
      "lib/a.fraglib:2:30: warning: port `a` of fragment `f`: unknown kind `mass`; known are `angle`, "
      "`color`, `direction`, `distance`, `factor`, `normal`, `position`, `uv` [unknown-word]\n"
      "lib/a.fraglib:3:8: warning: fragment `f`: it has no port `b`; its ports are `a`, `r` "
      "[unknown-port]\n"
      "lib/a.fraglib:4:49: warning: unknown key `unit` of a parameter; its keys are `name`, `type`, "
      "`struct`, `value`, `constant`, `semantic`, `description`, `label`, `min`, `max`, `step`, `kind`, "
      "`space` [unknown-key]\n"
      "lib/a.fraglib:4:69: warning: uniform `u` of fragment `f`: `min` does not fit the type `float`: "
      "expected a number [wrong-value]\n");
}

TEST_F(LibraryReportTest, TellsNothingOfStandardFragmentsThatAreReplaced) {
  write("lib/a.fraglib", std::string(R"({ "f": )") + kSound + " }");
  write("later/b.fraglib", std::string(R"({ "f": )") + kSound + " }");
  std::filesystem::create_directories(root_ / "last");
  write("last/c.fraglib", std::string(R"({ "f": )") + kSound + " }");
  EXPECT_EQ(LoadedLibraries({path("lib"), path("later")}, {}, "dx11").problems().size(), 1u);
  EXPECT_TRUE(LoadedLibraries({path("lib"), path("later")}, {}, "dx11", path("lib")).problems().empty());
  // The fragment that replaced it is a named one.
  const LoadedLibraries all({path("lib"), path("later"), path("last")}, {}, "dx11", path("lib"));
  ASSERT_EQ(all.problems().size(), 1u);
  EXPECT_EQ(all.problems()[0].text,
            "fragment `f` replaces the one of an earlier folder, at " + path("later/b.fraglib") + ":1:8");
}

TEST_F(LibraryReportTest, TellsAMistypedImplementationOnce) {
  write("lib/a.fraglib", R"json({ "f": { "language": ["dx11"],
  "implementatoin": ["void f(out float r)", "{", "}"] } })json");
  EXPECT_EQ(problems(), "lib/a.fraglib:2:3: error: unknown key `implementatoin` of a fragment; did you mean "
                        "`implementation`? Without it fragment `f` cannot be loaded [unknown-key]\n");
}

TEST_F(LibraryReportTest, TellsAMistypedLanguageOfAProfileOnce) {
  write("lib/a.fraglib", R"json({ "f": { "profiles": [
  { "language": ["dx11"], "implementation": ["void f(out float r)", "{", "}"] },
  { "langauge": ["dx11"], "implementation": ["void f(out float r)", "{", "}"] } ] } })json");
  EXPECT_EQ(problems(),
            "lib/a.fraglib:3:5: error: unknown key `langauge` of a profile; did you mean `language`? "
            "Without it fragment `f` cannot be loaded [unknown-key]\n");
}

TEST_F(LibraryReportTest, TellsWhatIsMissing) {
  write("lib/a.fraglib", R"json({ "f": { "language": ["dx11"] },
  "g": { "profiles": [ { "implementation": [] } ] }, "h": { } })json");
  EXPECT_EQ(problems(), "lib/a.fraglib:1:8: error: fragment `f`: `implementation` is missing [missing-key]\n"
                        "lib/a.fraglib:2:24: error: fragment `g`: `language` is missing [missing-key]\n"
                        "lib/a.fraglib:2:59: error: fragment `h`: `language` is missing [missing-key]\n");
}

TEST_F(LibraryReportTest, TellsValuesOfAnotherKind) {
  write("lib/a.fraglib", R"json({ "f": 3, "g": { "language": "dx11", "implementation": [] },
  "h": { "language": ["dx11"], "implementation": ["void h(out float r)", 3] },
  "i": { "language": ["dx11"], "lod": "near", "implementation": [] } })json");
  EXPECT_EQ(
      problems(),
      "lib/a.fraglib:1:8: error: fragment `f`: `fragment` must be an object, not a number [wrong-kind]\n"
      "lib/a.fraglib:1:30: error: fragment `g`: `language` must be an array of strings, not a string "
      "[wrong-kind]\n"
      "lib/a.fraglib:2:74: error: fragment `h`: `implementation` must be an array of strings, not a number "
      "[wrong-kind]\n"
      "lib/a.fraglib:3:39: error: fragment `i`: `lod` must be a number, not a string [wrong-kind]\n");
}

TEST_F(LibraryReportTest, TellsCodeThatCannotBeRead) {
  write("lib/a.fraglib", R"json({ "f": { "language": ["dx11"], "implementation": [
  "float f(float a)", "{", "}" ] } })json");
  EXPECT_EQ(problems(),
            "lib/a.fraglib:2:3: error: fragment `f`: function result type is not void [not-loaded]\n");
}

TEST_F(LibraryReportTest, TellsFaultsOfPrototypesInTheirLine) {
  write("lib/a.fraglib", R"json({ "f": { "language": ["dx11"], "implementation": [
  "void f(",
  "\tfloat a, // \"x\"",
  "out float r) { r = a; }" ] },
 "g": { "language": ["dx11"], "implementation": [
  "void g(float a,",
  "\t/* \"x\" */ b, out float r)", "{", "}" ] },
 "h": { "language": ["dx11"], "implementation": [
  "void h(float a,",
  "\tot float r)", "{ r = a; }" ] },
 "i": { "language": ["dx11"], "implementation": [
  "void i(float a,",
  "\tout float r)", "{ r = a; }" ] } })json");
  EXPECT_EQ(
      problems(),
      "lib/a.fraglib:3:15: error: fragment `f`: this comment hides the parameters behind it: write it "
      "between `/*` and `*/` [not-loaded]\n"
      "lib/a.fraglib:7:18: error: fragment `g`: the parameter `b` needs a type and a name [not-loaded]\n"
      "lib/a.fraglib:10:6: error: fragment `h`: unexpected `ot`; did you mean `out`? [not-loaded]\n");
}

TEST_F(LibraryReportTest, TellsUniforms) {
  const std::string rest =
      R"json(, "language": ["dx11"], "implementation": ["void f(out float r)", "{", "}"] })json";
  write("lib/a.fraglib", R"json({ "f": { "uniforms": [ { "name": "u", "type": "vec3" } ])json" + rest +
                             ",\n" + R"json("g": { "uniforms": [ { "type": "float" } ])json" + rest + "}");
  EXPECT_EQ(
      problems(),
      "lib/a.fraglib:1:47: error: fragment `f`: `type` names no type: `vec3`; did you mean `float3`? Types "
      "are `bool`, `int`, `int2`, `int3`, `int4`, `uint`, `uint2`, `uint3`, `uint4`, `float`, `float2`, "
      "`float3`, `float4`, `float2x2`, `float3x3`, `float4x4`, `sampler1D`, `sampler2D`, `sampler3D`, "
      "`samplerCube`, `struct` [unknown-type]\n"
      "lib/a.fraglib:2:22: error: fragment `g`: `name` is missing [missing-key]\n");
}

TEST_F(LibraryReportTest, TellsFilesThatAreNoLibraries) {
  write("lib/a.fraglib", "{ \"f\": [1,\n }");
  write("lib/b.fraglib", "[ ]");
  std::filesystem::create_directory(root_ / "lib/c.fraglib");
  std::filesystem::create_symlink("nowhere", root_ / "lib/d.FRAGLIB");
  ASSERT_EQ(mkfifo(path("lib/e.fraglib").c_str(), 0600), 0);
  std::filesystem::create_symlink("/dev/zero", root_ / "lib/f.fraglib");
  EXPECT_EQ(problems(),
            "lib/c.fraglib: error: the library cannot be read: it is a folder [unreadable-file]\n"
            "lib/d.FRAGLIB: error: the library cannot be read: it is a link to nothing [unreadable-file]\n"
            "lib/e.fraglib: error: the library cannot be read: it is a pipe [unreadable-file]\n"
            "lib/f.fraglib: error: the library cannot be read: it is a device [unreadable-file]\n"
            "lib/a.fraglib:2:2: error: expected a value behind the comma in front of this bracket, found `}` "
            "[malformed-json]\n"
            "lib/b.fraglib:1:1: error: a fragment library is an object of fragments [wrong-kind]\n");
}

TEST_F(LibraryReportTest, TellsWhichOfTwoDefinitionsCounts) {
  write("lib/a.fraglib", "{ \"f\": " + std::string(kSound) + ",\n  \"f\": " + kSound + " }");
  write("lib/b.fraglib", "{ \"f\": " + std::string(kSound) + " }");
  write("later/c.fraglib", "{ \"f\": " + std::string(kSound) + " }");
  EXPECT_EQ(problems({"lib", "later"}),
            "lib/a.fraglib:2:3: warning: fragment `f` is defined at lib/a.fraglib:1:3, too; only the last "
            "definition counts [repeated-fragment]\n"
            "lib/b.fraglib:1:8: warning: fragment `f` is defined at lib/a.fraglib:2:8, too; only the last "
            "definition counts [repeated-fragment]\n"
            "later/c.fraglib:1:8: note: fragment `f` replaces the one of an earlier folder, at "
            "lib/b.fraglib:1:8 [hidden-fragment]\n");
}

TEST_F(LibraryReportTest, TellsKeysThatNobodyReads) {
  write("lib/a.fraglib", R"json({ "f": { "langauge": ["dx11"], "language": ["dx11"], "includ": ["x.h"],
  "implementation": ["void f(out float r)", "{", "}"], "lod": 1, "lod": 2 },
 "g": { "language": ["dx11"], "lod": 3, "profiles": [
  { "language": ["dx11"], "implementation": ["void g(out float r)", "{", "}"] } ] } })json");
  EXPECT_EQ(
      problems(),
      "lib/a.fraglib:1:10: warning: unknown key `langauge` of a fragment; did you mean `language`? "
      "[unknown-key]\n"
      "lib/a.fraglib:1:54: warning: unknown key `includ` of a fragment; did you mean `includes`? "
      "[unknown-key]\n"
      "lib/a.fraglib:2:66: warning: the key `lod` stands at line 2, column 56 of the same object, too; only "
      "the last one counts [repeated-key]\n"
      "lib/a.fraglib:3:9: warning: `language` has no effect beside `profiles`; it belongs into each of "
      "them [ignored-key]\n"
      "lib/a.fraglib:3:31: warning: `lod` has no effect beside `profiles`; it belongs into each of them "
      "[ignored-key]\n");
}

TEST_F(LibraryReportTest, TellsWordsThatNobodyKnows) {
  write("lib/a.fraglib", R"json({ "f": { "mode": "inlnie", "language": ["hlsl", "glsl"],
  "implementation": ["void f(out float r)", "{", "}"] },
 "g": {
  "mode" : "INLINE", "language" : [ "hlsl", "dx11" ], "implementation" : ["{{a}}"] } })json");
  EXPECT_EQ(
      problems(),
      "lib/a.fraglib:1:18: warning: `mode` is none of `function`, `inline`, `metaSL`: `inlnie`; did you "
      "mean `inline`? It is taken for `function` [unknown-word]\n"
      "lib/a.fraglib:1:41: warning: the profile is for no language that is known: `hlsl`; known is `dx11` "
      "[unknown-language]\n");
}

TEST_F(LibraryReportTest, KnowsWhyANameIsNoFragment) {
  write("lib/a.fraglib", "{ \"noise2d\": " + std::string(kSound) + ",\n \"broken\": 3 }");
  const LoadedLibraries loaded = load();
  EXPECT_EQ(loaded.whyUnknown("noise2").hint, "; did you mean `noise2d`?");
  EXPECT_EQ(loaded.whyUnknown("wood").hint, "");
  EXPECT_EQ(loaded.whyUnknown("broken").text,
            "the fragment `broken` cannot be loaded: see " + path("lib/a.fraglib") + ":2:12");
  EXPECT_EQ(loaded.whyUnknown("broken").kind, Finding::notLoaded);
  write("lib/b.fraglib", "[");
  EXPECT_EQ(load().whyUnknown("wood").hint, "; not all libraries could be read");
}

TEST_F(LibraryReportTest, LaterDefinitionThatLoadsForgetsTheFailure) {
  write("lib/a.fraglib", "{ \"f\": 3 }");
  write("lib/b.fraglib", "{ \"f\": " + std::string(kSound) + " }");
  EXPECT_EQ(load().whyUnknown("f").kind, Finding::unknownFragment);
}

TEST_F(LibraryReportTest, TakesTimeInProportionToTheFaults) {
  EXPECT_LT(test::costGrowth(500,
                             [&](std::size_t count) {
                               std::string text = "{";
                               for (std::size_t i = 0; i < count; ++i) {
                                 text += (i == 0 ? "\"f" : ",\"f") + std::to_string(i % (count / 2)) +
                                         "\": { \"lod\": 1, \"lod\": 2, \"langauge\": 3 }";
                               }
                               write("lib/a.fraglib", text + "}");
                               EXPECT_GE(load().problems().size(), count);
                             }),
            test::kLinearGrowth);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
