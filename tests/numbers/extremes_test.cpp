// Whatever comes in, no fragment answers infinity or NaN, which would spread over a whole picture.

#include <random>
#include <set>

#include <gtest/gtest.h>

#include "tests/numbers/agreement.h"
#include "tests/numbers/compute_shader.h"
#include "tests/numbers/device_fragment.h"
#include "tests/numbers/layer_references.h"
#include "tests/numbers/reflection_models.h"
#include "tests/numbers/shape_references.h"

namespace numbers_test {
namespace {

constexpr std::size_t kSamplesOfExtremes = 8192;

class Extremes : public testing::Test {
protected:
  void SetUp() override {
    if (isVulkanSkipped()) {
      GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
    }
  }

  double next(std::vector<double> const& values) { return values[random_() % values.size()]; }

  void appendExtreme(std::vector<float>& samples, Input const& input) {
    if (input.draw == Draw::kUnit || input.draw == Draw::kAbove || input.draw == Draw::kAcross) {
      static std::vector<Vec3> const directions = {
          {0, 0, 0},  {1, 0, 0},     {-1, 0, 0},     {0, 1, 0},      {0, -1, 0},   {0, 0, 1},
          {0, 0, -1}, {0.6, 0, 0.8}, {-0.8, 0.6, 0}, {0.6, 0, -0.8}, {1e-4, 0, 1}, {1, 0, 1e-6}};
      append(samples, directions[random_() % directions.size()]);
      return;
    }
    for (std::size_t c = 0; c < componentCount(input.type); ++c) {
      static std::vector<double> const numbers = {0,     1,        -1,    0.5, 2,    1e-6,
                                                  -1e-6, 0.999999, 1.001, 12,  1000, -1000};
      static std::vector<double> const whole = {0, 1, -3, 2, 12, 100};
      samples.push_back(
          static_cast<float>(input.type == "int" || input.type == "bool" ? next(whole) : next(numbers)));
    }
  }

  void check(DeviceFragment const& device, std::vector<Input> const& inputs) {
    std::vector<float> samples;
    for (std::size_t i = 0; i < kSamplesOfExtremes; ++i) {
      for (Input const& input : inputs) {
        appendExtreme(samples, input);
      }
    }
    std::vector<float> const outputs = device.run(compute_, samples);
    std::size_t const perSample = samples.size() / kSamplesOfExtremes;
    std::size_t bad = 0;
    std::string first;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
      if (!std::isfinite(outputs[i]) && bad++ == 0) {
        for (std::size_t c = 0; c < perSample; ++c) {
          first += " " + std::to_string(samples[i / device.outputCount() * perSample + c]);
        }
      }
    }
    EXPECT_EQ(bad, 0u) << "the first with" << first;
  }

  void check(Topic const& topic) {
    for (FragmentProfile const& profile : profilesIn(topic.file)) {
      std::set<std::vector<std::string>> done;
      for (Row const* row : rowsFor(topic, profile)) {
        std::vector<std::string> names;
        for (Input const& input : row->inputs) {
          names.push_back(input.name);
        }
        if (!row->inlineType.empty() || !done.insert(names).second) {
          continue;
        }
        SCOPED_TRACE(describe(profile));
        check(DeviceFragment(profile, row->inputs), row->inputs);
      }
    }
  }

  VulkanCompute compute_;

private:
  std::mt19937 random_{1};
};

TEST_F(Extremes, OfReflectionModelsAreFinite) { check(brdfTopic()); }

TEST_F(Extremes, OfNoisesAreFinite) { check(noiseTopic()); }

TEST_F(Extremes, OfPatternsAreFinite) { check(patternTopic()); }

TEST_F(Extremes, OfLayersAreFinite) { check(layerTopic()); }

TEST_F(Extremes, OfShapesAreFinite) { check(shapeTopic()); }

TEST_F(Extremes, OfCoordinatesAreFinite) { check(coordinateTopic()); }

TEST_F(Extremes, OfSurfacesAreFinite) {
  std::set<std::string> done;
  for (ReflectionModel const& model : reflectionModels()) {
    if (!model.isSurface || !done.insert(model.fragment + std::to_string(model.lod)).second) {
      continue;
    }
    for (std::string const environment : {"sun.json", "sky.json"}) {
      SCOPED_TRACE(describe(model) + " in " + environment);
      std::vector<Input> inputs = {unit3("normal"), unit3("sfg_worldPosition"), unit3("sfg_eyePosition")};
      if (model.hasTangent) {
        inputs.push_back(unit3("tangent"));
      }
      inputs.insert(inputs.end(), model.ports.begin(), model.ports.end());
      if (environment == "sun.json") {
        inputs.insert(inputs.end(), {unit3("light_axisSun"), vector3("light_colorSun", 0, 1),
                                     number("light_intensitySun", 0, 1)});
      } else {
        inputs.insert(inputs.end(), {vector3("light_skySky", 0, 1), vector3("light_groundSky", 0, 1)});
      }
      check(DeviceFragment({model.fragment, "sfg_Light", model.lod}, inputs, environment), inputs);
    }
  }
}

TEST_F(Extremes, OfFresnelAreItsLimits) {
  // Index and cosine: no boundary, grazing light, a mirror, total reflection.
  DeviceFragment const device({"dielectricFresnel", "default", 100.0},
                              {number("refraction", 0, 3), number("cosine", 0, 1)});
  EXPECT_EQ(device.run(compute_, {1, 0, 1, 0.5f, 1, 1, 1.5f, 0, 0.5f, 0.1f, 0, 1}),
            (std::vector<float>{0, 0, 0, 1, 1, 1}));
}

}  // namespace
}  // namespace numbers_test
