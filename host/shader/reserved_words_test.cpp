#include "host/shader/reserved_words.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(ReservedWordsTest, AreThoseOfEveryLanguage) {
  for (const wchar_t* const word : {L"cbuffer", L"float3", L"half2x4", L"int16_t3", L"vec3", L"constant",
                                    L"lerp", L"mix", L"discard", L"State", L"gl_Position", L"sfg_x",
                                    L"spvTexture", L"SPIRV_Cross_Input", L"sampler_image", L"_a", L"a__b"}) {
    EXPECT_TRUE(isReservedWord(word)) << word;
  }
}

TEST(ReservedWordsTest, AreNoOthers) {
  for (const wchar_t* const word :
       {L"", L"tint", L"floats", L"float3a", L"mixed", L"states", L"a_b", L"sfg", L"a_"}) {
    EXPECT_FALSE(isReservedWord(word)) << word;
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
