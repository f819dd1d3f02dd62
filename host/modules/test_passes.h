#pragma once

// The list of passes for speed against the two lists that it is made of.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "host/modules/shader_compiler.h"
#include "host/modules/speed_passes.h"

namespace TolmSDK::Graphics::sfg::host {

using Words = std::vector<std::uint32_t>;

inline Words runPasses(const Words& module, const spvtools::Optimizer& optimizer) {
  spvtools::OptimizerOptions options;
  options.set_run_validator(false);
  Words optimised;
  EXPECT_TRUE(optimizer.Run(module.data(), module.size(), &optimised, options));
  return optimised;
}

/// Empty when both make the same bytes of the text's module with all its functions.
inline std::string difference(const std::string& hlsl, ShaderStage stage) {
  CompileOptions options;
  options.optimization = Optimization::none;
  const Words module = compileToSpirv(hlsl, "main", stage, options);
  spvtools::Optimizer ours(SPV_ENV_VULKAN_1_1);
  registerSpeedPasses(ours);
  spvtools::Optimizer both(SPV_ENV_VULKAN_1_1);
  both.RegisterLegalizationPasses().RegisterPerformancePasses();
  EXPECT_LT(ours.GetPassNames().size(), both.GetPassNames().size());
  return runPasses(module, ours) == runPasses(module, both) ? "" : hlsl;
}

}  // namespace TolmSDK::Graphics::sfg::host
