#include "profiles/light_blocks.h"

#include <gtest/gtest.h>

#include <chrono>

#include "sfg/size_limit.h"
#include "tests/support/messages.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::messageOf;

const std::wstring kBegin = L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN";
const std::wstring kEnd = L"TOLM_VESSOR_LIGHT_AND_SHADOW_END";
constexpr const wchar_t* kNotClosed = L"sfgError : light and shadow block is not closed!";
constexpr const wchar_t* kTooLarge = L"sfgError : the generated code is too large!";

std::wstring expanded(const std::wstring& text, std::size_t numLights) {
  CallerText result;
  result.code = text;
  expandLightBlocks(result, numLights);
  return std::wstring(std::wstring_view(result.code));
}

TEST(LightBlocks, AreRepeatedPerLight) {
  EXPECT_EQ(expanded(kBegin + L" x = TOLM_SCENE_LIGHTING(P, N, l); " + kEnd, 3),
            L"\n    { x = TolmSceneLighting0(P, N, l); }\n"
            L"\n    { x = TolmSceneLighting1(P, N, l); }\n"
            L"\n    { x = TolmSceneLighting2(P, N, l); }\n");
}

TEST(LightBlocks, DisappearWithoutLights) {
  EXPECT_EQ(expanded(L"a;" + kBegin + L"TOLM_SCENE_LIGHTING()" + kEnd + L"b;", 0), L"a;b;");
}

TEST(LightBlocks, KeepTheTextAround) {
  EXPECT_EQ(expanded(L"a TOLM_SCENE_LIGHTING " + kBegin + L"x" + kEnd + L" b " + kBegin +
                         L"TOLM_SCENE_LIGHTINGTOLM_SCENE_LIGHTING" + kEnd + kEnd + L" c",
                     2),
            L"a TOLM_SCENE_LIGHTING \n    {x}\n\n    {x}\n b "
            L"\n    {TolmSceneLighting0TolmSceneLighting0}\n\n    {TolmSceneLighting1TolmSceneLighting1}\n" +
                kEnd + L" c");
  EXPECT_EQ(expanded(L"nothing " + kEnd, 2), L"nothing " + kEnd);
  EXPECT_EQ(expanded(L"", 2), L"");
}

TEST(LightBlocks, NumberLightsInDecimal) {
  const std::wstring text = expanded(kBegin + L"TOLM_SCENE_LIGHTING" + kEnd, 1001);
  EXPECT_EQ(text.size(), 1001 * (6 + 17 + 2) + 10 + 90 * 2 + 900 * 3 + 4u);
  EXPECT_NE(text.find(L"{TolmSceneLighting1000}"), std::wstring::npos);
}

TEST(LightBlocks, AreRefusedUnclosedNestedAndReversed) {
  for (const std::wstring& text :
       {kBegin, kBegin + L"x", kEnd + kBegin, kEnd + L"a" + kBegin + L"b" + kEnd,
        kBegin + L"a" + kEnd + kBegin, kBegin + L"a" + kBegin + L"b" + kEnd + L"c" + kEnd,
        kBegin + L"a" + kEnd + kEnd + kBegin + L"b" + kEnd, kBegin + kBegin + kEnd})
    for (const std::size_t numLights : {0u, 1u, 3u})
      EXPECT_EQ(messageOf([&] { expanded(text, numLights); }), kNotClosed) << numLights;
}

TEST(LightBlocks, AreMeasuredBeforeTheyAreBuilt) {
  const auto start = std::chrono::steady_clock::now();
  const std::wstring large(100, L'x');
  EXPECT_EQ(messageOf([&] { expanded(kBegin + large + kEnd, 1000000); }), kTooLarge);
  EXPECT_EQ(messageOf([&] { expanded(kBegin + kEnd, std::size_t{1} << 60); }), kTooLarge);
  std::wstring many;
  for (int i = 0; i < 100000; ++i) many += kBegin + L"TOLM_SCENE_LIGHTING" + kEnd;
  EXPECT_EQ(messageOf([&] { expanded(many, 1000); }), kTooLarge);
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 1.0);
  // At the limit itself a text is still built: one light, a block of the limit's length, one character too
  // many behind it at first.
  constexpr std::size_t kFrame = 8;
  CallerText fits;
  fits.code.append(kBegin).append(kMaximumTextLength - kFrame, L'x').append(kEnd).append(L"y");
  EXPECT_EQ(messageOf([&] { expandLightBlocks(fits, 1); }), kTooLarge);
  fits.code.pop_back();
  expandLightBlocks(fits, 1);
  EXPECT_EQ(fits.code.size(), kMaximumTextLength);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
