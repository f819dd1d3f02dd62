#include "host/build/value_free_text.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(ValueFreeText, LeavesOutValuesOfMembersAlone) {
  EXPECT_EQ(withoutUniformValues("float a = 1.0;\n"
                                 "cbuffer sfg_Uniforms : register(b0)\n"
                                 "{\n"
                                 "    float3 tint : packoffset(c0) = float3(0.5, 0.5, 0.5);\n"
                                 "    float gain : packoffset(c0.w);\n"
                                 "};\n"
                                 "cbuffer Mine : register(b1)\n"
                                 "{\n"
                                 "    float b : packoffset(c0) = 2.0;\n"
                                 "};\n"
                                 "float c = 3.0;"),
            "float a = 1.0;\n"
            "cbuffer sfg_Uniforms : register(b0)\n"
            "{\n"
            "    float3 tint : packoffset(c0);\n"
            "    float gain : packoffset(c0.w);\n"
            "};\n"
            "cbuffer Mine : register(b1)\n"
            "{\n"
            "    float b : packoffset(c0) = 2.0;\n"
            "};\n"
            "float c = 3.0;");
}

TEST(ValueFreeText, OddTextsStayAsTheyAre) {
  for (const char* text :
       {"", "\n", "cbuffer sfg_X", "cbuffer sfg_X\n{\nfloat a : packoffset(c0) = 1.0 // no end\n};\n"})
    EXPECT_EQ(withoutUniformValues(text), text);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
