#include "host/shader/interface_builder.h"

#include "host/shader/stage_plan_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string describe(const InterfaceMember& member) {
  return member.name + " " + member.type + " " + std::to_string(member.offset) + "+" +
         std::to_string(member.size) + " " + member.origin.kind + ":" + member.origin.path() + "\n";
}

TEST(InterfaceBuilderTest, DescribesAPixelStage) {
  const ShaderInterface shader = interfaceOf(makePlan(ShaderStage::pixel));
  EXPECT_EQ(shader.entryPoint, "main");
  EXPECT_EQ(shader.groupSize, 0u);
  std::string text;
  for (const InterfaceAttribute& attribute : shader.attributes) {
    text += attribute.name + " " + attribute.type + " " + attribute.builtin +
            (attribute.isFlat ? " flat " : " ") + attribute.origin.kind + " " + attribute.meaning + "\n";
  }
  for (const InterfaceRenderTarget& target : shader.renderTargets) {
    text += std::to_string(target.index) + " " + target.name + " " + target.type + " " +
            (target.row ? std::to_string(*target.row) : "-") + "\n";
  }
  EXPECT_EQ(text, R"(sfg_frontFacing bool frontFacing stateVariable whether the front of the surface is seen
uv float2  graphInput 
flag uint  flat graphInput 
0 color float3 -
1 lit uint -
2 turn_row0 float2 0
3 turn_row1 float2 1
)");
  EXPECT_TRUE(shader.buffers.empty());
}

TEST(InterfaceBuilderTest, DescribesTheElementsOfAComputeStage) {
  ShaderPlan plan = makePlan(ShaderStage::compute);
  plan.textures = {{TypeID_samplerCube, L"sky", L"sampler_sky", 0, {}}};
  const ShaderInterface shader = interfaceOf(plan);
  EXPECT_EQ(shader.groupSize, kComputeGroupSize);
  std::string text;
  for (const InterfaceBuffer& buffer : shader.buffers) {
    text += buffer.name + " " + buffer.place.registerName + " " + std::to_string(buffer.size) + "\n";
    for (const InterfaceMember& member : buffer.members) text += describe(member);
  }
  EXPECT_EQ(text, R"(sfg_inputs t1 48
sfg_frontFacing uint4 0+16 stateVariable:sfg_frontFacing
uv float4 16+16 graphInput:uv
flag uint4 32+16 graphInput:flag
sfg_outputs u0 64
color float4 0+16 graphOutput:color
lit uint4 16+16 graphOutput:lit
turn_row0 float4 32+16 graphOutput:turn
turn_row1 float4 48+16 graphOutput:turn
)");
  EXPECT_EQ(shader.textures.at(0).type, "textureCube");
  EXPECT_EQ(shader.samplers.at(0).texture, "sky");
  EXPECT_TRUE(shader.attributes.empty());
}

TEST(InterfaceBuilderTest, TellsWhereUniformsLieAndWhatTheyStandFor) {
  PortMetadata port;
  port.label = "Gain";
  AValue gain(TypeID_fvec2);
  gain.set(1, 0.5);
  const ValueOrigin origin{ValueOrigin::Kind::node, L"a", L"f", L"gain", &port};
  ShaderPlan plan = makePlan(ShaderStage::pixel);
  plan.predefines = L"struct Part { float a; float3 b; };";
  plan.buffers = makeBuffers(L"sfg_Uniforms", {{{TypeID_fvec2, L"float2", L"gain"}, origin, gain},
                                               {{TypeID_fmat3, L"float3x3", L"turn"}, {}, AValue()},
                                               {{TypeID_nil, L"Part", L"part"}, {}, AValue()},
                                               {{TypeID_nil, L"Lost", L"lost"}, {}, AValue()}});
  const ShaderInterface shader = interfaceOf(plan);
  std::string text;
  for (const InterfaceBuffer& buffer : shader.buffers) {
    text += buffer.name + " " + std::to_string(buffer.size) + (buffer.isComplete ? "\n" : " incomplete\n");
    for (const InterfaceMember& member : buffer.members) {
      text += describe(member);
      for (const InterfaceMember& part : member.members) text += "  " + describe(part);
    }
  }
  EXPECT_EQ(text, R"(sfg_Uniforms_part 32
part Part 0+32 :
  a float 0+4 :
  b float3 16+12 :
sfg_Uniforms_lost 0 incomplete
lost Lost 0+0 :
sfg_Uniforms 64
gain float2 0+8 node:a.gain
turn float3x3 16+48 :
)");
  const InterfaceMember& member = shader.buffers.back().members.at(0);
  EXPECT_EQ(member.value, (std::vector<double>{0.0, 0.5}));
  EXPECT_EQ(member.origin.port, port);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
