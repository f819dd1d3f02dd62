#include "host/documents/shading_environment.h"

#include "host/test_job_fixture.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class ShadingEnvironmentTest : public JobFixture {
protected:
  ShadingEnvironmentTest() {
    writeLibrary("{" + fragment("lamp", "float reach, out float3 color", "color = reach;") + "," +
                 fragment("tone", "float3 color, out float4 result", "result = color.rgbr;") + "}");
    libraries_ = load();
  }
  RefPtr<ShadingEnvironment> read(const std::string& text) const {
    return loadEnvironment(Document::fromText(text, "scene"), libraries_->language());
  }
  std::string refusal(const std::string& text) const {
    try {
      read(text);
    } catch (const InputError& error) {
      return error.place() + ": " + error.what();
    }
    return "(nothing thrown)";
  }

  std::shared_ptr<const LoadedLibraries> libraries_;
};

TEST_F(ShadingEnvironmentTest, ClonesLightsWithTheirPorts) {
  const RefPtr<ShadingEnvironment> scene = read(
      R"({ "lights": [ { "fragment": "lamp" }, { "name": "key", "fragment": "lamp", "profile": "Spot" } ] })");
  ASSERT_EQ(scene->getNumLights(), 2u);
  EXPECT_EQ(scene->lights()[0].name, L"light0");
  EXPECT_EQ(scene->lights()[0].profile->getProfilename(), L"default");
  EXPECT_EQ(scene->lights()[1].fragment->instanceName(), L"key");
  EXPECT_EQ(scene->lights()[1].profile->getProfilename(), L"Spot");
  EXPECT_EQ(scene->getLight(1)->getNumInputs(), 1u);
  EXPECT_NE(scene->getLight(0), scene->getLight(1));
  EXPECT_EQ(scene->findLight(scene->getLight(1)), &scene->lights()[1]);
  EXPECT_EQ(scene->findLight(nullptr), nullptr);
  EXPECT_EQ(scene->getOutputFragment(), nullptr);
}

TEST_F(ShadingEnvironmentTest, ClonesTheOutputFragment) {
  const RefPtr<ShadingEnvironment> scene = read(R"({ "output": "tone" })");
  EXPECT_EQ(scene->getNumLights(), 0u);
  ASSERT_NE(scene->getOutputFragment(), nullptr);
  EXPECT_EQ(scene->getOutputFragment()->instanceName(), L"output");
}

TEST_F(ShadingEnvironmentTest, RefusesUnknownFragmentsAndNamesUsedTwice) {
  EXPECT_EQ(refusal(R"({ "lights": [ { "fragment": "lump" } ] })"), "scene:1:29: unknown fragment `lump`");
  EXPECT_EQ(refusal(R"({ "output": "lump" })"), "scene:1:13: unknown fragment `lump`");
  EXPECT_EQ(refusal(R"({ "lights": [ { "name": "light1", "fragment": "lamp" }, { "fragment": "lamp" } ] })"),
            "scene:1:57: the light name `light1` is used twice");
}

TEST_F(ShadingEnvironmentTest, RefusesAnImageThatIsNoName) {
  EXPECT_EQ(refusal("{ \"lights\": [],\n  \"image\": [ \"sky\" ] }"),
            "scene:2:12: `image` must be a string that is not empty");
  EXPECT_EQ(read(R"({ "image": "sky" })")->getNumLights(), 0u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
