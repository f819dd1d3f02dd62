// The list of passes against the two lists that it is made of.

#include "host/modules/test_passes.h"
#include "tests/shaders/random_graph.h"

namespace shaders_test {
namespace {

class SpeedPassesTest : public ShaderFixture {};

TEST_F(SpeedPassesTest, RandomGraphsKeepTheirBytes) {
  const std::vector<Usable> fragments = usableFragments();
  for (unsigned seed = 0; seed < 300; seed += 10) {
    sfg::host::CollapseJob job = sfg::host::makeJob(settings(RandomGraph(seed).make(fragments)));
    job.run();
    const auto stage = sfg::host::ShaderStage::pixel;
    const auto assembled = sfg::host::assembleShader(job, stage, sfg::host::NameStyle::readable);
    EXPECT_EQ(sfg::host::difference(TolmSDK::toUtf8(assembled.shader.getCompleteShader()), stage), "")
        << seed;
  }
}

}  // namespace
}  // namespace shaders_test
