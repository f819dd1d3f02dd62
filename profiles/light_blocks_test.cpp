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

const std::wstring kBlockBegin = L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN";
const std::wstring kBlockEnd = L"TOLM_VESSOR_LIGHT_AND_SHADOW_END";
constexpr const wchar_t* kNotClosed = L"sfgError : light and shadow block is not closed!";
constexpr const wchar_t* kTooLarge = L"sfgError : the generated code is too large!";

std::wstring expanded(const std::wstring& text, std::size_t numLights) {
  CallerText result;
  result.code = text;
  expandLightBlocks(result, numLights);
  return std::wstring(std::wstring_view(result.code));
}

TEST(LightBlocks, AreRepeatedPerLight) {
  EXPECT_EQ(expanded(kBlockBegin + L" x = TOLM_SCENE_LIGHTING(P, N, l); " + kBlockEnd, 3),
            L"\n    { x = TolmSceneLighting0(P, N, l); }\n"
            L"\n    { x = TolmSceneLighting1(P, N, l); }\n"
            L"\n    { x = TolmSceneLighting2(P, N, l); }\n");
}

TEST(LightBlocks, DisappearWithoutLights) {
  EXPECT_EQ(expanded(L"a;" + kBlockBegin + L"TOLM_SCENE_LIGHTING()" + kBlockEnd + L"b;", 0), L"a;b;");
}

TEST(LightBlocks, KeepTheTextAround) {
  EXPECT_EQ(expanded(L"a TOLM_SCENE_LIGHTING " + kBlockBegin + L"x" + kBlockEnd + L" b " + kBlockBegin +
                         L"TOLM_SCENE_LIGHTINGTOLM_SCENE_LIGHTING" + kBlockEnd + kBlockEnd + L" c",
                     2),
            L"a TOLM_SCENE_LIGHTING \n    {x}\n\n    {x}\n b "
            L"\n    {TolmSceneLighting0TolmSceneLighting0}\n\n    {TolmSceneLighting1TolmSceneLighting1}\n" +
                kBlockEnd + L" c");
  EXPECT_EQ(expanded(L"nothing " + kBlockEnd, 2), L"nothing " + kBlockEnd);
  EXPECT_EQ(expanded(L"", 2), L"");
}

TEST(LightBlocks, NumberLightsInDecimal) {
  const std::wstring text = expanded(kBlockBegin + L"TOLM_SCENE_LIGHTING" + kBlockEnd, 1001);
  EXPECT_EQ(text.size(), 1001 * (6 + 17 + 2) + 10 + 90 * 2 + 900 * 3 + 4u);
  EXPECT_NE(text.find(L"{TolmSceneLighting1000}"), std::wstring::npos);
}

TEST(LightBlocks, AreRefusedUnclosedAndReversed) {
  for (const std::wstring& text :
       {kBlockBegin, kBlockBegin + L"x", kBlockEnd + kBlockBegin,
        kBlockEnd + L"a" + kBlockBegin + L"b" + kBlockEnd, kBlockBegin + L"a" + kBlockEnd + kBlockBegin,
        kBlockBegin + L"a" + kBlockEnd + kBlockEnd + kBlockBegin + L"b" + kBlockEnd})
    for (const std::size_t numLights : {0u, 1u, 3u})
      EXPECT_EQ(messageOf([&] { expanded(text, numLights); }), kNotClosed) << numLights;
}

/// The steps as they are stated: replace the first block, look through the whole text again.
std::wstring expandedStepByStep(std::wstring text, std::size_t numLights) {
  for (std::size_t begin = text.find(kBlockBegin); begin != text.npos; begin = text.find(kBlockBegin)) {
    const std::size_t end = text.find(kBlockEnd);
    if (end == text.npos || end < begin || text.size() > 100000) throw Exception(kNotClosed);
    const std::wstring inner = text.substr(begin + kBlockBegin.size(), end - begin - kBlockBegin.size());
    std::wstring copies;
    for (std::size_t i = 0; i < numLights; ++i) {
      std::wstring copy = inner;
      const std::wstring call = L"TOLM_SCENE_LIGHTING";
      for (std::size_t at = copy.find(call); at != copy.npos; at = copy.find(call))
        copy.replace(at, call.size(), L"TolmSceneLighting" + std::to_wstring(i));
      copies += L"\n    {" + copy + L"}\n";
    }
    text = text.substr(0, begin) + copies + text.substr(end + kBlockEnd.size());
  }
  return text;
}

TEST(LightBlocks, MayHoldABeginMarkerWithOneLight) {
  const std::wstring call = L"TOLM_SCENE_LIGHTING()";
  EXPECT_EQ(expanded(call + kBlockBegin + L"a" + kBlockBegin + call + kBlockEnd + call + kBlockEnd + call, 1),
            call + L"\n    {a\n    {TolmSceneLighting0()}\nTolmSceneLighting0()}\n" + call);
  const std::wstring nested = kBlockBegin + L"a" + kBlockBegin + L"b" + kBlockEnd + L"c" + kBlockEnd + L"d";
  EXPECT_EQ(expanded(nested, 1), L"\n    {a\n    {b}\nc}\nd");
  EXPECT_EQ(expanded(nested, 0), L"c" + kBlockEnd + L"d");
  for (const std::size_t numLights : {2u, 3u})
    EXPECT_EQ(messageOf([&] { expanded(nested, numLights); }), kNotClosed) << numLights;
  EXPECT_EQ(expanded(kBlockBegin + kBlockBegin + kBlockEnd, 0), L"");
  EXPECT_EQ(messageOf([&] { expanded(kBlockBegin + kBlockBegin + kBlockEnd, 1); }), kNotClosed);
}

TEST(LightBlocks, AreLookedForInWhatTheirRemovalJoins) {
  const std::wstring block = kBlockBegin + L"x" + kBlockEnd;
  const auto split = [&](const std::wstring& marker) {
    return marker.substr(0, 7) + block + marker.substr(7, 20) + block + marker.substr(27);
  };
  EXPECT_EQ(expanded(L"a" + split(kBlockBegin) + L"b" + kBlockEnd + L"c", 0), L"ac");
  EXPECT_EQ(expanded(L"a" + split(kBlockEnd) + L"c", 0), L"a" + kBlockEnd + L"c");
  EXPECT_EQ(messageOf([&] { expanded(split(kBlockEnd) + block, 0); }), kNotClosed);
  EXPECT_EQ(messageOf([&] { expanded(split(kBlockBegin), 0); }), kNotClosed);
  // Text in front of the place to begin at joins nothing.
  CallerText text;
  text.code = kBlockBegin.substr(0, 7) + block + kBlockBegin.substr(7);
  expandLightBlocks(text, 0, 7);
  EXPECT_EQ(text.code, kBlockBegin.c_str());
}

TEST(LightBlocks, FollowTheStepsForAnyOrderOfMarkers) {
  const std::wstring pieces[] = {kBlockBegin,
                                 kBlockEnd,
                                 L"TOLM_SCENE_LIGHTING",
                                 kBlockBegin.substr(0, 10),
                                 kBlockBegin.substr(10),
                                 kBlockEnd.substr(10)};
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
      for (std::size_t i = 0; i < count; ++i) text += kBlockBegin + L"x" + (isNested ? L"" : kBlockEnd);
      for (std::size_t i = 0; isNested && i < count; ++i) text += kBlockEnd;
      return TolmSDK::test::processorTime([&] { messageOf([&] { expanded(text, numLights); }); });
    });
  };
  for (const std::size_t numLights : {0u, 1u, 2u})
    for (const bool isNested : {false, true})
      EXPECT_LT(growth(numLights, isNested), TolmSDK::test::kLinearGrowth) << numLights;
}

TEST(LightBlocks, AreMeasuredBeforeTheyAreBuilt) {
  std::wstring many;
  for (int i = 0; i < 100000; ++i) many += kBlockBegin + L"TOLM_SCENE_LIGHTING" + kBlockEnd;
  const std::clock_t refusals = TolmSDK::test::processorTime([&] {
    const std::wstring large(100, L'x');
    EXPECT_EQ(messageOf([&] { expanded(kBlockBegin + large + kBlockEnd, 1000000); }), kTooLarge);
    EXPECT_EQ(messageOf([&] { expanded(kBlockBegin + kBlockEnd, std::size_t{1} << 60); }), kTooLarge);
    EXPECT_EQ(messageOf([&] { expanded(many, 1000); }), kTooLarge);
  });
  // At the limit itself a text is still built: one light, a block of the limit's length, one character too
  // many behind it at first.
  constexpr std::size_t kFrame = 8;
  CallerText fits;
  fits.code.append(kBlockBegin).append(kMaximumTextLength - kFrame, L'x').append(kBlockEnd).append(L"y");
  EXPECT_EQ(messageOf([&] { expandLightBlocks(fits, 1); }), kTooLarge);
  fits.code.pop_back();
  EXPECT_LT(refusals, TolmSDK::test::processorTime([&] { expandLightBlocks(fits, 1); }));
  EXPECT_EQ(fits.code.size(), kMaximumTextLength);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
