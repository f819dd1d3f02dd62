#include "profiles/light_blocks.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "sfg/size_limit.h"
#include "tests/support/cost.h"
#include "tests/support/messages.h"
#include "tolmsdk/exception.h"

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

TEST(LightBlocks, AreRefusedUnclosedAndReversed) {
  for (const std::wstring& text :
       {kBegin, kBegin + L"x", kEnd + kBegin, kEnd + L"a" + kBegin + L"b" + kEnd,
        kBegin + L"a" + kEnd + kBegin, kBegin + L"a" + kEnd + kEnd + kBegin + L"b" + kEnd})
    for (const std::size_t numLights : {0u, 1u, 3u})
      EXPECT_EQ(messageOf([&] { expanded(text, numLights); }), kNotClosed) << numLights;
}

/// The steps as they are stated: replace the first block, look through the whole text again.
std::wstring expandedStepByStep(std::wstring text, std::size_t numLights) {
  for (std::size_t begin = text.find(kBegin); begin != text.npos; begin = text.find(kBegin)) {
    const std::size_t end = text.find(kEnd);
    if (end == text.npos || end < begin || text.size() > 100000) throw Exception(kNotClosed);
    const std::wstring inner = text.substr(begin + kBegin.size(), end - begin - kBegin.size());
    std::wstring copies;
    for (std::size_t i = 0; i < numLights; ++i) {
      std::wstring copy = inner;
      const std::wstring call = L"TOLM_SCENE_LIGHTING";
      for (std::size_t at = copy.find(call); at != copy.npos; at = copy.find(call))
        copy.replace(at, call.size(), L"TolmSceneLighting" + std::to_wstring(i));
      copies += L"\n    {" + copy + L"}\n";
    }
    text = text.substr(0, begin) + copies + text.substr(end + kEnd.size());
  }
  return text;
}

TEST(LightBlocks, MayHoldABeginMarkerWithOneLight) {
  const std::wstring call = L"TOLM_SCENE_LIGHTING()";
  EXPECT_EQ(expanded(call + kBegin + L"a" + kBegin + call + kEnd + call + kEnd + call, 1),
            call + L"\n    {a\n    {TolmSceneLighting0()}\nTolmSceneLighting0()}\n" + call);
  const std::wstring nested = kBegin + L"a" + kBegin + L"b" + kEnd + L"c" + kEnd + L"d";
  EXPECT_EQ(expanded(nested, 1), L"\n    {a\n    {b}\nc}\nd");
  EXPECT_EQ(expanded(nested, 0), L"c" + kEnd + L"d");
  for (const std::size_t numLights : {2u, 3u})
    EXPECT_EQ(messageOf([&] { expanded(nested, numLights); }), kNotClosed) << numLights;
  EXPECT_EQ(expanded(kBegin + kBegin + kEnd, 0), L"");
  EXPECT_EQ(messageOf([&] { expanded(kBegin + kBegin + kEnd, 1); }), kNotClosed);
}

TEST(LightBlocks, AreLookedForInWhatTheirRemovalJoins) {
  const std::wstring block = kBegin + L"x" + kEnd;
  const auto split = [&](const std::wstring& marker) {
    return marker.substr(0, 7) + block + marker.substr(7, 20) + block + marker.substr(27);
  };
  EXPECT_EQ(expanded(L"a" + split(kBegin) + L"b" + kEnd + L"c", 0), L"ac");
  EXPECT_EQ(expanded(L"a" + split(kEnd) + L"c", 0), L"a" + kEnd + L"c");
  EXPECT_EQ(messageOf([&] { expanded(split(kEnd) + block, 0); }), kNotClosed);
  EXPECT_EQ(messageOf([&] { expanded(split(kBegin), 0); }), kNotClosed);
  // Text in front of the place to begin at joins nothing.
  CallerText text;
  text.code = kBegin.substr(0, 7) + block + kBegin.substr(7);
  expandLightBlocks(text, 0, 7);
  EXPECT_EQ(text.code, kBegin.c_str());
}

TEST(LightBlocks, FollowTheStepsForAnyOrderOfMarkers) {
  const std::wstring pieces[] = {
      kBegin, kEnd, L"TOLM_SCENE_LIGHTING", kBegin.substr(0, 10), kBegin.substr(10), kEnd.substr(10)};
  // Texts of up to five pieces.
  constexpr std::size_t kPieces = std::size(pieces);
  for (std::size_t number = 0; number < kPieces * kPieces * kPieces * kPieces * kPieces; ++number) {
    std::wstring text;
    for (std::size_t left = number; left != 0; left /= kPieces) text += pieces[left % kPieces];
    for (std::size_t numLights = 0; numLights < 3; ++numLights) {
      const auto tell = [&](auto&& expand) {
        std::wstring result;
        const std::wstring message(messageOf([&] { result = expand(text, numLights); }));
        return message + L"|" + result;
      };
      ASSERT_EQ(tell(expanded), tell(expandedStepByStep)) << number << " with lights: " << numLights;
    }
  }
}

TEST(LightBlocks, TakeTimeInProportionToTheText) {
  const auto growth = [](std::size_t numLights, bool isNested) {
    return TolmSDK::test::timeGrowth(4000, [&](std::size_t count) {
      std::wstring text;
      for (std::size_t i = 0; i < count; ++i) text += kBegin + L"x" + (isNested ? L"" : kEnd);
      for (std::size_t i = 0; isNested && i < count; ++i) text += kEnd;
      return TolmSDK::test::processorTime([&] { messageOf([&] { expanded(text, numLights); }); });
    });
  };
  for (const std::size_t numLights : {0u, 1u, 2u})
    for (const bool isNested : {false, true})
      EXPECT_LT(growth(numLights, isNested), TolmSDK::test::kLinearGrowth) << numLights;
}

TEST(LightBlocks, AreMeasuredBeforeTheyAreBuilt) {
  std::wstring many;
  for (int i = 0; i < 100000; ++i) many += kBegin + L"TOLM_SCENE_LIGHTING" + kEnd;
  const std::clock_t refusals = TolmSDK::test::processorTime([&] {
    const std::wstring large(100, L'x');
    EXPECT_EQ(messageOf([&] { expanded(kBegin + large + kEnd, 1000000); }), kTooLarge);
    EXPECT_EQ(messageOf([&] { expanded(kBegin + kEnd, std::size_t{1} << 60); }), kTooLarge);
    EXPECT_EQ(messageOf([&] { expanded(many, 1000); }), kTooLarge);
  });
  // At the limit itself a text is still built: one light, a block of the limit's length, one character too
  // many behind it at first.
  constexpr std::size_t kFrame = 8;
  CallerText fits;
  fits.code.append(kBegin).append(kMaximumTextLength - kFrame, L'x').append(kEnd).append(L"y");
  EXPECT_EQ(messageOf([&] { expandLightBlocks(fits, 1); }), kTooLarge);
  fits.code.pop_back();
  EXPECT_LT(refusals, TolmSDK::test::processorTime([&] { expandLightBlocks(fits, 1); }));
  EXPECT_EQ(fits.code.size(), kMaximumTextLength);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
