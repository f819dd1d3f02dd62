#include "host/shader/interface_names.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(InterfaceNamesTest, HoldNoUnderscoresInARow) {
  EXPECT_EQ(withSingleUnderscores("a__b____c_"), "a_b_c_");
  EXPECT_EQ(attributeName("uv"), "sfg_in_uv");
  EXPECT_EQ(attributeName("__a___b"), "sfg_in_a_b");
  EXPECT_EQ(renderTargetName("color"), "sfg_out_color");
}

TEST(InterfaceNamesTest, OfBlocksBeginSmall) {
  EXPECT_EQ(blockVariable("sfg_StateUniforms"), "sfg_stateUniforms");
  EXPECT_EQ(blockVariable("sfg_Uniforms_lamp__x"), "sfg_uniforms_lamp_x");
  EXPECT_EQ(blockVariable("sfg_"), "sfg_");
  EXPECT_EQ(blockVariable("sfg_1"), "sfg_1");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
