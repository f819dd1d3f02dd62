#include "host/shader/buffer_text.h"

#include <gtest/gtest.h>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(BufferTextTest, DeclaresMembersAtTheirPlacesWithTheirValues) {
  AValue direction(TypeID_fvec3);
  for (std::size_t i = 0; i < 3; ++i) direction.set(i, 0.5 * static_cast<double>(i));
  AValue flag(TypeID_bool);
  flag.set(0, 1);
  const ConstantBuffer buffer{L"sfg_Uniforms",
                              3,
                              {{{TypeID_fvec3, L"float3", L"direction"}, {}, direction, 16, 12},
                               {{TypeID_bool, L"bool", L"isLit"}, {}, flag, 28, 4}}};
  ShaderText text;
  writeConstantBuffer(text, buffer);
  EXPECT_EQ(toUtf8(text.takeText()), R"(
cbuffer sfg_Uniforms : register(b3)
{
    float3 direction : packoffset(c1) = float3(0.0, 0.5, 1.0);
    bool isLit : packoffset(c1.w) = true;
};
)");
}

TEST(BufferTextTest, WritesNoValueForMembersWithoutOne) {
  const ConstantBuffer buffer{L"lamps", 0, {{{TypeID_nil, L"Lamp", L"lamp"}, {}, AValue()}}};
  ShaderText text;
  writeConstantBuffer(text, buffer);
  EXPECT_EQ(toUtf8(text.takeText()), R"(
cbuffer lamps : register(b0)
{
    Lamp lamp : packoffset(c0);
};
)");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
