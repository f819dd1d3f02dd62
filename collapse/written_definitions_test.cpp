#include "collapse/written_definitions.h"

#include <gtest/gtest.h>

#include "sfg/shader_fragment_profile_function.h"

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(WrittenDefinitions, AreFoundByProfileAndKey) {
  const auto one = makeRef<AShaderFragmentProfileFunction>();
  const auto other = makeRef<AShaderFragmentProfileFunction>();
  WrittenDefinitions written;
  EXPECT_EQ(written.find(one.get(), L"f"), nullptr);
  written.add(one.get(), L"f", L"f1");
  written.add(one.get(), L"g", L"");
  ASSERT_NE(written.find(one.get(), L"f"), nullptr);
  EXPECT_EQ(written.find(one.get(), L"f")->rename, L"f1");
  ASSERT_NE(written.find(one.get(), L"g"), nullptr);
  EXPECT_TRUE(written.find(one.get(), L"g")->rename.empty());
  EXPECT_EQ(written.find(other.get(), L"f"), nullptr);
}

TEST(WrittenDefinitions, KeepTheFirstOfEqualOnes) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  WrittenDefinitions written;
  written.add(profile.get(), L"f", L"first");
  written.add(profile.get(), L"f", L"second");
  EXPECT_EQ(written.find(profile.get(), L"f")->rename, L"first");
}

TEST(WrittenDefinitions, TextForASearchIsEmpty) {
  WrittenDefinitions written;
  written.soughtText() = L"before";
  EXPECT_TRUE(written.soughtText().empty());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
