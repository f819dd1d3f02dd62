// Random graphs of standard fragments, types respected.

#include "tests/shaders/random_graph.h"

namespace shaders_test {
namespace {

constexpr unsigned kGraphs = 300;
constexpr unsigned kGroups = 10;

class RandomGraphsTest : public ShaderFixture, public testing::WithParamInterface<unsigned> {};

TEST_P(RandomGraphsTest, Compile) {
  const std::vector<Usable> fragments = usableFragments();
  ASSERT_GT(fragments.size(), 200u);
  for (unsigned seed = GetParam(); seed < kGraphs; seed += kGroups) {
    RandomGraph random(seed);
    const Json graph = random.make(fragments);
    sfg::host::JobFiles chosen = settings(graph);
    const bool isLightLoop = seed % 3 == 0;
    const unsigned lights = random.pick(5);
    if (isLightLoop) light(chosen, environmentOf(lights));
    chosen.surfaceLod = chosen.lightLod = static_cast<float>(random.pick(101));
    const sfg::host::ShaderStage stage =
        seed % 2 == 0 ? sfg::host::ShaderStage::pixel : sfg::host::ShaderStage::compute;
    // One in ten of the shaders is not optimised, one in ten for size.
    const sfg::host::Optimization optimization = seed % 20 < 2     ? sfg::host::Optimization::none
                                                 : seed % 20 >= 18 ? sfg::host::Optimization::size
                                                                   : sfg::host::Optimization::speed;
    ASSERT_EQ(compile(chosen, stage, true, optimization), "")
        << "seed " << seed << ": "
        << (isLightLoop ? "light loop, " + std::to_string(lights) + " lights" : std::string("default tool"))
        << ", levels of detail " << chosen.surfaceLod << "\n"
        << graph.dump(2);
  }
}

INSTANTIATE_TEST_SUITE_P(Groups, RandomGraphsTest, testing::Range(0u, kGroups));

}  // namespace
}  // namespace shaders_test
