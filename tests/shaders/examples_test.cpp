// Every example, without a light loop and with 0, 1 and 4 lights, for both stages and every target.

#include <fstream>

#include "tests/shaders/shader_fixture.h"
#include "tests/support/job_files.h"

namespace shaders_test {
namespace {

class ExamplesTest : public ShaderFixture, public testing::WithParamInterface<std::string> {};

TEST_P(ExamplesTest, CompilesForEveryStageAndTarget) {
  std::ifstream file("examples/materials/" + GetParam() + ".json");
  const Json graph = Json::parse(file);
  // Only the light loop evaluates the chain, and the host warns of one elsewhere.
  Json unlit = graph;
  unlit.erase("postprocess");
  for (const sfg::host::ShaderStage stage :
       {sfg::host::ShaderStage::pixel, sfg::host::ShaderStage::compute}) {
    EXPECT_EQ(compile(settings(unlit), stage, true), "") << "without a light loop";
    for (const std::size_t lights : {0u, 1u, 4u}) {
      sfg::host::JobFiles lit = settings(graph);
      light(lit, environmentOf(lights));
      EXPECT_EQ(compile(lit, stage, true), "") << lights << " lights";
    }
  }
}

/// Optimised otherwise, modules have other parts, which are told as truly.
TEST_P(ExamplesTest, CompilesWhateverItIsOptimisedFor) {
  std::ifstream file("examples/materials/" + GetParam() + ".json");
  sfg::host::JobFiles lit = settings(Json::parse(file));
  light(lit, environmentOf(4));
  for (const sfg::host::ShaderStage stage :
       {sfg::host::ShaderStage::pixel, sfg::host::ShaderStage::compute}) {
    EXPECT_EQ(compile(lit, stage, true, sfg::host::Optimization::size), "");
    EXPECT_EQ(compile(lit, stage, true, sfg::host::Optimization::none), "");
  }
}

std::vector<std::string> examples() {
  std::vector<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator("examples/materials")) {
    if (file.path().extension() == ".json") names.push_back(file.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string nameOf(const testing::TestParamInfo<std::string>& info) { return info.param; }

INSTANTIATE_TEST_SUITE_P(Materials, ExamplesTest, testing::ValuesIn(examples()), nameOf);

}  // namespace
}  // namespace shaders_test
