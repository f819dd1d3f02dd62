#include <gtest/gtest.h>

#include "sfg/host/target.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr ShaderTarget kTargets[] = {ShaderTarget::hlsl, ShaderTarget::spirv,   ShaderTarget::glsl,
                                     ShaderTarget::essl, ShaderTarget::essl300, ShaderTarget::msl};

CompileOptions withGlsl(GlslVersion version) {
  CompileOptions options;
  options.glslVersion = version;
  return options;
}

TEST(TargetLimitsTest, ComputeStagesNeedStorageBuffers) {
  const CompileOptions later = withGlsl(GlslVersion::glsl450);
  const CompileOptions old = withGlsl(GlslVersion::glsl330);
  EXPECT_EQ(refusalOf(ShaderStage::compute, ShaderTarget::essl300, later),
            "GLSL ES 3.00 has no compute stage and no storage buffers; the targets `spirv`, `hlsl`, `glsl` "
            "(4.50), `essl` and `msl` have them");
  EXPECT_EQ(
      refusalOf(ShaderStage::compute, ShaderTarget::glsl, old),
      "GLSL 3.30 has no compute stage and no storage buffers; GLSL 4.50 and the targets `spirv`, `hlsl`, "
      "`essl` and `msl` have them");
  for (const ShaderTarget target : kTargets) {
    const bool isRefused = target == ShaderTarget::essl300;
    EXPECT_EQ(refusalOf(ShaderStage::compute, target, later).empty(), !isRefused);
    EXPECT_EQ(refusalOf(ShaderStage::compute, target, old).empty(),
              !isRefused && target != ShaderTarget::glsl);
  }
}

TEST(TargetLimitsTest, PixelAndVertexStagesAreForEveryTarget) {
  const CompileOptions old = withGlsl(GlslVersion::glsl330);
  for (const ShaderTarget target : kTargets) {
    EXPECT_EQ(refusalOf(ShaderStage::pixel, target, old), "");
    EXPECT_EQ(refusalOf(ShaderStage::vertex, target, old), "");
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
