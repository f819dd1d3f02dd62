#include "collapse/written_definitions.h"

#include <gtest/gtest.h>

#include "sfg/shader_fragment_profile_function.h"
#include "tests/support/test_host.h"

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(WrittenDefinitions, AreFoundByProfileLanguageAndKey) {
  const auto one = makeRef<AShaderFragmentProfileFunction>();
  const auto other = makeRef<AShaderFragmentProfileFunction>();
  const auto language = makeRef<test::TestLanguage>();
  const auto otherLanguage = makeRef<test::TestLanguage>();
  WrittenDefinitions written;
  EXPECT_FALSE(written.get(one.get(), language.get(), L"f").isWritten);
  written.last().isWritten = true;
  written.last().rename = L"f1";
  EXPECT_FALSE(written.get(one.get(), language.get(), L"g").isWritten);
  written.last().isWritten = true;
  EXPECT_FALSE(written.get(other.get(), language.get(), L"f").isWritten);
  EXPECT_FALSE(written.get(one.get(), otherLanguage.get(), L"f").isWritten);

  EXPECT_TRUE(written.get(one.get(), language.get(), L"f").isWritten);
  EXPECT_EQ(written.last().rename, L"f1");
  EXPECT_TRUE(written.get(one.get(), language.get(), L"g").isWritten);
  EXPECT_EQ(written.last().rename, L"");
  EXPECT_FALSE(written.get(other.get(), language.get(), L"f").isWritten);
  EXPECT_FALSE(written.get(one.get(), otherLanguage.get(), L"f").isWritten);
}

TEST(WrittenDefinitions, AreWrittenWhenThatIsTold) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  WrittenDefinitions written;
  written.get(profile.get(), nullptr, L"f");
  EXPECT_FALSE(written.get(profile.get(), nullptr, L"f").isWritten);
}

TEST(WrittenDefinitions, TextForASearchIsEmpty) {
  WrittenDefinitions written;
  written.soughtText() = L"before";
  EXPECT_TRUE(written.soughtText().empty());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
