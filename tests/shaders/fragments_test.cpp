// Every profile of every standard fragment, alone.

#include <set>

#include "tests/shaders/shader_fixture.h"
#include "tests/support/job_files.h"
#include "tolmsdk/unicode.h"

namespace shaders_test {
namespace {

using sfg::EShaderFragmentProfileMode;
using sfg::IShaderFragment;
using sfg::IShaderFragmentProfile;
using sfg::host::JobFiles;
using sfg::host::ShaderStage;
using TolmSDK::RefPtr;
using TolmSDK::toUtf8;
using TolmSDK::Graphics::AParameter;
using TolmSDK::Graphics::componentCount;

class FragmentsTest : public ShaderFixture, public testing::WithParamInterface<std::string> {
protected:
  const IShaderFragment& fragment() const {
    return *standardLibrary().language().findFragment(TolmSDK::fromUtf8(name_));
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
    return {{"outputs", outputs}, {"nodes", {{{"name", "alone"}, {"fragment", name_}}}}};
  }

  static Json surface(const char* name) {
    return {{"outputs", {{{"name", "color"}, {"type", "float3"}, {"node", "surface"}}}},
            {"nodes", {{{"name", "surface"}, {"fragment", name}}}}};
  }

  Json environmentOfThis(const std::string& profile) const {
    return {{"lights", {{{"name", "lamp"}, {"fragment", name_}, {"profile", profile}}}}};
  }

  /// Fills the description of a light in one of its profiles.
  bool isLight() const {
    for (std::size_t i = 0; i < fragment().getNumProfiles(); ++i) {
      const auto& ports = *fragment().getProfile(i)->getFunctionParameters();
      if (ports.getNumOutputs() != 0 && ports.getOutputType(0) == L"sfg_Light") return true;
    }
    return false;
  }

  std::string compileBothStages(const JobFiles& settings) const {
    const std::string pixel = compile(settings, ShaderStage::pixel, true);
    return !pixel.empty() ? pixel : compile(settings, ShaderStage::compute, true);
  }

  std::string compileProfile(const IShaderFragmentProfile& profile) const {
    const std::string name = toUtf8(profile.getProfilename());
    JobFiles chosen;
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

  /// An expression has the ports that its file documents.
  std::string compileInline() const {
    const Json interface = documentedInterface(name_);
    if (interface.is_null()) return "no \"interface\" in its file";
    const Json& output = interface.at("outputs").at(0);
    const Json graph = {{"outputs", {{{"name", "color"}, {"type", output.at("type")}, {"node", "alone"}}}},
                        {"nodes", {{{"name", "alone"}, {"fragment", name_}, {"interface", interface}}}}};
    JobFiles chosen = settings(graph);
    // The light loop assigns its outputs by itself, so an expression can be one.
    light(chosen, environmentOf(0));
    return compileBothStages(chosen);
  }

  /// Its light block is written once for every light.
  std::string compileMetaSL(std::size_t lights) const {
    JobFiles chosen = settings(alone());
    light(chosen, environmentOf(lights));
    return compileBothStages(chosen);
  }

  void compileEveryProfile() const {
    ASSERT_GT(fragment().getNumProfiles(), 0u);
    for (std::size_t i = 0; i < fragment().getNumProfiles(); ++i) {
      SCOPED_TRACE(name_ + ", profile " + std::to_string(i));
      compileOf(*fragment().getProfile(i));
    }
  }

  std::string name_;  ///< of the fragment at hand

private:
  void compileOf(const IShaderFragmentProfile& profile) const {
    // Nothing else is compiled in its place.
    EXPECT_EQ(fragment().findBestProfile(profile.getProfilename(),
                                         standardLibrary().language().getLanguageString(), profile.getLOD()),
              &profile);
    if (profile.getMode() == EShaderFragmentProfileMode::Inline) {
      EXPECT_EQ(compileInline(), "");
      return;
    }
    EXPECT_EQ(compileProfile(profile), "");
    if (profile.getMode() != EShaderFragmentProfileMode::MetaSL) return;
    for (const std::size_t lights : {0u, 2u}) EXPECT_EQ(compileMetaSL(lights), "") << lights << " lights";
  }
};

// One process for a file: starting the compilers takes longer than most fragments.
TEST_P(FragmentsTest, EveryProfileCompilesAlone) {
  std::size_t count = 0;
  for (const std::string& name : fragmentNames()) {
    if (libraryFileOf(name) != GetParam()) continue;
    ++count;
    name_ = name;
    compileEveryProfile();
  }
  EXPECT_GT(count, 0u);
}

std::vector<std::string> libraryFileNames() {
  std::set<std::string> files;
  for (const std::string& name : fragmentNames()) files.insert(libraryFileOf(name));
  return {files.begin(), files.end()};
}

std::string nameOfFile(const testing::TestParamInfo<std::string>& info) { return info.param; }

INSTANTIATE_TEST_SUITE_P(Library, FragmentsTest, testing::ValuesIn(libraryFileNames()), nameOfFile);

}  // namespace
}  // namespace shaders_test
