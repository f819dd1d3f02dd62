#include "host/shader/vertex_plan.h"

#include "host/shader/stage_plan_fixture.h"
#include "sfg/host/errors.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

ShaderPlan pixelPlan(const std::vector<Varying>& varyings) {
  ShaderPlan plan;
  plan.functionName = L"shade";
  plan.varyings = varyings;
  return plan;
}

Varying state(const TypeID& type, const wchar_t* name, const wchar_t* semantic = L"STATE") {
  return {type, name, semantic, true, 0};
}

/// A line for each attribute, output and member of a buffer.
std::string listed(const VertexPlan& plan) {
  WString text;
  for (const VertexAttribute& attribute : plan.attributes) {
    text += formatted(L"in %s %s : %s", attribute.type.toString(), attribute.name, attribute.semantic);
    text += attribute.part.empty() ? L"\n" : formatted(L" (%s)\n", attribute.part);
  }
  for (const VertexOutput& output : plan.outputs) {
    text += formatted(L"out %s : %s = %s\n", output.varying.name, output.varying.semantic, output.value);
  }
  for (const ConstantBuffer& buffer : plan.buffers) {
    for (const BufferMember& member : buffer.members)
      text += formatted(L"%s b%Iu: %s\n", buffer.name, buffer.number, member.port.name);
  }
  return toUtf8(text);
}

TEST(VertexPlanTest, PassesGraphInputsAndAddsThePosition) {
  const ShaderPlan pixel = makePlan(ShaderStage::pixel);
  const VertexPlan plan = planVertexStage(pixel, {});
  EXPECT_EQ(plan.functionName, L"shade");
  EXPECT_FALSE(plan.hasDirections);
  EXPECT_EQ(listed(plan), R"(in float3 sfg_position : POSITION (position)
in float2 uv : GRAPHINPUT0
in bool flag : GRAPHINPUT1
out uv : GRAPHINPUT0 = sfg_in.uv
out flag : GRAPHINPUT1 = sfg_in.flag
out sfg_screenPosition : SV_Position = mul(sfg_matWorldViewProj, float4(sfg_in.sfg_position, 1.0))
sfg_VertexUniforms b0: sfg_matWorldViewProj
)");
}

TEST(VertexPlanTest, DerivesStateFromPartsInTheOrderOfTheMesh) {
  ShaderPlan pixel = pixelPlan(
      {state(TypeID_fvec4, L"sfg_screenPosition", L"SV_Position"), state(TypeID_fvec4, L"sfg_vertexColor"),
       state(TypeID_fvec3, L"sfg_worldNormal"), state(TypeID_fvec3, L"sfg_viewDirection")});
  pixel.buffers.resize(2);
  const VertexPlan plan = planVertexStage(pixel, {});
  EXPECT_TRUE(plan.hasDirections);
  EXPECT_EQ(listed(plan),
            R"(in float3 sfg_position : POSITION (position)
in float3 sfg_normal : NORMAL (normal)
in float4 sfg_color : COLOR0 (color)
out sfg_screenPosition : SV_Position = mul(sfg_matWorldViewProj, float4(sfg_in.sfg_position, 1.0))
out sfg_vertexColor : STATE = sfg_in.sfg_color
out sfg_worldNormal : STATE = sfg_unit(mul((float3x3)sfg_matWorldInverseTranspose, sfg_in.sfg_normal))
out sfg_viewDirection : STATE = mul(sfg_matWorld, float4(sfg_in.sfg_position, 1.0)).xyz - sfg_eyePosition
sfg_VertexUniforms b2: sfg_matWorld
sfg_VertexUniforms b2: sfg_matWorldInverseTranspose
sfg_VertexUniforms b2: sfg_matWorldViewProj
sfg_VertexUniforms b2: sfg_eyePosition
)");
}

std::string refusal(const Varying& varying, const MeshLayout& mesh) {
  try {
    planVertexStage(pixelPlan({varying}), mesh);
  } catch (const AssemblyError& error) {
    return error.what();
  }
  return "(none)";
}

TEST(VertexPlanTest, RefusesStateThatTheMeshDoesNotGive) {
  MeshLayout mesh;
  EXPECT_EQ(refusal(state(TypeID_fvec3, L"sfg_worldTangent"), mesh), "(none)");
  mesh.tangent = false;
  EXPECT_EQ(refusal(state(TypeID_fvec3, L"sfg_worldTangent"), mesh),
            "the state variable `sfg_worldTangent` needs `tangent` of the vertices, which the mesh does not "
            "have");
  EXPECT_EQ(refusal(state(TypeID_fvec3, L"sfg_worldNormal"), mesh), "(none)");
  EXPECT_EQ(refusal(state(TypeID_float, L"sfg_unheardOf"), mesh),
            "the vertex stage has no rule for the state variable `sfg_unheardOf`");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
