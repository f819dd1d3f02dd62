#include <ctime>

#include "host/check/check_fixture.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class CheckerTest : public CheckFixture {
protected:
  /// Fragments `f0`, `f1`, .., of which those whose numbers `isWrong` name something undefined.
  static std::string library(std::size_t count, const std::function<bool(std::size_t)>& isWrong) {
    std::string text = "{\n";
    for (std::size_t i = 0; i < count; ++i) {
      const std::string name = "f" + std::to_string(i);
      text += "\"" + name + "\": {\"language\": [\"dx11\"], \"implementation\": [\"void " + name +
              "_(float a, out float result)\", \"{\", \"  result = a * " + std::to_string(i) + ".0" +
              (isWrong(i) ? " + wrong" : "") + ";\", \"}\"]}" + (i + 1 < count ? ",\n" : "\n");
    }
    return text + "}\n";
  }
};

TEST_F(CheckerTest, EqualFindingsForAnyNumberOfThreads) {
  write("a.fraglib", library(40, [](std::size_t i) { return i % 7 == 3; }));
  write("graph.json", R"json({"nodse": []})json");
  write("scene.json", R"json({"ligths": []})json");
  const Checker checker(options());
  const Checker::Files files{{path("a.fraglib")}, {path("graph.json")}, {path("scene.json")}};
  const CheckResult one = checker.check(files, 1);
  EXPECT_FALSE(one.diagnostics.empty());
  EXPECT_EQ(one.counts.fragments, 40u);
  EXPECT_EQ(one.counts.profiles, 40u);
  EXPECT_EQ(one.counts.graphs, 1u);
  EXPECT_EQ(one.counts.environments, 1u);
  for (const std::size_t threads : {2, 3, 8}) {
    CheckOptions fresh = options();
    fresh.cache = nullptr;
    EXPECT_EQ(textOf(Checker(fresh).check(files, threads)), textOf(one));
  }
}

TEST_F(CheckerTest, TellsItsProgress) {
  write("a.fraglib", library(5, [](std::size_t) { return false; }));
  std::size_t last = 0;
  std::size_t all = 0;
  Checker(options()).check({{path("a.fraglib")}, {}, {}}, 2, [&](std::size_t done, std::size_t count) {
    EXPECT_EQ(done, last + 1);
    last = done;
    all = count;
  });
  EXPECT_EQ(last, all);
  EXPECT_GE(all, 5u);
}

TEST_F(CheckerTest, TextsStandInForFiles) {
  write("a.fraglib", R"json({"f": {"languge": ["dx11"]}})json");
  CheckOptions given = options();
  given.texts[path("a.fraglib")] =
      R"json({"f": {"language": ["dx11"], "implementation": ["void f_(out float result)", "{ result = 1.0; }"],
  "lodd": 1}})json";
  EXPECT_EQ(textOf(Checker(given).checkLibrary(path("a.fraglib"))),
            "a.fraglib:2:3: error: unknown key `lodd` of a fragment; did you mean `lod`? [unknown-key]\n");
}

TEST_F(CheckerTest, SecondCheckOfAnUnchangedLibraryCompilesNothing) {
  if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  write("a.fraglib", library(30, [](std::size_t i) { return i == 4; }));
  const std::string first = textOf(Checker(options()).checkLibrary(path("a.fraglib")));
  const std::size_t compiled = cache_->compiledTexts();
  EXPECT_EQ(compiled, 30u);
  EXPECT_EQ(textOf(Checker(options()).checkLibrary(path("a.fraglib"))), first);
  EXPECT_EQ(cache_->compiledTexts(), compiled);
}

TEST_F(CheckerTest, ChangedFragmentAloneIsCompiledAgain) {
  if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  write("a.fraglib", library(30, [](std::size_t) { return false; }));
  EXPECT_EQ(textOf(Checker(options()).checkLibrary(path("a.fraglib"))), "");
  const std::size_t compiled = cache_->compiledTexts();
  write("a.fraglib", library(30, [](std::size_t i) { return i == 4; }));
  EXPECT_NE(textOf(Checker(options()).checkLibrary(path("a.fraglib"))), "");
  EXPECT_EQ(cache_->compiledTexts(), compiled + 1);
}

TEST_F(CheckerTest, WithoutCompilingEverythingElseIsTold) {
  write("a.fraglib", R"json({"f": {"language": ["dx11"], "lodd": 1,
    "implementation": ["void f_(out float result)", "{ result = wrong; }"]}})json");
  CheckOptions given = options();
  given.compiles = false;
  EXPECT_EQ(textOf(Checker(given).checkLibrary(path("a.fraglib"))),
            "a.fraglib:1:30: error: unknown key `lodd` of a fragment; did you mean `lod`? [unknown-key]\n");
}

TEST_F(CheckerTest, RefusesFoldersThatAreNotThere) {
  CheckOptions given = options();
  given.folders.libraries = {path("none")};
  EXPECT_THROW(Checker{given}, InputError);
  given = options();
  given.language = "none";
  EXPECT_THROW(Checker{given}, InputError);
}

TEST_F(CheckerTest, UnknownLibraryFileHasNoFindings) {
  EXPECT_EQ(textOf(Checker(options()).checkLibrary(path("none.fraglib"))), "");
}

TEST_F(CheckerTest, ProblemsAreSortedAmongFindings) {
  const Diagnostic early{Severity::error, "a", 1, 1, "early", "failure"};
  const Diagnostic late{Severity::error, "b", 1, 1, "late", "failure"};
  const CheckResult result = withProblems({{late}, {}}, std::vector{early});
  EXPECT_EQ(result.diagnostics, (std::vector{early, late}));
}

/// What the processor takes for a library of fragments that are all wrong.
double secondsFor(const CheckOptions& options, const std::string& file) {
  const std::clock_t start = std::clock();
  EXPECT_FALSE(Checker(options).checkLibrary(file).diagnostics.empty());
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

TEST_F(CheckerTest, TimeIsInProportionToFragments) {
  if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  CheckOptions fresh = options();
  fresh.cache = nullptr;
  write("a.fraglib", library(100, [](std::size_t) { return true; }));
  const double few = secondsFor(fresh, path("a.fraglib"));
  write("a.fraglib", library(800, [](std::size_t) { return true; }));
  const double many = secondsFor(fresh, path("a.fraglib"));
  EXPECT_LT(many / few, 8.0 * 3.0);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
