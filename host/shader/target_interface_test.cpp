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

ShaderInterface assembledOf(ShaderStage stage) {
  ShaderInterface shader;
  shader.stage = stage;
  shader.entryPoint = "main";
  shader.hash = "0123456789012345678901234567890123456789";
  InterfaceBuffer buffer;
  buffer.name = "sfg_Uniforms";
  buffer.place.registerName = "b0";
  shader.buffers = {buffer};
  InterfacePlace texture;
  texture.kind = 't';
  texture.number = 2;
  texture.registerName = "t2";
  InterfacePlace sampler = texture;
  sampler.kind = 's';
  sampler.registerName = "s2";
  shader.textures = {{"picture", "texture1D", texture, {}}};
  shader.samplers = {{"sampler_picture", "picture", sampler, {}}};
  InterfaceAttribute uv;
  uv.name = "uv";
  uv.semantic = "TEXCOORD0";
  uv.location = 0;
  InterfaceAttribute place;
  place.name = "place";
  place.builtin = "fragCoord";
  shader.attributes = {uv, place};
  InterfaceRenderTarget target;
  target.name = "color";
  shader.renderTargets = {target};
  return shader;
}

TEST(TargetInterface, BindsByNameWhereTheLanguageHasNoNumbers) {
  const ShaderInterface assembled = assembledOf(ShaderStage::pixel);
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
  EXPECT_EQ(later.attributes[0].location, 0u);
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

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
