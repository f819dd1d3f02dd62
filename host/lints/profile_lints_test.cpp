// Profiles that are never chosen, or for nothing.

#include "host/lints/profile_lints.h"

#include "host/lints/lint_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// A profile with these members whose function has this body.
std::string profile(const std::string& members, const std::string& body) {
  return "  { " + members + ", \"implementation\": [\"void f(float x, out float r)\", \"{\", \"" + body +
         "\", \"}\"] }";
}

std::string fragmentOf(const std::vector<std::string>& profiles) {
  std::string text = "\"f\": { \"profiles\": [";
  for (std::size_t i = 0; i < profiles.size(); ++i) text += (i == 0 ? "\n" : ",\n") + profiles[i];
  return text + " ] }";
}

const std::string kDx = "\"language\": [\"dx11\"]";

using UnreachableProfile = LintFixture;

TEST_F(UnreachableProfile, IsTheSecondOfOneLanguageNameAndLevel) {
  EXPECT_EQ(lintsOf(fragmentOf({profile(kDx, "r = x;"), profile(kDx, "r = x * 2.0;")})),
            "lib.fraglib:3:3: this profile of fragment `f` can never be chosen: the one at lib.fraglib:2:3 "
            "has the same language, name and level of detail [unreachable-profile]\n");
}

TEST_F(UnreachableProfile, IsOneWhoseDefaultsAreSpelledOut) {
  EXPECT_EQ(lintsOf(fragmentOf({profile(kDx, "r = x;"),
                                profile("\"name\": \"default\", \"lod\": 100.0, " + kDx, "r = x * 2.0;")})),
            "lib.fraglib:3:3: this profile of fragment `f` can never be chosen: the one at lib.fraglib:2:3 "
            "has the same language, name and level of detail [unreachable-profile]\n");
}

TEST_F(UnreachableProfile, IsOneOfNoLanguage) {
  EXPECT_EQ(
      lintsOf(fragmentOf({profile(kDx, "r = x;"), profile("\"lod\": 0, \"language\": []", "r = 1.0;")})),
      "lib.fraglib:3:3: this profile of fragment `f` can never be chosen: it names no language "
      "[unreachable-profile]\n");
}

TEST_F(UnreachableProfile, IsOneAllOfWhoseLanguagesOthersHave) {
  EXPECT_EQ(lintsOf(fragmentOf({profile("\"language\": [\"dx11\", \"metal\"]", "r = x;"),
                                profile("\"language\": [\"metal\", \"dx11\"]", "r = x * 2.0;")})),
            "lib.fraglib:3:3: this profile of fragment `f` can never be chosen: the one at lib.fraglib:2:3 "
            "has the same language, name and level of detail [unreachable-profile]\n");
}

TEST_F(UnreachableProfile, IsIndeedNotChosen) {
  writeLibrary("{ " + fragmentOf({profile(kDx, "r = x;"), profile(kDx, "r = x * 2.0;")}) + " }");
  const auto libraries = load();
  const IShaderFragment* const fragment = libraries->language().findFragment(L"f");
  ASSERT_NE(fragment, nullptr);
  for (const float lod : {0.0f, 100.0f, 1000.0f})
    EXPECT_EQ(fragment->findBestProfile(L"default", UString(L"dx11"), lod), fragment->getProfile(0));
}

TEST_F(UnreachableProfile, IsNoneOfAnotherLevelNameOrLanguage) {
  EXPECT_EQ(lintsOf(fragmentOf({profile(kDx, "r = x;"), profile("\"lod\": 50, " + kDx, "r = x * 2.0;"),
                                profile("\"name\": \"sfg_Light\", " + kDx, "r = x * 3.0;"),
                                profile("\"language\": [\"dx11\", \"metal\"]", "r = x * 4.0;")})),
            "");
}

using RepeatedLevel = LintFixture;

TEST_F(RepeatedLevel, IsToldAtItsLevel) {
  EXPECT_EQ(lintsOf(fragmentOf(
                {profile(kDx, "r = x * 2.0;"), profile("\"lod\": 0.5, " + kDx, "r = x  *  2.0; // cheap")})),
            "lib.fraglib:3:12: level of detail 0.5 of fragment `f` has the same code as level 100, at "
            "lib.fraglib:2:3 [repeated-level]\n");
}

TEST_F(RepeatedLevel, IsToldOfEachFurtherOne) {
  EXPECT_EQ(
      lintsOf(fragmentOf({profile("\"lod\": 10, " + kDx, "r = x;"), profile("\"lod\": 20, " + kDx, "r = x;"),
                          profile("\"lod\": 30, " + kDx, "r = x;")})),
      "lib.fraglib:3:12: level of detail 20 of fragment `f` has the same code as level 10, at "
      "lib.fraglib:2:3 [repeated-level]\n"
      "lib.fraglib:4:12: level of detail 30 of fragment `f` has the same code as level 10, at "
      "lib.fraglib:2:3 [repeated-level]\n");
}

TEST_F(RepeatedLevel, IsToldOfExpressions) {
  EXPECT_NE(lintsOf(R"json("f": { "profiles": [
    { "lod": 1, "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} * 2.0"] },
    { "lod": 2, "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} * 2.0"] } ] })json"),
            "");
}

TEST_F(RepeatedLevel, IsToldWithEqualPredefinesAndIncludesInAnyOrder) {
  write("a.h", "float a(float x);\n");
  write("b.h", "float b(float x);\n");
  EXPECT_NE(
      lintsOf(fragmentOf({profile("\"includes\": [\"a.h\", \"b.h\"], " + kDx, "r = a(b(x));"),
                          profile("\"lod\": 5, \"includes\": [\"b.h\", \"a.h\"], " + kDx, "r = a(b(x));")})),
      "");
}

TEST_F(RepeatedLevel, IsNoneOfOtherCodeOrPredefines) {
  EXPECT_EQ(
      lintsOf(fragmentOf(
          {profile(kDx, "r = h(x);"), profile("\"lod\": 5, " + kDx, "r = x * 2.0;"),
           profile("\"lod\": 6, \"predefine\": [\"float h(float x) { return x; }\"], " + kDx, "r = h(x);")})),
      "");
}

TEST_F(RepeatedLevel, IsNoneOfAnotherName) {
  EXPECT_EQ(lintsOf(fragmentOf(
                {profile(kDx, "r = x;"), profile("\"name\": \"sfg_Light\", \"lod\": 5, " + kDx, "r = x;")})),
            "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
