// Every fragment of the computing topics of the standard library against its reference.

#include <cmath>
#include <set>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/numbers/agreement.h"
#include "tests/numbers/blending_references.h"
#include "tests/numbers/compute_shader.h"
#include "tests/numbers/fragment_source.h"
#include "tests/numbers/layer_references.h"
#include "tests/numbers/output_references.h"
#include "tests/numbers/row.h"
#include "tests/numbers/sampler.h"
#include "tests/numbers/shape_references.h"
#include "tests/numbers/texture_references.h"
#include "tests/numbers/vulkan_compute.h"

namespace numbers_test {
namespace {

class Numbers : public testing::Test {
protected:
  void SetUp() override {
    if (isVulkanSkipped()) {
      GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
    }
  }

  // Runs and compares every profile of the topic's file.
  static void check(Topic const& topic) {
    VulkanCompute compute;
    SCOPED_TRACE(compute.deviceName());
    for (FragmentProfile const& profile : profilesIn(topic.file)) {
      SCOPED_TRACE(describe(profile));
      for (Row const* row : rowsFor(topic, profile)) {
        check(*row, profile, compute);
      }
    }
  }

private:
  static void check(Row const& row, FragmentProfile const& profile, VulkanCompute& compute) {
    try {
      Function const function = collapsedFunction(profile, row);
      std::size_t outputCount = 0;
      for (Port const& output : function.outputs) {
        outputCount += componentCount(output.type);
      }
      std::vector<float> const inputs = drawSamples(row.inputs, kSamples, row.fragment);
      std::vector<std::uint32_t> const spirv = compileCompute(computeShader(function));
      EXPECT_TRUE(
          agree(row, inputs, compute.run(spirv, inputs, kSamples * outputCount, kSamples / kGroupSize)));
    } catch (std::exception const& error) {
      ADD_FAILURE() << error.what();
    }
  }
};

TEST(References, HaveARowForEveryFragmentOfTheirTopics) {
  for (Topic const& topic : allTopics()) {
    for (FragmentProfile const& profile : profilesIn(topic.file)) {
      EXPECT_FALSE(rowsFor(topic, profile).empty()) << topic.file << ": " << describe(profile);
    }
  }
}

TEST(References, AreAllUsed) {
  for (Topic const& topic : allTopics()) {
    std::set<Row const*> used;
    for (FragmentProfile const& profile : profilesIn(topic.file)) {
      for (Row const* row : rowsFor(topic, profile)) {
        used.insert(row);
      }
    }
    for (Row const& row : topic.rows) {
      EXPECT_EQ(used.count(&row), 1u)
          << topic.file << ": " << row.fragment << ", level of detail " << row.lod;
    }
  }
}

TEST_F(Numbers, OfTheMathsFragmentsAgree) { check(mathTopic()); }

TEST_F(Numbers, OfTheLogicFragmentsAgree) { check(logicTopic()); }

TEST_F(Numbers, OfTheOperatorsAgree) { check(operatorTopic()); }

TEST_F(Numbers, OfBlendingAgree) { check(blendingTopic()); }

TEST_F(Numbers, OfTheColourSpacesAgree) { check(colorSpaceTopic()); }

TEST_F(Numbers, OfTheVectorFragmentsAgree) { check(vectorTopic()); }

TEST_F(Numbers, OfTheColourFragmentsAgree) { check(colorTopic()); }

TEST_F(Numbers, OfTheNoiseFragmentsAgree) { check(noiseTopic()); }

TEST_F(Numbers, OfThePatternFragmentsAgree) { check(patternTopic()); }

TEST_F(Numbers, OfTheLayersAgree) { check(layerTopic()); }

TEST_F(Numbers, OfTheShapesAgree) { check(shapeTopic()); }

TEST_F(Numbers, OfTheTexturesAgree) { check(textureTopic()); }

TEST_F(Numbers, OfTheOutputsAgree) { check(outputTopic()); }

TEST_F(Numbers, OfThePostProcessAgree) { check(postTopic()); }

TEST_F(Numbers, OfTheSurroundingsAgree) { check(environmentTopic()); }

TEST_F(Numbers, OfTheCoordinateFragmentsAgree) { check(coordinateTopic()); }

TEST_F(Numbers, OfTheInputFragmentsAgree) { check(inputTopic()); }

TEST_F(Numbers, OfTheBrdfFragmentsAgree) { check(brdfTopic()); }

}  // namespace
}  // namespace numbers_test
