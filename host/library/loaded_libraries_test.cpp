#include "host/library/loaded_libraries.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "sfg/host/errors.h"
#include "tests/support/messages.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class LoadedLibrariesTest : public testing::Test {
protected:
  LoadedLibrariesTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_libraries_XXXXXX").string();
    root_ = mkdtemp(pattern.data());
  }
  ~LoadedLibrariesTest() override { std::filesystem::remove_all(root_); }

  /// Answers the file's folder.
  std::string write(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories((root_ / name).parent_path());
    std::ofstream(root_ / name) << text;
    return (root_ / name).parent_path().string();
  }
  std::string path(const std::string& name) const { return (root_ / name).string(); }

  std::filesystem::path root_;
};

std::string fragment(const std::string& function, const std::string& more = "") {
  return R"json({ "language": ["dx11"], "implementation": ["void )json" + function +
         R"json((out float x)", "{", "}"])json" + more + " }";
}

std::string refusal(const std::vector<std::string>& libraries, const std::vector<std::string>& includes,
                    const std::string& language) {
  try {
    const LoadedLibraries loaded(libraries, includes, language);
  } catch (const InputError& error) {
    return error.what();
  }
  return "(nothing thrown)";
}

TEST_F(LoadedLibrariesTest, ReadsAnIncludeFolderOnceHoweverItIsSpelled) {
  const std::string plain = write("inc/once.h", "float once;\n");
  const std::string detour = path("inc/../inc/");
  const LoadedLibraries loaded({}, {plain, detour}, "dx11");
  EXPECT_EQ(loaded.includes().getIncludeContent(L"once.h"), L"float once;\n");
}

TEST_F(LoadedLibrariesTest, SeesNothingOfOthersAndNothingOfTheProcess) {
  const std::string ours = write("a/shared.h", "float a;\n");
  const std::string theirs = write("b/shared.h", "float b;\n");
  write("b/more.h", "float more;\n");
  const LoadedLibraries first({}, {ours}, "dx11");
  const LoadedLibraries second({}, {theirs}, "dx11");
  EXPECT_EQ(first.includes().getIncludeContent(L"shared.h"), L"float a;\n");
  EXPECT_EQ(first.includes().getIncludeContent(L"more.h"), L"");
  EXPECT_EQ(second.includes().getIncludeContent(L"shared.h"), L"float b;\n");
  EXPECT_EQ(ShaderIncludes::Singleton().getIncludeContent(L"shared.h"), L"");
}

TEST_F(LoadedLibrariesTest, ForgetsHashesOfIncludeFilesThatHaveChanged) {
  const std::string folder =
      write("lib/a.fraglib", "{ \"f\": " + fragment("f", R"(, "includes": ["x.h"])") + " }");
  write("lib/x.h", "float x;\n");
  const auto hash = [&] {
    return LoadedLibraries({folder}, {folder}, "dx11").library().acquireFragment(L"f")->getHashString();
  };
  const WString before = hash();
  EXPECT_EQ(hash(), before);
  write("lib/x.h", "float y;\n");
  EXPECT_NE(hash(), before);
}

TEST_F(LoadedLibrariesTest, KeepsPlacesAndDescriptionsOfTheOneParse) {
  const std::string first =
      write("one/a.fraglib",
            "{ \"f\": " + fragment("f") + ",\n  \"g\": " + fragment("g", R"(, "description": "old")") + " }");
  const std::string second =
      write("two/b.fraglib", "{\n\n \"g\": " + fragment("g", R"(, "description": "new")") + " }");
  const LoadedLibraries loaded({first, second}, {}, "dx11");
  std::filesystem::remove_all(root_ / "one");
  ASSERT_EQ(loaded.files().entries().size(), 2u);
  EXPECT_EQ(loaded.files().find(L"f")->place(), path("one/a.fraglib") + ":1:8");
  EXPECT_EQ(loaded.files().find(L"g")->place(), path("two/b.fraglib") + ":3:7");
  EXPECT_EQ(loaded.files().find(L"g")->description, L"new");
  EXPECT_EQ(loaded.files().find(L"h"), nullptr);
  EXPECT_EQ(loaded.files().files(), (std::vector<std::string>{path("one/a.fraglib"), path("two/b.fraglib")}));
}

TEST_F(LoadedLibrariesTest, TellsProblemsAndWritesNoLog) {
  const std::string folder = write("lib/a.fraglib", "[");
  const TolmSDK::test::LogCapture log;
  const LoadedLibraries loaded({folder}, {}, "dx11");
  EXPECT_TRUE(log.lines.empty());
  const std::string file = path("lib/a.fraglib");
  EXPECT_EQ(loaded.problems(), (std::vector<Diagnostic>{{Severity::error, file, 1, 2,
                                                         "expected a value or `]`, found the end of the text",
                                                         "malformed-json"}}));
}

TEST_F(LoadedLibrariesTest, NamesAFolderThatIsNear) {
  write("library/a.fraglib", "{}");
  EXPECT_EQ(refusal({path("libary")}, {}, "dx11"),
            "the folder `" + path("libary") + "` does not exist; did you mean `" + path("library") + "`?");
  EXPECT_EQ(refusal({path("libary/")}, {}, "dx11"),
            "the folder `" + path("libary/") + "` does not exist; did you mean `" + path("library") + "`?");
}

TEST_F(LoadedLibrariesTest, FindsAnIncludeFileInTheFirstFolderThatHasIt) {
  const std::string first = write("a/x.h", "");
  const std::string second = write("b/x.h", "");
  write("b/y.h", "");
  const LoadedLibraries loaded({}, {first, second}, "dx11");
  EXPECT_EQ(loaded.includeFile(L"x.h"), path("a/x.h"));
  EXPECT_EQ(loaded.includeFile(L"y.h"), path("b/y.h"));
  EXPECT_EQ(loaded.includeFile(L"z.h"), "");
}

TEST_F(LoadedLibrariesTest, RefusesFoldersThatAreNoneAndUnknownLanguages) {
  const std::string file = write("file", "") + "/file";
  EXPECT_EQ(refusal({path("gone")}, {}, "dx11"), "the folder `" + path("gone") + "` does not exist");
  EXPECT_EQ(refusal({}, {file}, "dx11"), "`" + file + "` is not a folder");
  EXPECT_EQ(refusal({}, {}, "dx12"), "unknown language `dx12`; did you mean `dx11`?");
  EXPECT_EQ(refusal({}, {}, "glsl"), "unknown language `glsl`; known is `dx11`");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
