#include "host/documents/type_names.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(TypeNamesTest, KnowsWhatWasMeant) {
  EXPECT_EQ(meantType("vec3"), "float3");
  EXPECT_EQ(meantType("Texture2D"), "sampler2D");
  EXPECT_EQ(meantType("flote3"), "float3");
  EXPECT_EQ(meantType("Float3"), "float3");
  EXPECT_EQ(meantType("float5"), "float");
  EXPECT_EQ(meantType("Lamp"), "");
  EXPECT_EQ(meantType(""), "");
}

TEST(TypeNamesTest, ListsAllTypes) {
  const std::string all =
      "ypes are `bool`, `int`, `int2`, `int3`, `int4`, `uint`, `uint2`, `uint3`, `uint4`, `float`, `float2`, "
      "`float3`, `float4`, `float2x2`, `float3x3`, `float4x4`, `sampler1D`, `sampler2D`, `sampler3D`, "
      "`samplerCube`, `struct`";
  EXPECT_EQ(typeHint("Lamp"), "; t" + all);
  EXPECT_EQ(typeHint("vec3"), "; did you mean `float3`? T" + all);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
