#include "host/shader/identifiers.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Names = Set<std::wstring_view>;

TEST(IdentifiersTest, FindsEachOnceAndNoNumbers) {
  EXPECT_EQ(identifiersOf(L"float2 a_1 = b.xy * 2.0f + a_1;"), (Names{L"float2", L"a_1", L"b", L"xy"}));
  EXPECT_EQ(identifiersOf(L"1e5 0x1F 3abc"), Names());
  EXPECT_EQ(identifiersOf(L""), Names());
}

TEST(IdentifiersTest, SkipsCommentsClosedOrNot) {
  EXPECT_EQ(identifiersOf(L"a // b\nc /* d\n e */ f"), (Names{L"a", L"c", L"f"}));
  EXPECT_EQ(identifiersOf(L"a // b"), (Names{L"a"}));
  EXPECT_EQ(identifiersOf(L"a /* b"), (Names{L"a"}));
  EXPECT_EQ(identifiersOf(L"a / b"), (Names{L"a", L"b"}));
}

TEST(IdentifiersTest, StopsAtTheEndOfAView) {
  const std::wstring_view text = L"name/name";
  EXPECT_EQ(identifiersOf(text.substr(0, 2)), (Names{L"na"}));
  EXPECT_EQ(identifiersOf(text.substr(0, 5)), (Names{L"name"}));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
