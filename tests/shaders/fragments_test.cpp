// Every profile of every standard fragment, alone.

#include "tests/shaders/shader_fixture.h"
#include "tolmsdk/unicode.h"

namespace shaders_test {
namespace {

using sfg::EShaderFragmentProfileMode;
using sfg::IShaderFragment;
using sfg::IShaderFragmentProfile;
using sfg::host::CollapseSettings;
using sfg::host::ShaderStage;
using TolmSDK::RefPtr;
using TolmSDK::toUtf8;
using TolmSDK::Graphics::AParameter;
using TolmSDK::Graphics::componentCount;

Json parameter(const char* name, const std::string& type) { return {{"name", name}, {"type", type}}; }

class FragmentsTest : public ShaderFixture, public testing::WithParamInterface<std::string> {
protected:
  const IShaderFragment& fragment() const {
    return *standardLibrary().language().findFragment(TolmSDK::fromUtf8(GetParam()));
  }

  /// One node of the fragment; its outputs of numbers are the graph's.
  Json alone() const {
    const RefPtr<IShaderFragment> ports =
        sfg::host::cloneWithPorts(fragment(), TolmSDK::WString(), standardLibrary().language());
    Json outputs = Json::array();
    for (std::size_t i = 0; i < ports->getNumOutputs(); ++i) {
      const AParameter& output = *ports->getOutput(i);
      if (componentCount(output.getType()) == 0) continue;
      outputs.push_back({{"name", "out_" + toUtf8(output.getName())},
                         {"type", toUtf8(output.getType().toString())},
                         {"node", "alone"},
                         {"output", toUtf8(output.getName())}});
    }
    return {{"outputs", outputs}, {"nodes", {{{"name", "alone"}, {"fragment", GetParam()}}}}};
  }

  static Json surface(const char* name) {
    return {{"outputs", {{{"name", "color"}, {"type", "float3"}, {"node", "surface"}}}},
            {"nodes", {{{"name", "surface"}, {"fragment", name}}}}};
  }

  Json environmentOfThis(const std::string& profile) const {
    return {{"lights", {{{"name", "lamp"}, {"fragment", GetParam()}, {"profile", profile}}}}};
  }

  /// Fills the description of a light in one of its profiles.
  bool isLight() const {
    for (std::size_t i = 0; i < fragment().getNumProfiles(); ++i) {
      const auto& ports = *fragment().getProfile(i)->getFunctionParameters();
      if (ports.getNumOutputs() != 0 && ports.getOutputType(0) == L"sfg_Light") return true;
    }
    return false;
  }

  std::string compileBothStages(const CollapseSettings& settings) const {
    const std::string pixel = compile(settings, ShaderStage::pixel, true);
    return !pixel.empty() ? pixel : compile(settings, ShaderStage::compute, true);
  }

  std::string compileProfile(const IShaderFragmentProfile& profile) const {
    const std::string name = toUtf8(profile.getProfilename());
    CollapseSettings chosen;
    if (name == "msl_light") {
      chosen = settings(surface("mslLambertSurface"));
      light(chosen, environmentOfThis("sfg_Light"));
    } else if (isLight()) {
      chosen = settings(surface("lambertSurface"));
      light(chosen, environmentOfThis(name));
    } else {
      chosen = settings(alone());
      if (name != "default") light(chosen, environmentOf(2));
    }
    chosen.surfaceLod = chosen.lightLod = profile.getLOD();
    return compileBothStages(chosen);
  }

  /// An inline fragment fits several types: some of them must compile.
  std::string compileInline(const IShaderFragmentProfile& profile) const {
    std::string last;
    for (const char* input : {"float", "float2", "float3", "float4"}) {
      for (const char* output : {"float", "float2", "float3", "float4"}) {
        Json inputs = Json::array();
        for (std::size_t i = 0; i < profile.getFunctionParameters()->getNumInputs(); ++i) {
          inputs.push_back(parameter(("in" + std::to_string(i)).c_str(), input));
        }
        Json graph = {{"outputs", {{{"name", "color"}, {"type", output}, {"node", "alone"}}}},
                      {"nodes",
                       {{{"name", "alone"},
                         {"fragment", GetParam()},
                         {"interface", {{"inputs", inputs}, {"outputs", {parameter("result", output)}}}}}}}};
        CollapseSettings chosen = settings(graph);
        // The light loop assigns its outputs by itself, so an expression can be one.
        light(chosen, environmentOf(0));
        last = compileBothStages(chosen);
        if (last.empty()) return last;
      }
    }
    return last;
  }
};

TEST_P(FragmentsTest, EveryProfileCompilesAlone) {
  ASSERT_GT(fragment().getNumProfiles(), 0u);
  for (std::size_t i = 0; i < fragment().getNumProfiles(); ++i) {
    const IShaderFragmentProfile& profile = *fragment().getProfile(i);
    const bool isInline = profile.getMode() == EShaderFragmentProfileMode::Inline;
    EXPECT_EQ(isInline ? compileInline(profile) : compileProfile(profile), "") << "profile " << i;
  }
}

std::string nameOf(const testing::TestParamInfo<std::string>& info) { return info.param; }

INSTANTIATE_TEST_SUITE_P(Library, FragmentsTest, testing::ValuesIn(fragmentNames()), nameOf);

}  // namespace
}  // namespace shaders_test
