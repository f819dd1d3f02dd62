#include "host/shader/shader_plan.h"

#include "host/test_job_fixture.h"
#include "sfg/host/errors.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class ShaderPlanTest : public JobFixture {
protected:
  ShaderPlanTest() {
    writeLibrary("{" +
                 fragment("f", "float a, sfg_sampler2D image, float3x3 turn, out float result",
                          "result = a * sfg_worldNormal.x * sfg_time;",
                          R"("stateVariables": [], "includes": ["a.h", "lost.h"], )") +
                 "," + fragment("m", "out float4x4 a, out float4x4 b, out float c", "c = 1;") + "," +
                 fragment("lit", "out float x", "x = sfg_currentLight.c;") + "}");
    write("a.h", "float a_h;\n");
  }
  std::string refusal(const std::string& graph, ShaderStage stage) const {
    try {
      planShader(*collapsed(graph), stage, NameStyle::generated);
    } catch (const AssemblyError& error) {
      return error.what();
    }
    return "(planned)";
  }
};

constexpr const char* kGraph =
    R"({ "inputs": [ { "name": "x", "type": "float" }, { "name": "t", "type": "float3x3" },
    { "name": "i", "type": "sampler2D" } ],
  "outputs": [ { "name": "o", "type": "float", "node": "b" } ], "nodes": [
  { "name": "a", "fragment": "f", "inputs": { "turn": { "graphInput": "t" } } },
  { "name": "b", "fragment": "f", "inputs": { "a": { "graphInput": "x" }, "image": { "graphInput": "i" } } } ] })";

TEST_F(ShaderPlanTest, SaysHowEachValueEnters) {
  const ShaderPlan plan = planShader(*collapsed(kGraph), ShaderStage::pixel, NameStyle::readable);
  std::string text = toUtf8(plan.entryPoint) + "\n";
  for (const IncludedText& include : plan.includes) text += "include " + toUtf8(include.name) + "\n";
  for (const WString& name : plan.missingIncludes) text += "missing " + toUtf8(name) + "\n";
  for (const Varying& varying : plan.varyings) {
    text += "varying " + toUtf8(varying.name) + " " + toUtf8(varying.semantic) + " " +
            std::to_string(varying.location) + (varying.isState ? " state\n" : "\n");
  }
  for (const ConstantBuffer& buffer : plan.buffers) {
    text += "buffer " + std::to_string(buffer.number) + " " + toUtf8(buffer.name);
    for (const BufferMember& member : buffer.members) text += " " + toUtf8(member.port.name);
    text += "\n";
  }
  for (const TexturePair& pair : plan.textures) {
    text += "texture " + std::to_string(pair.number) + " " + toUtf8(pair.texture) + " " +
            toUtf8(pair.sampler) + "\n";
  }
  for (const Port& output : plan.outputs) text += "output " + toUtf8(output.name) + "\n";
  EXPECT_EQ(text, R"(main
include a.h
include lost.h
include sfg_samplers.h
missing lost.h
missing sfg_samplers.h
varying sfg_worldNormal WORLDNORMAL 0 state
varying x GRAPHINPUT0 1
buffer 0 sfg_Uniforms b_turn
buffer 1 sfg_StateUniforms sfg_time
buffer 2 sfg_GraphInputs sfg_input_t
texture 0 sfg_texture_i sampler_sfg_texture_i
output o
)");
  EXPECT_FALSE(plan.inputsAreVariables);
}

/// Direct3D links stages by the order of what they hand over, and nobody hands this over.
TEST_F(ShaderPlanTest, TakesTheFacingBehindWhatAVertexStageGives) {
  writeLibrary("{" +
               fragment("facing", "float a, out float result",
                        "result = sfg_frontFacing ? a : sfg_screenPosition.x * sfg_texCoord0.x;") +
               "}");
  const auto job = collapsed(R"({ "inputs": [ { "name": "x", "type": "float" } ],
    "outputs": [ { "name": "o", "type": "float", "node": "n" } ],
    "nodes": [ { "name": "n", "fragment": "facing", "inputs": { "a": { "graphInput": "x" } } } ] })");
  const auto varyings = [&job](ShaderStage stage) {
    std::string names;
    for (const Varying& varying : planShader(*job, stage, NameStyle::generated).varyings) {
      names += toUtf8(varying.name) + " ";
      if (varying.location != kNotFound) names += std::to_string(varying.location) + " ";
    }
    return names;
  };
  EXPECT_EQ(varyings(ShaderStage::pixel), "sfg_texCoord0 0 sfg_screenPosition x 1 sfg_frontFacing ");
  EXPECT_EQ(varyings(ShaderStage::compute), "sfg_texCoord0 0 sfg_screenPosition sfg_frontFacing x 1 ");
}

TEST_F(ShaderPlanTest, RefusesWhatAStageCannotHave) {
  const std::string three = R"({ "outputs": [ { "name": "a", "type": "float4x4", "node": "n" },
    { "name": "b", "type": "float4x4", "node": "n", "output": "b" },
    { "name": "c", "type": "float", "node": "n", "output": "c" } ], "nodes": [ { "name": "n", "fragment": "m" } ] })";
  EXPECT_EQ(refusal(three, ShaderStage::pixel), "the outputs need 9 render targets; a pixel stage has 8");
  EXPECT_EQ(refusal(three, ShaderStage::compute), "(planned)");
  EXPECT_EQ(refusal(R"({ "outputs": [ { "name": "o", "type": "float", "node": "n" } ],
                         "nodes": [ { "name": "n", "fragment": "lit" } ] })",
                    ShaderStage::pixel),
            "a fragment reads the current light; it needs the light loop (`--tool lightloop`)");
}

TEST_F(ShaderPlanTest, NamesTheRowsOfMatricesAlone) {
  EXPECT_EQ(rowName({TypeID_fmat2, L"float2x2", L"m"}, 1), L"m_row1");
  EXPECT_EQ(rowName({TypeID_float, L"float", L"f"}, 0), L"f");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
