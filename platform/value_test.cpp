#include "tolmsdk/value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics {
namespace {

AValue valueOf(const TypeID& type, std::initializer_list<double> components) {
  AValue value(type);
  std::size_t index = 0;
  for (const double component : components) EXPECT_TRUE(value.set(index++, component));
  return value;
}

TEST(ShaderText, WritesFloatsShortest) {
  struct Case {
    double value;
    const wchar_t* text;
  };
  for (const Case& c :
       {Case{0.0, L"0.0"}, Case{-0.0, L"-0.0"}, Case{1.0, L"1.0"}, Case{-1.0, L"-1.0"}, Case{0.5, L"0.5"},
        Case{0.1, L"0.1"}, Case{1e-7, L"1e-07"}, Case{100.0, L"100.0"}, Case{10000.0, L"10000.0"},
        Case{100000.0, L"1e+05"}, Case{123456.0, L"123456.0"}, Case{16777216.0, L"16777216.0"},
        Case{3.14159274, L"3.1415927"}, Case{1.0 / 3.0, L"0.33333334"}, Case{3.4028235e38, L"3.4028235e+38"},
        Case{1e-45, L"1e-45"}, Case{1e10, L"1e+10"}}) {
    EXPECT_EQ(toShaderText(valueOf(TypeID_float, {c.value})), c.text);
  }
}

TEST(ShaderText, ReadsBackAsTheSameFloat) {
  std::mt19937 random(7);
  for (int round = 0; round < 2000; ++round) {
    float number = 0.0f;
    const auto bits = static_cast<std::uint32_t>(random());
    std::memcpy(&number, &bits, sizeof number);
    if (!std::isfinite(number)) continue;
    const std::string text = toUtf8(toShaderText(valueOf(TypeID_float, {number})));
    EXPECT_EQ(std::strtof(text.c_str(), nullptr), number) << text;
    EXPECT_NE(text.find_first_of(".e"), std::string::npos) << text;
  }
}

TEST(ShaderText, WritesBooleansAndIntegers) {
  EXPECT_EQ(toShaderText(valueOf(TypeID_bool, {1})), L"true");
  EXPECT_EQ(toShaderText(valueOf(TypeID_bool, {0})), L"false");
  EXPECT_EQ(toShaderText(valueOf(TypeID_int, {-2147483648.0})), L"-2147483648");
  EXPECT_EQ(toShaderText(valueOf(TypeID_int, {-0.0})), L"0");
  EXPECT_EQ(toShaderText(valueOf(TypeID_uint, {4294967295.0})), L"4294967295");
  EXPECT_EQ(toShaderText(valueOf(TypeID_ivec3, {1, -2, 3})), L"int3(1, -2, 3)");
  EXPECT_EQ(toShaderText(valueOf(TypeID_uvec2, {1, 2})), L"uint2(1, 2)");
}

TEST(ShaderText, WritesVectorsAndMatricesRowByRow) {
  EXPECT_EQ(toShaderText(valueOf(TypeID_fvec3, {0, 1, 2.5})), L"float3(0.0, 1.0, 2.5)");
  EXPECT_EQ(toShaderText(valueOf(TypeID_fmat2, {1, 2, 3, 4})), L"float2x2(1.0, 2.0, 3.0, 4.0)");
}

TEST(Value, DefaultIsZeroOfItsType) {
  const AValue value(TypeID_fvec2);
  EXPECT_EQ(value.type(), TypeID_fvec2);
  EXPECT_EQ(value.size(), 2u);
  EXPECT_EQ(value.get(1), 0.0);
  EXPECT_EQ(AValue().type(), TypeID_nil);
  EXPECT_EQ(AValue().size(), 0u);
}

TEST(Value, KeepsWhatTheComponentTypeMakesOfANumber) {
  EXPECT_EQ(valueOf(TypeID_bool, {0.25}).get(0), 1.0);
  EXPECT_EQ(valueOf(TypeID_float, {0.1}).get(0), static_cast<double>(0.1f));
  EXPECT_EQ(valueOf(TypeID_int, {-7}).get(0), -7.0);
}

TEST(Value, RefusesWhatDoesNotFitAndChangesNothing) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  struct Case {
    TypeID type;
    double number;
  };
  for (const Case& c :
       {Case{TypeID_int, 0.5}, Case{TypeID_int, 2147483648.0}, Case{TypeID_int, -2147483649.0},
        Case{TypeID_int, kNaN}, Case{TypeID_uint, -1.0}, Case{TypeID_uint, 4294967296.0},
        Case{TypeID_uint, 1.5}, Case{TypeID_uint, kInfinity}, Case{TypeID_float, kInfinity},
        Case{TypeID_float, kNaN}, Case{TypeID_float, 1e39}, Case{TypeID_float, -1e39}}) {
    AValue value = valueOf(c.type, {3});
    EXPECT_FALSE(value.set(0, c.number)) << c.number;
    EXPECT_EQ(value.get(0), 3.0);
  }
}

TEST(Value, RefusesIndexesBeyondItsSize) {
  AValue value(TypeID_fvec3);
  EXPECT_FALSE(value.set(3, 1.0));
  EXPECT_FALSE(value.set(kNotFound, 1.0));
  EXPECT_EQ(value.get(3), 0.0);
  EXPECT_EQ(value, AValue(TypeID_fvec3));
  AValue none(TypeID_sampler2D);
  EXPECT_FALSE(none.set(0, 1.0));
}

TEST(Value, ComparesTypeAndComponents) {
  EXPECT_EQ(valueOf(TypeID_fvec2, {1, 2}), valueOf(TypeID_fvec2, {1, 2}));
  EXPECT_FALSE(valueOf(TypeID_fvec2, {1, 2}) == valueOf(TypeID_fvec2, {1, 3}));
  EXPECT_FALSE(valueOf(TypeID_float, {1}) == valueOf(TypeID_int, {1}));
}

}  // namespace
}  // namespace TolmSDK::Graphics
