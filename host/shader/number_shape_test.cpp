#include "host/shader/number_shape.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(NumberShape, IsReadFromTheName) {
  const std::optional<NumberShape> scalar = numberShapeOf("bool");
  ASSERT_TRUE(scalar);
  EXPECT_EQ(scalar->scalar, NumberShape::Scalar::boolean);
  EXPECT_EQ(scalar->count(), 1u);

  const std::optional<NumberShape> vector = numberShapeOf("uint3");
  ASSERT_TRUE(vector);
  EXPECT_EQ(vector->scalar, NumberShape::Scalar::unsignedInteger);
  EXPECT_EQ(vector->columns, 3u);
  EXPECT_FALSE(vector->isMatrix);

  const std::optional<NumberShape> matrix = numberShapeOf("float2x3");
  ASSERT_TRUE(matrix);
  EXPECT_EQ(matrix->rows, 2u);
  EXPECT_EQ(matrix->columns, 3u);
  EXPECT_TRUE(matrix->isMatrix);
}

TEST(NumberShape, IsNoneOfOtherNames) {
  for (const char* name : {"", "half", "float0", "float5", "float33", "float3x", "float1x3", "float3x5",
                           "int2x2", "floats", "float3x33", "Lamp"}) {
    EXPECT_FALSE(numberShapeOf(name)) << name;
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
