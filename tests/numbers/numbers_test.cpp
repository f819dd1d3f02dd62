// Every fragment of the computing topics of the standard library against its reference.

#include <cmath>
#include <set>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/numbers/compute_shader.h"
#include "tests/numbers/fragment_source.h"
#include "tests/numbers/row.h"
#include "tests/numbers/sampler.h"
#include "tests/numbers/vulkan_compute.h"

namespace numbers_test {
namespace {

constexpr std::size_t kSamples = 1024;
constexpr std::size_t kMostOnEdge = kSamples / 32;

std::string describe(FragmentProfile const& profile) {
  std::ostringstream text;
  text << profile.fragment << " (" << profile.profile << ", level of detail " << profile.lod << ")";
  return text.str();
}

// The rows for a profile: those of its own level of detail or else those for all.
std::vector<Row const*> rowsFor(Topic const& topic, FragmentProfile const& profile) {
  std::vector<Row const*> own;
  std::vector<Row const*> general;
  for (Row const& row : topic.rows) {
    if (row.fragment == profile.fragment) {
      if (row.lod == profile.lod) {
        own.push_back(&row);
      } else if (row.lod < 0.0) {
        general.push_back(&row);
      }
    }
  }
  return own.empty() ? general : own;
}

std::string describe(Row const& row, std::span<float const> sample) {
  std::ostringstream text;
  text.precision(9);
  std::size_t at = 0;
  for (Input const& input : row.inputs) {
    text << (at == 0 ? "" : ", ") << input.name << " =";
    for (std::size_t i = 0; i < componentCount(input.type); ++i) {
      text << ' ' << sample[at++];
    }
  }
  return text.str();
}

// Compares the outputs of every sample and reports the worst difference.
void compare(Row const& row, std::vector<float> const& inputs, std::vector<float> const& outputs) {
  std::size_t const inputCount = inputs.size() / kSamples;
  std::size_t const outputCount = outputs.size() / kSamples;
  std::size_t wrong = 0;
  std::size_t onEdge = 0;
  double worst = 0.0;
  std::string report;
  for (std::size_t i = 0; i < kSamples; ++i) {
    std::span<float const> const values = std::span(inputs).subspan(i * inputCount, inputCount);
    Sample const sample(row.inputs, values);
    if (row.onEdge && row.onEdge(sample)) {
      ++onEdge;
      continue;
    }
    std::vector<double> const expected = row.reference(sample).values();
    ASSERT_EQ(expected.size(), outputCount) << "components of the reference and of the fragment's outputs";
    for (std::size_t c = 0; c < outputCount; ++c) {
      double const got = static_cast<double>(outputs[i * outputCount + c]);
      double const allowed = row.tolerance.absolute + row.tolerance.relative * std::abs(expected[c]);
      double const difference = std::abs(got - expected[c]);
      if (difference <= allowed) {
        continue;
      }
      ++wrong;
      double const excess = std::isfinite(difference) ? difference / (allowed + 1e-300) : HUGE_VAL;
      if (report.empty() || excess > worst) {
        worst = excess;
        std::ostringstream text;
        text.precision(9);
        text << "sample " << i << ", component " << c << ": got " << got << ", expected " << expected[c]
             << ", off by " << difference << ", allowed " << allowed << "\n  with " << describe(row, values);
        report = text.str();
      }
    }
  }
  EXPECT_EQ(wrong, 0u) << "values out of tolerance (" << row.tolerance.reason << "); the worst: " << report;
  EXPECT_LE(onEdge, kMostOnEdge) << "samples that the row leaves out as too near to a jump";
}

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
      compare(row, inputs, compute.run(spirv, inputs, kSamples * outputCount, kSamples / kGroupSize));
    } catch (std::exception const& error) {
      ADD_FAILURE() << error.what();
    }
  }
};

std::vector<Topic> allTopics() {
  return {mathTopic(),    vectorTopic(), colorTopic(),      noiseTopic(),
          patternTopic(), brdfTopic(),   coordinateTopic(), inputTopic()};
}

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

TEST_F(Numbers, OfTheVectorFragmentsAgree) { check(vectorTopic()); }

TEST_F(Numbers, OfTheColourFragmentsAgree) { check(colorTopic()); }

TEST_F(Numbers, OfTheNoiseFragmentsAgree) { check(noiseTopic()); }

TEST_F(Numbers, OfThePatternFragmentsAgree) { check(patternTopic()); }

TEST_F(Numbers, OfTheCoordinateFragmentsAgree) { check(coordinateTopic()); }

TEST_F(Numbers, OfTheInputFragmentsAgree) { check(inputTopic()); }

TEST_F(Numbers, OfTheBrdfFragmentsAgree) { check(brdfTopic()); }

}  // namespace
}  // namespace numbers_test
