#include "sfg/fragment_library.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile_metasl.h"
#include "sfg/shader_includes.h"
#include "tests/support/messages.h"
#include "tolmsdk/files.h"
#include "tolmsdk/sha1.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::LogCapture;
using TolmSDK::test::messageOf;

const UString kLanguage(L"dx11");

/// A folder of library files that lasts as long as the test.
class LibraryFolder : public ::testing::Test {
protected:
  LibraryFolder() {
    const std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    path = std::filesystem::temp_directory_path() / ("sfg_library_" + name + std::to_string(::getpid()));
    std::filesystem::create_directories(path);
  }
  ~LibraryFolder() override { std::filesystem::remove_all(path); }

  void add(const std::string& name, const std::string& text) const { std::ofstream(path / name) << text; }
  std::wstring file(const std::string& name) const { return (path / name).wstring(); }
  bool load() { return library.loadFragments(path.wstring().c_str()); }

  std::filesystem::path path;
  FragmentLibrary library;
  LogCapture log;
};

std::string fragmentText(const std::string& function) {
  return R"({"language": ["dx11"], "implementation": ["void )" + function + R"json(()", "{", "}"]})json";
}

TEST_F(LibraryFolder, LoadsLibraryFilesOfAnyCaseAndNoOthers) {
  add("a.FRAGLIB", R"({"one": )" + fragmentText("f") + R"(, "two": )" + fragmentText("g") + "}");
  add("b.json", R"({"three": )" + fragmentText("h") + "}");
  add("c.fraglib2", R"({"four": )" + fragmentText("h") + "}");
  add("fraglib", R"({"five": )" + fragmentText("h") + "}");
  std::filesystem::create_directory(path / "folder.fraglib");
  EXPECT_TRUE(load());
  EXPECT_EQ(library.getResourceNames(), (Array<WString>{L"one", L"two"}));
  const IShaderFragment* two = library.acquireFragment(L"two");
  ASSERT_NE(two, nullptr);
  EXPECT_EQ(two->key(), L"two");
  EXPECT_EQ(two->instanceName(), L"");
  EXPECT_EQ(two->getProfile(0)->getFunctionName(), L"g");
  EXPECT_EQ(library.acquireFragment(L"three"), nullptr);
  EXPECT_EQ(library.acquireFragment(nullptr), nullptr);
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(LibraryFolder, LogsAFileThatIsNoJsonAndLoadsTheOthers) {
  add("a.fraglib", "{\n  \"broken\": [1,\n}");
  add("b.fraglib", R"({"one": )" + fragmentText("f") + "}");
  EXPECT_TRUE(load());
  EXPECT_NE(library.acquireFragment(L"one"), nullptr);
  ASSERT_EQ(log.lines.size(), 2u);
  EXPECT_EQ(log.lines[0], L"sfgError : Failed to load json file: " + file("a.fraglib") + L"!");
  EXPECT_EQ(log.lines[1].substr(0, file("a.fraglib").size() + 2), file("a.fraglib") + L": ");
  EXPECT_NE(log.lines[1].find(L'3'), std::wstring::npos);  // the line
}

TEST_F(LibraryFolder, LogsADocumentThatIsNoObject) {
  add("a.fraglib", "[1, 2]");
  EXPECT_TRUE(load());
  EXPECT_EQ(log.lines, (std::vector<std::wstring>{
                           L"sfgError : Failed to load json file: " + file("a.fraglib") + L"!",
                           file("a.fraglib") + L": a fragment library is an object of fragments"}));
}

TEST_F(LibraryFolder, LogsAFragmentThatFailsAndLoadsTheOthers) {
  add("a.fraglib", "{\n\"first\": " + fragmentText("f") +
                       ",\n\"second\": {\"profiles\": [{\"language\": [\"dx11\"]}]},\n\"third\": " +
                       fragmentText("h") + "}");
  EXPECT_TRUE(load());
  EXPECT_EQ(library.getResourceNames(), (Array<WString>{L"first", L"third"}));
  EXPECT_EQ(log.lines,
            (std::vector<std::wstring>{
                L"sfgError : Failed to load fragment " + file("a.fraglib") + L": 1!",
                L"Error: sfgError : Failed to load profile 0!",
                file("a.fraglib") +
                    L":3:11: fragment \"second\": profile 0 (line 3, column 25): sfgError : Failed to "
                    L"load profile 0!"}));
}

TEST_F(LibraryFolder, SaysWhichUniformOfWhichFragmentFailsAndWhy) {
  add("a.fraglib", "{\"f\": {\"language\": [\"dx11\"], \"implementation\": [\"void f() {}\"],\n"
                   "\"uniforms\": [{\"name\": \"u\", \"type\": \"flote\"}]}}");
  EXPECT_TRUE(load());
  ASSERT_EQ(log.lines.size(), 3u);
  EXPECT_EQ(log.lines[0], L"sfgError : Failed to load fragment " + file("a.fraglib") + L": 0!");
  EXPECT_EQ(log.lines[1], L"Error: sfgError : Failed to load uniform 0!");
  const std::wstring start = file("a.fraglib") + L":1:7: fragment \"f\": uniform 0 (line 2, column 14): ";
  EXPECT_EQ(log.lines[2].substr(0, start.size()), start);
}

TEST_F(LibraryFolder, CountsMembersAndPassesOverNulls) {
  add("a.fraglib", R"({"nothing": null, "bad": 3, "good": )" + fragmentText("f") + "}");
  EXPECT_TRUE(load());
  EXPECT_EQ(library.getResourceNames(), (Array<WString>{L"good"}));
  ASSERT_EQ(log.lines.size(), 3u);
  EXPECT_EQ(log.lines[0], L"sfgError : Failed to load fragment " + file("a.fraglib") + L": 1!");
}

TEST_F(LibraryFolder, ReplacesFragmentsOfTheSameName) {
  add("a.fraglib", R"({"one": )" + fragmentText("f") + "}");
  add("b.fraglib", R"({"one": )" + fragmentText("g") + "}");
  EXPECT_TRUE(load());
  EXPECT_EQ(library.acquireFragment(L"one")->getProfile(0)->getFunctionName(), L"g");
}

TEST_F(LibraryFolder, FindsNothingInAMissingFolder) {
  EXPECT_TRUE(library.loadFragments((path / "missing").wstring().c_str()));
  EXPECT_TRUE(library.loadFragments(nullptr));
  EXPECT_TRUE(library.getResourceNames().empty());
  EXPECT_TRUE(log.lines.empty());
}

// Fragments from code

class FragmentFromCode : public ::testing::Test {
protected:
  const AShaderFragment* add(std::vector<const wchar_t*> options = {}) {
    EXPECT_TRUE(library.addFragment(L"f", L"void f(float a, out float r)", L"r = a * sfg_isConnected(a);",
                                    options.data(), static_cast<int>(options.size())));
    return dynamic_cast<const AShaderFragment*>(library.acquireFragment(L"f"));
  }
  const IShaderFragmentProfile* profileWith(std::vector<const wchar_t*> options = {}) {
    return add(std::move(options))->getProfile(0);
  }

  FragmentLibrary library;
};

TEST_F(FragmentFromCode, HasOneMetaSLProfile) {
  const AShaderFragment* fragment = add();
  ASSERT_NE(fragment, nullptr);
  EXPECT_EQ(fragment->key(), L"f");
  EXPECT_TRUE(fragment->isConsolidatable());
  ASSERT_EQ(fragment->getNumProfiles(), 1u);
  const auto* profile = dynamic_cast<const AShaderFragmentProfileMetaSL*>(fragment->getProfile(0));
  ASSERT_NE(profile, nullptr);
  EXPECT_EQ(profile->getLOD(), 100.0f);
  EXPECT_EQ(profile->getProfilename(), L"default");
  EXPECT_EQ(profile->languages(), (Set<UString>{kLanguage}));
  EXPECT_EQ(profile->getFunctionName(), L"f");
  EXPECT_EQ(profile->getFunctionParameters()->getNumInputs(), 1u);
  EXPECT_EQ(profile->getFunctionParameters()->getNumOutputs(), 1u);
  EXPECT_EQ(profile->getFunctionBody(), L"r = a * sfg_isConnected(a);");
  EXPECT_EQ(profile->getBodyBuiltinFunctions().size(), 1u);
  for (const float lod : {-1.0f, 0.0f, 100.0f, 1e9f})
    EXPECT_EQ(fragment->findBestProfile(L"default", kLanguage, lod), profile);
}

TEST_F(FragmentFromCode, RequiresMetaSLStateAndTheViewProjection) {
  const IShaderFragmentProfile* profile = profileWith();
  EXPECT_EQ(profile->stateVariables(),
            (Set<UString>{StateVariable_matWorld, StateVariable_matWorldInverse, StateVariable_matView,
                          StateVariable_matViewInverse, StateVariable_matWorldViewProj,
                          StateVariable_orthographic, StateVariable_mslState_origin,
                          StateVariable_mslState_position, StateVariable_mslState_direction,
                          StateVariable_mslState_ray_length, StateVariable_matViewProj}));
  EXPECT_EQ(profile->includes(), (Set<WString>{L"sfg_msl_common.h"}));
  EXPECT_EQ(profile->predefines(), L"");
}

TEST_F(FragmentFromCode, TakesIncludes) {
  EXPECT_EQ(profileWith({L"include:b.h", L"include:", L"include:a.h"})->includes(),
            (Set<WString>{L"", L"a.h", L"b.h", L"sfg_msl_common.h"}));
}

TEST_F(FragmentFromCode, JoinsPredefinesWithoutSeparator) {
  EXPECT_EQ(profileWith({L"predefine:float h() { return 1", L"predefine:; }"})->predefines(),
            L"float h() { return 1; }");
}

TEST_F(FragmentFromCode, MakesGraphsNonConsolidatable) {
  const AShaderFragment* fragment = add({L"include:a.h", L"nonconsolidatable"});
  EXPECT_FALSE(fragment->isConsolidatable());
  EXPECT_TRUE(fragment->getProfile(0)->includes().contains(L"a.h"));
  const auto graph = makeRef<AShaderFragmentGraph>();
  const RefPtr<IShaderFragment> clone(fragment->clone(L"n0"));
  graph->addFragment(clone.get());
  EXPECT_FALSE(graph->isConsolidatable());
}

TEST_F(FragmentFromCode, IgnoresOtherOptions) {
  for (const wchar_t* option :
       {L"Nonconsolidatable", L"nonconsolidatable ", L" nonconsolidatable", L"Include:a.h", L"PREDEFINE:x",
        L" include:a.h", L"", L"include", static_cast<const wchar_t*>(nullptr)}) {
    const AShaderFragment* fragment = add({option});
    EXPECT_TRUE(fragment->isConsolidatable());
    EXPECT_EQ(fragment->getProfile(0)->includes(), (Set<WString>{L"sfg_msl_common.h"}));
    EXPECT_EQ(fragment->getProfile(0)->predefines(), L"");
  }
}

TEST_F(FragmentFromCode, ReadsAsManyOptionsAsToldAndNoneForANegativeNumber) {
  const wchar_t* options[] = {L"include:a.h", L"include:b.h"};
  library.addFragment(L"one", L"void f()", L"", options, 1);
  EXPECT_EQ(library.acquireFragment(L"one")->getProfile(0)->includes(),
            (Set<WString>{L"a.h", L"sfg_msl_common.h"}));
  library.addFragment(L"none", L"void f()", L"", options, -1);
  EXPECT_EQ(library.acquireFragment(L"none")->getProfile(0)->includes(), (Set<WString>{L"sfg_msl_common.h"}));
  library.addFragment(L"null", L"void f()", L"", nullptr, 5);
  EXPECT_EQ(library.acquireFragment(L"null")->getProfile(0)->includes(), (Set<WString>{L"sfg_msl_common.h"}));
}

TEST_F(FragmentFromCode, LetsExceptionsOfThePrototypeThrough) {
  EXPECT_EQ(messageOf([this] { library.addFragment(L"g", L"int g()", L"", nullptr, 0); }),
            L"sfgError : Function result type is not void!");
  EXPECT_EQ(messageOf([this] { library.addFragment(L"g", nullptr, nullptr, nullptr, 0); }),
            L"sfgError : Function result type is not void!");
  EXPECT_EQ(library.acquireFragment(L"g"), nullptr);
}

TEST_F(FragmentFromCode, AnswersNothingForResourcesOfAnotherKind) {
  struct Other : ARefObject {};
  library.registerResource(L"other", new Other());
  EXPECT_EQ(library.acquireFragment(L"other"), nullptr);
}

TEST_F(LibraryFolder, TellsWhatItMeetsAndKeepsToTheIncludeFilesGiven) {
  add("a.fraglib", R"json({"one": {"language": ["dx11"], "implementation": ["void f()", "{", "}"],
 "includes": ["own.h"]},
 "bad": 3})json");
  add("b.fraglib", "[");
  add("own.h", "float own;\n");
  ShaderIncludes includes;
  includes.addIncludePath(path.wstring().c_str());
  std::vector<std::wstring> met;
  FragmentLoading loading;
  loading.includes = &includes;
  loading.onFile = [&](const WString& name) { met.push_back(L"file " + std::wstring(GetFilename(name))); };
  loading.onFragment = [&](const WString& name, const WString& fragment, const IObjectDataNode& object) {
    met.push_back(std::wstring(GetFilename(name)) + L" " + std::to_wstring(object.position().line) + L" " +
                  std::wstring(fragment));
  };
  loading.onProblem = [&](std::wstring_view line) {
    met.emplace_back(line.starts_with(path.wstring()) ? std::wstring_view(L"why") : line.substr(0, 33));
  };
  EXPECT_TRUE(library.loadFragments(path.wstring().c_str(), loading));
  EXPECT_EQ(met, (std::vector<std::wstring>{L"file a.fraglib", L"a.fraglib 1 one", L"a.fraglib 3 bad",
                                            L"sfgError : Failed to load fragmen",
                                            L"Error: sfgError : \"fragment\" must", L"why", L"file b.fraglib",
                                            L"sfgError : Failed to load json fi", L"why"}));
  EXPECT_TRUE(log.lines.empty());
  EXPECT_EQ(library.acquireFragment(L"one")->getHashString().substr(40), SHA1_GetStringHash(L"float own;\n"));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
