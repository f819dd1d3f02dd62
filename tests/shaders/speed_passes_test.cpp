// The list of passes against the two lists that it is made of.

#include "host/modules/speed_passes.h"

#include "host/modules/shader_compiler.h"
#include "tests/shaders/random_graph.h"

namespace shaders_test {
namespace {

using Words = std::vector<std::uint32_t>;

Words run(const Words& module, const spvtools::Optimizer& optimizer) {
  spvtools::OptimizerOptions options;
  options.set_run_validator(false);
  Words optimised;
  EXPECT_TRUE(optimizer.Run(module.data(), module.size(), &optimised, options));
  return optimised;
}

/// Empty when both make the same bytes of the text's module with all its functions.
std::string difference(const std::string& hlsl, sfg::host::ShaderStage stage) {
  sfg::host::CompileOptions options;
  options.optimization = sfg::host::Optimization::none;
  const Words module = sfg::host::compileToSpirv(hlsl, "main", stage, options);
  spvtools::Optimizer ours(SPV_ENV_VULKAN_1_1);
  sfg::host::registerSpeedPasses(ours);
  spvtools::Optimizer both(SPV_ENV_VULKAN_1_1);
  both.RegisterLegalizationPasses().RegisterPerformancePasses();
  EXPECT_LT(ours.GetPassNames().size(), both.GetPassNames().size());
  return run(module, ours) == run(module, both) ? "" : hlsl;
}

class SpeedPassesTest : public ShaderFixture {};

TEST_F(SpeedPassesTest, RandomGraphsKeepTheirBytes) {
  const std::vector<Usable> fragments = usableFragments();
  for (unsigned seed = 0; seed < 300; seed += 10) {
    sfg::host::CollapseJob job = sfg::host::makeJob(settings(RandomGraph(seed).make(fragments)));
    job.run();
    const auto stage = sfg::host::ShaderStage::pixel;
    const auto assembled = sfg::host::assembleShader(job, stage, sfg::host::NameStyle::readable);
    EXPECT_EQ(difference(TolmSDK::toUtf8(assembled.shader.getCompleteShader()), stage), "") << seed;
  }
}

}  // namespace
}  // namespace shaders_test
