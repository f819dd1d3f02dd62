#include "host/job/evaluated_surface.h"

#include "host/test_job_fixture.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class EvaluatedSurfaceTest : public JobFixture {
protected:
  using Profiles = std::vector<const IShaderFragmentProfile*>;

  EvaluatedSurfaceTest() {
    writeLibrary("{" + fragment("lamp", "out float3 color", "color = 1;") + "," +
                 fragment("pass", "float x, out float result", "result = x;") + R"json(,
      "many": { "profiles": [
        { "name": "Spot", "language": ["dx11"], "implementation": ["void s(out float result)", "{", "}"] },
        { "name": "Sun", "language": ["dx11"], "implementation": ["void u(out float result)", "{", "}"] },
        { "name": "Sun", "language": ["other"], "implementation": ["void o(out float result)", "{", "}"] },
        { "name": "default", "language": ["dx11"], "implementation": ["void d(out float result)", "{", "}"] } ] } })json");
  }
  std::string functions(const Profiles& profiles) const {
    std::string names;
    for (const auto* profile : profiles) names += toUtf8(profile->getFunctionName()) + " ";
    return names;
  }
};

constexpr const char* kSurfaceGraph =
    R"({ "outputs": [ { "name": "x", "type": "float", "node": "c" } ], "nodes": [
  { "name": "c", "fragment": "pass", "inputs": { "x": { "node": "b" } } },
  { "name": "unused", "fragment": "pass" },
  { "name": "b", "fragment": "many" } ] })";

TEST_F(EvaluatedSurfaceTest, IsDefaultWithoutLights) {
  const auto made = job(kSurfaceGraph);
  EvaluatedSurface surface(*made);
  EXPECT_EQ(surface.profileNames(), (Set<WString>{L"default"}));
  const IShaderFragment& many = *made->libraries().language().findFragment(L"many");
  EXPECT_EQ(functions(surface.profilesOf(many).taken), "d ");
  EXPECT_EQ(&surface.profilesOf(many), &surface.profilesOf(many));
}

TEST_F(EvaluatedSurfaceTest, TakesTheNamesThatLightsAskFor) {
  const auto made = job(kSurfaceGraph, CollapseTool::lightLoop, R"({ "lights": [
    { "fragment": "lamp", "profile": "Sun" }, { "fragment": "lamp", "profile": "Area" } ] })");
  EvaluatedSurface surface(*made);
  const IShaderFragment& many = *made->libraries().language().findFragment(L"many");
  EXPECT_EQ(functions(surface.profilesOf(many).taken), "d u ");
  EXPECT_EQ(surface.profilesOf(many).named.at(L"Sun")->getFunctionName(), L"u");
  EXPECT_EQ(surface.profilesOf(many).other->getFunctionName(), L"d");
}

TEST_F(EvaluatedSurfaceTest, KnowsWhichNamesAFragmentOffers) {
  const auto libraries = load();
  EXPECT_EQ(offeredProfileNames(*libraries->language().findFragment(L"many"), UString(L"dx11")),
            (Set<WString>{L"Spot", L"Sun", L"default"}));
}

TEST_F(EvaluatedSurfaceTest, ReachesSourcesFirstAndEndsOnALoop) {
  EXPECT_EQ(reachableNodes(job(kSurfaceGraph)->document()), (std::vector<std::size_t>{2, 0}));
  const auto loop = job(R"({ "outputs": [ { "name": "x", "type": "float", "node": "a" } ], "nodes": [
    { "name": "a", "fragment": "pass", "inputs": { "x": { "node": "b" } } },
    { "name": "b", "fragment": "pass", "inputs": { "x": { "node": "a" } } } ] })");
  EXPECT_EQ(reachableNodes(loop->document()).size(), 2u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
