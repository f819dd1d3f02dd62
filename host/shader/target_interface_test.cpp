#include <gtest/gtest.h>

#include "host/shader/shader_target.h"
#include "sfg/host/reflect.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

CompileOptions glsl330() {
  CompileOptions options;
  options.glslVersion = GlslVersion::glsl330;
  return options;
}

InterfacePlace placeAt(char kind, std::size_t number) {
  InterfacePlace place;
  place.kind = kind;
  place.number = number;
  place.registerName = kind + std::to_string(number);
  return place;
}

ShaderInterface assembledOf(ShaderStage stage) {
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

TEST(TargetInterface, BindsByNameWhereTheLanguageHasNoNumbers) {
  ShaderInterface assembled = assembledOf(ShaderStage::pixel);
  InterfaceAttribute place;
  place.name = "place";
  place.builtin = "fragCoord";
  assembled.attributes.push_back(place);
  const ShaderInterface essl = interfaceFor(assembled, ShaderTarget::essl300);
  EXPECT_EQ(essl.buffers[0].place.binding, std::nullopt);
  EXPECT_EQ(essl.buffers[0].place.registerName, "");
  EXPECT_EQ(essl.buffers[0].variable, "sfg_uniforms");
  EXPECT_EQ(essl.textures[0].type, "sampler2D");
  EXPECT_EQ(essl.textures[0].place.binding, std::nullopt);
  EXPECT_TRUE(essl.samplers.empty());
  EXPECT_EQ(essl.attributes[0].name, "sfg_in_uv");
  EXPECT_EQ(essl.attributes[0].location, std::nullopt);
  EXPECT_EQ(essl.attributes[0].builtin, "");
  EXPECT_EQ(essl.attributes[1].builtin, "fragCoord");
  EXPECT_EQ(essl.renderTargets[0].index, 0u);

  const ShaderInterface glsl = interfaceFor(assembled, ShaderTarget::glsl, glsl330());
  EXPECT_EQ(glsl.textures[0].type, "sampler1D");
  EXPECT_EQ(glsl.textures[0].place.binding, std::nullopt);
  EXPECT_EQ(glsl.attributes[0].location, std::nullopt);
  EXPECT_EQ(glsl.version, "330");

  const ShaderInterface later = interfaceFor(assembled, ShaderTarget::glsl);
  EXPECT_EQ(later.textures[0].place.binding, 2u);
  EXPECT_EQ(later.attributes[0].location, 3u);
  EXPECT_EQ(later.version, "");
}

/// Whatever compiled bytes depend on gives another hash; what does not concern the target does not.
TEST(TargetInterface, HashesTellOptionsApart) {
  ShaderInterface assembled = assembledOf(ShaderStage::pixel);
  assembled.buffers.clear();
  assembled.textures.clear();
  assembled.samplers.clear();
  assembled.attributes.clear();
  const auto hashOf = [&](ShaderTarget target, const CompileOptions& options) {
    return interfaceFor(assembled, target, options).hash;
  };
  CompileOptions model;
  model.shaderModel = ShaderModel::sm60;
  CompileOptions small;
  small.optimization = Optimization::size;
  CompileOptions plain;
  plain.optimization = Optimization::none;
  CompileOptions debug;
  debug.debug = true;
  EXPECT_NE(hashOf(ShaderTarget::glsl, glsl330()), hashOf(ShaderTarget::glsl, {}));
  EXPECT_EQ(hashOf(ShaderTarget::essl, glsl330()), hashOf(ShaderTarget::essl, {}));
  EXPECT_NE(hashOf(ShaderTarget::hlsl, model), hashOf(ShaderTarget::hlsl, {}));
  EXPECT_EQ(hashOf(ShaderTarget::msl, model), hashOf(ShaderTarget::msl, {}));
  const std::string hash = hashOf(ShaderTarget::spirv, {});
  EXPECT_NE(hashOf(ShaderTarget::spirv, small), hash);
  EXPECT_NE(hashOf(ShaderTarget::spirv, plain), hash);
  EXPECT_NE(hashOf(ShaderTarget::spirv, debug), hash);
  EXPECT_NE(hashOf(ShaderTarget::spirv, small), hashOf(ShaderTarget::spirv, plain));
}

TEST(TargetInterface, VersionIsWrittenWhereItWasChosen) {
  const ShaderInterface assembled = assembledOf(ShaderStage::pixel);
  const auto startOf = [](const ShaderInterface& shader) {
    const std::string text = writeInterfaceJson(shader);
    return text.substr(0, text.find("  \"entryPoint\""));
  };
  EXPECT_EQ(startOf(interfaceFor(assembled, ShaderTarget::glsl, glsl330())),
            "{\n  \"target\": \"glsl\",\n  \"version\": \"330\",\n  \"stage\": \"pixel\",\n");
  EXPECT_EQ(startOf(interfaceFor(assembled, ShaderTarget::essl300)),
            "{\n  \"target\": \"essl300\",\n  \"stage\": \"pixel\",\n");
}

TEST(TargetInterface, OldLanguagesHaveNoComputeStage) {
  const std::string essl =
      "GLSL ES 3.00 has no compute stage and no storage buffers; the targets `spirv`, `hlsl`, "
      "`glsl` (4.50), `essl` and `msl` have them";
  const std::string glsl = "GLSL 3.30 has no compute stage and no storage buffers; GLSL 4.50 and the targets "
                           "`spirv`, `hlsl`, `essl` and `msl` have them";
  EXPECT_EQ(refusalOf(ShaderStage::compute, ShaderTarget::essl300), essl);
  EXPECT_EQ(refusalOf(ShaderStage::compute, ShaderTarget::glsl, glsl330()), glsl);
  EXPECT_EQ(refusalOf(ShaderStage::compute, ShaderTarget::glsl), "");
  EXPECT_EQ(refusalOf(ShaderStage::compute, ShaderTarget::essl, glsl330()), "");
  EXPECT_EQ(refusalOf(ShaderStage::pixel, ShaderTarget::essl300), "");
  try {
    interfaceFor(assembledOf(ShaderStage::compute), ShaderTarget::essl300);
    FAIL();
  } catch (const CompileError& error) {
    EXPECT_EQ(error.what(), essl);
  }
}

struct TargetCase {
  ShaderTarget target;
  ShaderStage stage;
  const char* text;
};

class TargetPlacesTest : public testing::TestWithParam<TargetCase> {};

TEST_P(TargetPlacesTest, IsWhatCompilersMakeOfTheAssembledOne) {
  const ShaderInterface assembled = assembledOf(GetParam().stage);
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
INSTANTIATE_TEST_SUITE_P(Targets, TargetPlacesTest, testing::ValuesIn(kCases), nameOf);

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
