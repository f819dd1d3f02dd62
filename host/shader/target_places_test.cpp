#include <gtest/gtest.h>

#include "host/shader/shader_target.h"
#include "sfg/host/reflect.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

InterfacePlace placeAt(char kind, std::size_t number) {
  InterfacePlace place;
  place.kind = kind;
  place.number = number;
  place.registerName = kind + std::to_string(number);
  return place;
}

ShaderInterface makeInterface(ShaderStage stage) {
  ShaderInterface shader;
  shader.stage = stage;
  shader.entryPoint = "main";
  shader.hash = "assembled";
  InterfaceBuffer buffer;
  buffer.name = "sfg_Uniforms";
  buffer.place = placeAt('b', 1);
  buffer.members.resize(1);
  buffer.members[0].name = "gain";
  shader.buffers = {buffer};
  buffer.kind = InterfaceBuffer::Kind::output;
  buffer.name = "sfg_outputs";
  buffer.place = placeAt('u', 0);
  if (stage == ShaderStage::compute) shader.buffers.push_back(buffer);
  InterfaceTexture texture;
  texture.name = "image";
  texture.type = "texture1D";
  texture.place = placeAt('t', 2);
  shader.textures = {texture};
  InterfaceSampler sampler;
  sampler.name = "sampler_image";
  sampler.place = placeAt('s', 2);
  shader.samplers = {sampler};
  InterfaceAttribute attribute;
  attribute.name = "uv";
  attribute.semantic = "GRAPHINPUT0";
  attribute.location = 3;
  shader.attributes = {attribute};
  InterfaceRenderTarget target;
  target.name = "color";
  shader.renderTargets = {target};
  return shader;
}

std::string describe(const InterfacePlace& place) {
  const auto number = [](const std::optional<std::size_t>& value) {
    return value ? std::to_string(*value) : "-";
  };
  return " set " + number(place.set) + " binding " + number(place.binding) + " " + place.registerName + "\n";
}

std::string describe(const ShaderInterface& shader) {
  std::string text = shader.entryPoint + "\n";
  for (const InterfaceAttribute& attribute : shader.attributes)
    text += attribute.name + " " + attribute.semantic + "\n";
  for (const InterfaceBuffer& buffer : shader.buffers) {
    text += buffer.name + " " + buffer.variable + describe(buffer.place);
    for (const InterfaceMember& member : buffer.members) text += "  " + member.name + "\n";
  }
  for (const InterfaceTexture& texture : shader.textures)
    text += texture.name + " " + texture.type + describe(texture.place);
  for (const InterfaceSampler& sampler : shader.samplers) text += sampler.name + describe(sampler.place);
  for (const InterfaceRenderTarget& target : shader.renderTargets) text += target.name + "\n";
  return text;
}

struct TargetCase {
  ShaderTarget target;
  ShaderStage stage;
  const char* text;
};

class TargetInterfaceTest : public testing::TestWithParam<TargetCase> {};

TEST_P(TargetInterfaceTest, IsWhatCompilersMakeOfTheAssembledOne) {
  const ShaderInterface assembled = makeInterface(GetParam().stage);
  const ShaderInterface shader = interfaceFor(assembled, GetParam().target);
  EXPECT_EQ(describe(shader), GetParam().text);
  EXPECT_EQ(shader.target, GetParam().target);
  EXPECT_EQ(shader.hash.size(), 40u);
}

const TargetCase kCases[] = {
    {ShaderTarget::hlsl, ShaderStage::pixel, R"text(main
sfg_in_uv TEXCOORD3
sfg_Uniforms  set - binding - b1
  sfg_uniforms_gain
image texture1D set - binding - t2
sampler_image set - binding - s2
sfg_out_color
)text"},
    {ShaderTarget::spirv, ShaderStage::compute, R"text(main
sfg_in_uv 
sfg_Uniforms sfg_uniforms set 0 binding 1 
  gain
sfg_outputs  set 0 binding 80 
  gain
image texture1D set 0 binding 18 
sampler_image set 0 binding 50 
sfg_out_color
)text"},
    {ShaderTarget::glsl, ShaderStage::compute, R"text(main
sfg_in_uv 
sfg_Uniforms sfg_uniforms set - binding 1 
  gain
sfg_outputs  set - binding 80 
  gain
image sampler1D set - binding 2 
sfg_out_color
)text"},
    {ShaderTarget::essl, ShaderStage::pixel, R"text(main
sfg_in_uv 
sfg_Uniforms sfg_uniforms set - binding 1 
  gain
image sampler2D set - binding 2 
sfg_out_color
)text"},
    {ShaderTarget::msl, ShaderStage::compute, R"text(main0
sfg_in_uv user(locn3)
sfg_Uniforms sfg_uniforms set - binding 1 
  gain
sfg_outputs  set - binding 24 
  gain
spvBufferSizeConstants  set - binding 25 
image texture1D set - binding 2 
sampler_image set - binding 2 
sfg_out_color
)text"},
};

std::string nameOf(const testing::TestParamInfo<TargetCase>& info) { return targetName(info.param.target); }
INSTANTIATE_TEST_SUITE_P(Targets, TargetInterfaceTest, testing::ValuesIn(kCases), nameOf);

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
