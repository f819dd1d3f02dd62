// Vertex stages: everything that a pixel stage can read, and that the comparison of the two sees what is
// wrong. The examples, the standard fragments and random graphs have theirs compared where they are compiled.

#include "host/modules/shader_compiler.h"
#include "host/shader/shader_target.h"
#include "tests/shaders/interface_facts.h"
#include "tests/shaders/shader_fixture.h"
#include "tolmsdk/unicode.h"

namespace shaders_test {
namespace {

using namespace sfg::host;

/// A fragment that reads every varying state variable, and graph inputs of every type that can vary.
const Json kEverything = {
    {"everything",
     {{"language", {"dx11"}},
      {"implementation",
       {"void everything(bool b, int i, uint3 u, float2 f, float4 g, out float4 result)", "{",
        "result = g + float4(sfg_objectPosition + sfg_objectNormal + sfg_worldPosition + sfg_worldNormal, "
        "sfg_frontFacing ? 1.0 : 0.0);",
        "result.xyz += sfg_worldTangent + sfg_worldBinormal + sfg_viewDirection;",
        "result.xy += sfg_texCoord0 + sfg_texCoord1 + sfg_texCoord2 + sfg_texCoord3 + f;",
        "result += sfg_vertexColor + sfg_screenPosition * sfg_time;",
        "result.w += (b ? 1.0 : 0.0) + float(i) + float(u.z);", "}"}}}}};

Json everything() {
  Json graph = {{"outputs", {{{"name", "color"}, {"type", "float4"}, {"node", "a"}}}},
                {"nodes", {{{"name", "a"}, {"fragment", "everything"}}}}};
  for (const auto& [name, type] : std::vector<std::pair<const char*, const char*>>{
           {"b", "bool"}, {"i", "int"}, {"u", "uint3"}, {"f", "float2"}, {"g", "float4"}}) {
    // Called as the parts of a mesh are, so that names meet.
    const std::string input = std::string(name) == "f" ? "position" : name;
    graph["inputs"].push_back({{"name", input}, {"type", type}});
    graph["nodes"][0]["inputs"][name] = {{"graphInput", input}};
  }
  return graph;
}

class VertexStageTest : public ShaderFixture {
protected:
  JobFiles chosen() const {
    JobFiles settings = this->settings(everything());
    define(settings, kEverything);
    return settings;
  }
};

std::vector<std::uint32_t> moduleOf(const AssembledShader& assembled) {
  return compileToSpirv(TolmSDK::toUtf8(assembled.shader.getCompleteShader()), assembled.entryPoint,
                        assembled.reflection.stage);
}

TEST_F(VertexStageTest, FeedsEverythingInEveryTarget) {
  JobFiles settings = chosen();
  EXPECT_EQ(compile(settings, ShaderStage::pixel, true), "");
  settings.functionName = "main";
  EXPECT_EQ(compile(settings, ShaderStage::pixel, true), "");
}

TEST_F(VertexStageTest, ThatIsNoPairIsSeen) {
  CollapseJob job = makeJob(chosen());
  job.run();
  const AssembledShader pixel = assembleShader(job, ShaderStage::pixel);
  const std::vector<std::uint32_t> pixelModule = moduleOf(pixel);
  ShaderInterface taken = reflectShader(pixel, ShaderTarget::spirv);
  markUsed(taken, pixelModule);
  const Facts pixelFacts = factsOfModule(pixelModule);
  const Facts right = factsOfModule(moduleOf(assembleShader(job, ShaderStage::vertex)));
  EXPECT_EQ(pairFaults(right, pixelFacts, taken), "");

  for (const std::string& fact : right) {
    if (!fact.starts_with("out ") && fact != "builtin position") continue;
    Facts wrong = right;
    wrong.erase(fact);
    EXPECT_NE(pairFaults(wrong, pixelFacts, taken), "") << fact;
    if (fact == "builtin position") continue;
    wrong.insert(fact + "5");  // another type, or no longer flat
    EXPECT_NE(pairFaults(wrong, pixelFacts, taken), "") << fact;
  }
  Facts more = right;
  more.insert("out sfg_in_more location=40 type=float");
  EXPECT_EQ(pairFaults(more, pixelFacts, taken), "so, but not said: sfg_in_more location=40 type=float\n");
}

/// Every part of a vertex stage's interface is compared with what compilers read.
TEST_F(VertexStageTest, WhoseInterfaceIsWrongIsSeen) {
  CollapseJob job = makeJob(chosen());
  job.run();
  const AssembledShader assembled = assembleShader(job, ShaderStage::vertex);
  const std::vector<std::uint32_t> spirv = moduleOf(assembled);
  using Change = void (*)(ShaderInterface&);
  const Change changes[] = {
      [](ShaderInterface& s) { s.attributes.at(2).name += "x"; },
      [](ShaderInterface& s) { ++*s.attributes.back().location; },
      [](ShaderInterface& s) { s.attributes.at(2).type = "float3"; },
      [](ShaderInterface& s) { s.varyings.at(0).name += "x"; },
      [](ShaderInterface& s) { s.varyings.at(0).location = 30; },
      [](ShaderInterface& s) { s.varyings.at(0).type = "float4"; },
      [](ShaderInterface& s) { s.varyings.back().type = "float"; },
      [](ShaderInterface& s) { s.varyings.pop_back(); },
      [](ShaderInterface& s) {
        for (InterfaceAttribute& varying : s.varyings) {
          if (varying.builtin == "position") varying.builtin = "fragCoord";
        }
      },
      [](ShaderInterface& s) { s.buffers.at(0).members.at(1).offset += 16; },
      [](ShaderInterface& s) { s.buffers.at(0).members.at(1).name += "x"; },
      [](ShaderInterface& s) { s.buffers.at(0).size += 16; },
  };
  for (const ShaderTarget target :
       {ShaderTarget::spirv, ShaderTarget::hlsl, ShaderTarget::glsl, ShaderTarget::essl, ShaderTarget::msl}) {
    const std::string text = translate(spirv, ShaderStage::vertex, target);
    const Facts found = target == ShaderTarget::spirv ? factsOfModule(spirv)
                        : target == ShaderTarget::msl ? factsOfMetal(text)
                                                      : factsOfTranslation(text, target, ShaderStage::vertex);
    ShaderInterface right = reflectShader(assembled, target);
    markUsed(right, spirv);
    EXPECT_EQ(difference(factsOf(right), found), "") << targetName(target) << text;
    for (std::size_t i = 0; i < std::size(changes); ++i) {
      ShaderInterface wrong = right;
      changes[i](wrong);
      EXPECT_NE(difference(factsOf(wrong), found), "") << targetName(target) << ", change " << i;
    }
  }
}

/// A buffer of the vertex stage and one of the pixel stage are never at the same place.
TEST_F(VertexStageTest, HasABufferOfItsOwn) {
  CollapseJob job = makeJob(chosen());
  job.run();
  for (const ShaderTarget target :
       {ShaderTarget::spirv, ShaderTarget::hlsl, ShaderTarget::glsl, ShaderTarget::essl, ShaderTarget::msl}) {
    const ShaderInterface vertex = reflectShader(assembleShader(job, ShaderStage::vertex), target);
    ASSERT_EQ(vertex.buffers.size(), 1u);
    EXPECT_EQ(vertex.buffers[0].name, "sfg_VertexUniforms");
    const ShaderInterface pixel = reflectShader(assembleShader(job, ShaderStage::pixel), target);
    ASSERT_FALSE(pixel.buffers.empty());
    for (const InterfaceBuffer& buffer : pixel.buffers) {
      EXPECT_NE(buffer.name, vertex.buffers[0].name);
      EXPECT_NE(buffer.place.number, vertex.buffers[0].place.number) << targetName(target);
      EXPECT_TRUE(!buffer.place.binding || buffer.place.binding != vertex.buffers[0].place.binding);
    }
  }
}

TEST_F(VertexStageTest, IsTheSameOnEveryRun) {
  std::set<std::string> texts;
  for (int run = 0; run < 3; ++run) {
    CollapseJob job = makeJob(chosen());
    job.run();
    const AssembledShader assembled = assembleShader(job, ShaderStage::vertex);
    texts.insert(TolmSDK::toUtf8(assembled.shader.getCompleteShader()) + reflectShader(assembled).hash);
  }
  EXPECT_EQ(texts.size(), 1u);
}

}  // namespace
}  // namespace shaders_test
