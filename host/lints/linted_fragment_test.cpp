#include "host/lints/linted_fragment.h"

#include "host/lints/lint_fixture.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class LintedFragmentTest : public LintFixture {
protected:
  const LintedFile& read(const std::string& fragments) {
    writeLibrary("{ " + fragments + " }");
    libraries_ = load();
    return file_.emplace(*libraries_, path("lib.fraglib"));
  }

  std::shared_ptr<const LoadedLibraries> libraries_;
  std::optional<LintedFile> file_;
};

std::string bodyOf(const LintedProfile& profile) {
  std::string text;
  for (std::size_t i = profile.bodyBegin; i < profile.bodyEnd; ++i)
    text += toUtf8(profile.implementation.plain.word(i)) + " ";
  return text;
}

TEST_F(LintedFragmentTest, HasParametersAndABody) {
  const LintedFile& file = read(fragment("f", "float x, out float r", "{ r = x; } // }"));
  ASSERT_EQ(file.fragments.size(), 1u);
  ASSERT_EQ(file.fragments[0].profiles.size(), 1u);
  const LintedProfile& profile = file.fragments[0].profiles[0];
  EXPECT_EQ(profile.parameters.size(), 2u);
  EXPECT_EQ(bodyOf(profile), "{ r = x ; } ");
  EXPECT_EQ(profile.name, "default");
  EXPECT_EQ(profile.lod, 100.0);
  EXPECT_EQ(profile.languages, (std::vector<std::string>{"dx11"}));
  const TextPosition place = profile.implementation.placeOf(profile.implementation.plain.tokens[0]);
  EXPECT_EQ(place.line, 1u);
  EXPECT_EQ(place.column, 53u);
}

TEST_F(LintedFragmentTest, HasTheProfilesOfTheFile) {
  const LintedFile& file = read(R"json("f": { "profiles": [
    { "name": "a", "lod": 5, "mode": "METASL", "language": ["dx11"], "implementation": ["void f(out float r)", "{", "}"] },
    { "language": [], "mode": "inline", "implementation": ["{{x}}"] } ] })json");
  ASSERT_EQ(file.fragments.size(), 1u);
  const std::vector<LintedProfile>& profiles = file.fragments[0].profiles;
  ASSERT_EQ(profiles.size(), 2u);
  EXPECT_EQ(profiles[0].name, "a");
  EXPECT_EQ(profiles[0].lod, 5.0);
  EXPECT_EQ(profiles[0].mode, EShaderFragmentProfileMode::MetaSL);
  EXPECT_EQ(bodyOf(profiles[0]), "");
  EXPECT_TRUE(profiles[1].isInline());
  EXPECT_TRUE(profiles[1].parameters.empty());
}

TEST_F(LintedFragmentTest, AreNoneThatDoNotLoadOrCount) {
  write("other.fraglib", "{ " + fragment("f", "out float r", "r = 1.0;") + " }");
  const LintedFile& file = read("\"g\": { \"language\": [\"dx11\"] }, \"h\": 3, \"// note\": 1");
  EXPECT_TRUE(file.fragments.empty());
  const LintedFile gone(*libraries_, path("gone.fraglib"));
  EXPECT_TRUE(gone.fragments.empty());
}

TEST_F(LintedFragmentTest, HaveNoBodyWithoutBraces) {
  const LintedFile& file =
      read("\"f\": { \"language\": [\"dx11\"], \"implementation\": [\"void f(out float r)\"] }");
  ASSERT_EQ(file.fragments.size(), 1u);
  EXPECT_EQ(bodyOf(file.fragments[0].profiles[0]), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
