#include "host/modules/shader_compiler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "host/shader/shader_target.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr const char* kShader =
    "cbuffer Values : register(b2) { float gain; };\n"
    "Texture2D image : register(t3);\n"
    "SamplerState taps : register(s1);\n"
    "float4 main(float2 uv : UV) : SV_Target { return image.Sample(taps, uv) * gain; }\n";

TEST(ShaderCompilerTest, GivesAModuleAndItsTranslations) {
  const std::vector<std::uint32_t> words = compileToSpirv(kShader, "main", ShaderStage::pixel);
  ASSERT_FALSE(words.empty());
  EXPECT_EQ(words[0], 0x07230203u);
  const std::string bytes = translate(words, ShaderStage::pixel, ShaderTarget::spirv);
  EXPECT_EQ(bytes.size(), 4 * words.size());
  EXPECT_EQ(bytes.substr(0, 4), std::string("\x03\x02\x23\x07", 4));
  EXPECT_EQ(translate(words, ShaderStage::pixel, ShaderTarget::glsl).substr(0, 12), "#version 450");
  EXPECT_EQ(translate(words, ShaderStage::pixel, ShaderTarget::essl).substr(0, 15), "#version 320 es");
  EXPECT_EQ(compileShader(kShader, "main", ShaderStage::pixel, ShaderTarget::msl),
            translate(words, ShaderStage::pixel, ShaderTarget::msl));
}

TEST(ShaderCompilerTest, NamesTheLinesOfATextItRefuses) {
  try {
    compileToSpirv("float a;\nfloat4 main() : SV_Target { return colour; }\n", "main", ShaderStage::pixel);
    FAIL();
  } catch (const CompileError& error) {
    EXPECT_STREQ(error.what(), "the generated shader does not compile");
    EXPECT_TRUE(error.inAssembledText());
    ASSERT_FALSE(error.messages().empty());
    EXPECT_EQ(error.messages()[0].line, 2u);
    EXPECT_EQ(error.messages()[0].text.substr(0, 8), "'colour'");
  }
}

TEST(ShaderCompilerTest, RefusesWhatIsNoModule) {
  EXPECT_THROW(translate({1, 2, 3}, ShaderStage::pixel, ShaderTarget::glsl), CompileError);
  EXPECT_THROW(translate({}, ShaderStage::pixel, ShaderTarget::msl), CompileError);
}

CompileOptions optimisedFor(Optimization optimization, bool debug = false) {
  CompileOptions options;
  options.optimization = optimization;
  options.debug = debug;
  return options;
}

std::string wholeOf(const std::string& hlsl, ShaderTarget target, const CompileOptions& options = {}) {
  return compileShader(hlsl, "main", ShaderStage::pixel, target, options);
}

/// What is said of a shader that is refused, its messages behind it.
std::string refusal(const std::string& hlsl, ShaderTarget target, const CompileOptions& options = {},
                    ShaderStage stage = ShaderStage::pixel) {
  try {
    compileShader(hlsl, "main", stage, target, options);
    return "(none)";
  } catch (const CompileError& error) {
    EXPECT_FALSE(error.inAssembledText());
    std::string text = error.what();
    for (const CompilerMessage& message : error.messages()) text += "\n" + message.text;
    return text;
  }
}

/// The operations of a module, by their numbers.
std::vector<std::uint32_t> operationsOf(const std::vector<std::uint32_t>& module) {
  std::vector<std::uint32_t> operations;
  for (std::size_t at = 5; at < module.size(); at += module[at] >> 16) {
    operations.push_back(module[at] & 0xffffu);
  }
  return operations;
}
constexpr std::uint32_t kOpLine = 8;
constexpr std::uint32_t kOpFunction = 54;
std::size_t countOf(const std::vector<std::uint32_t>& module, std::uint32_t operation) {
  const std::vector<std::uint32_t> all = operationsOf(module);
  return static_cast<std::size_t>(std::count(all.begin(), all.end(), operation));
}
bool holds(const std::vector<std::uint32_t>& module, std::string_view text) {
  return translate(module, ShaderStage::pixel, ShaderTarget::spirv).find(text) != std::string::npos;
}

constexpr const char* kAssembled =
    "cbuffer sfg_Uniforms : register(b2) { float gain; row_major float3x3 turn; };\n"
    "Texture2D image : register(t3);\n"
    "SamplerState sampler_image : register(s3);\n"
    "struct sfg_PixelInput { float2 uv : UV; };\n"
    "struct sfg_PixelOutput { float4 color : SV_Target0; };\n"
    "sfg_PixelOutput main(sfg_PixelInput sfg_in) { sfg_PixelOutput sfg_out; float3 read = image.Sample("
    "sampler_image, sfg_in.uv).xyz; sfg_out.color = float4(mul(read, turn), gain); return sfg_out; }\n";

TEST(ShaderCompilerTest, WritesForWebGl2) {
  EXPECT_EQ(wholeOf(kAssembled, ShaderTarget::essl300), R"(#version 300 es
precision highp float;
precision highp int;

layout(std140) uniform sfg_Uniforms
{
    float gain;
    mat3 turn;
} sfg_uniforms;

uniform highp sampler2D image;

in vec2 sfg_in_uv;
layout(location = 0) out vec4 sfg_out_color;

void main()
{
    sfg_out_color = vec4(sfg_uniforms.turn * texture(image, sfg_in_uv).xyz, sfg_uniforms.gain);
}

)");
}

TEST(ShaderCompilerTest, WritesGlslWithoutNumbers) {
  CompileOptions options;
  options.glslVersion = GlslVersion::glsl330;
  EXPECT_EQ(wholeOf(kAssembled, ShaderTarget::glsl, options), R"(#version 330

layout(std140) uniform sfg_Uniforms
{
    float gain;
    mat3 turn;
} sfg_uniforms;

uniform sampler2D image;

in vec2 sfg_in_uv;
layout(location = 0) out vec4 sfg_out_color;

void main()
{
    sfg_out_color = vec4(sfg_uniforms.turn * texture(image, sfg_in_uv).xyz, sfg_uniforms.gain);
}

)");
}

TEST(ShaderCompilerTest, WritesLaterHlsl) {
  CompileOptions options;
  options.shaderModel = ShaderModel::sm60;
  const std::string text = wholeOf(kShader, ShaderTarget::hlsl, options);
  EXPECT_NE(text.find("cbuffer Values : register(b2, space0)\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Texture2D<float4> image : register(t3, space0);\n"), std::string::npos) << text;
  EXPECT_NE(text.find("SamplerState taps : register(s1, space0);\n"), std::string::npos) << text;
  EXPECT_EQ(wholeOf(kShader, ShaderTarget::hlsl).find("space0"), std::string::npos);
}

TEST(ShaderCompilerTest, WritesMetal21) {
  EXPECT_EQ(wholeOf(kShader, ShaderTarget::msl).substr(0, 23), "#include <metal_stdlib>");
}

/// What is missing, in the shader's words, and where it is there.
TEST(ShaderCompilerTest, TellsWhatOldLanguagesLackAndWhichTargetsHaveIt) {
  CompileOptions options;
  options.glslVersion = GlslVersion::glsl330;
  const std::string essl = "the shader cannot be expressed in GLSL ES 3.00; the targets `spirv`, `hlsl`, "
                           "`glsl` (4.50), `essl` and `msl` can";
  const std::string glsl = "the shader cannot be expressed in GLSL 3.30; the targets `spirv`, `hlsl`, `glsl` "
                           "(4.50), `essl` and `msl` can";
  const std::pair<const char*, const char*> operations[] = {
      {"countbits(bits.x)", "countbits"},     {"reversebits(bits.x)", "reversebits"},
      {"firstbitlow(bits.x)", "firstbitlow"}, {"firstbithigh(bits.x)", "firstbithigh"},
      {"image.Gather(taps, uv).x", "Gather"},
  };
  for (const auto& [call, name] : operations) {
    const std::string shader =
        std::string("cbuffer b { uint4 bits; }; Texture2D image; SamplerState taps; ") +
        "float4 main(float2 uv : UV) : SV_Target { return image.Sample(taps, uv) * " + call + "; }";
    const std::string what = std::string("\nit has no function for `") + name + "`";
    EXPECT_EQ(refusal(shader, ShaderTarget::essl300), essl + what);
    EXPECT_EQ(refusal(shader, ShaderTarget::glsl, options), glsl + what);
    EXPECT_EQ(refusal(shader, ShaderTarget::essl), "(none)");
    EXPECT_EQ(refusal(shader, ShaderTarget::glsl), "(none)");
  }
  const std::string buffer =
      "StructuredBuffer<float4> list : register(t1); float4 main() : SV_Target { return list[1]; }";
  EXPECT_EQ(refusal(buffer, ShaderTarget::essl300), essl + "\nit has no storage buffers: `list`");
  EXPECT_EQ(refusal(buffer, ShaderTarget::glsl, options), glsl + "\nit has no storage buffers: `list`");
  EXPECT_EQ(refusal(buffer, ShaderTarget::glsl), "(none)");
  const std::string image =
      "RWTexture2D<float4> drawn : register(u1); float4 main() : SV_Target { drawn[uint2(1, "
      "1)] = 1; return 1; }";
  const std::string noEssl = "the shader cannot be expressed in GLSL ES 3.00; ";
  EXPECT_EQ(refusal(image, ShaderTarget::essl300),
            noEssl + "the targets `spirv`, `hlsl` and `msl` can\nit has no textures to write to: `drawn`");

  // Words of the compiler where there are no better ones.
  const std::string half = "cbuffer b { uint bits; }; float4 main() : SV_Target { return f16tof32(bits); }";
  EXPECT_EQ(refusal(half, ShaderTarget::essl300), "(none)");
  EXPECT_EQ(refusal(half, ShaderTarget::glsl, options),
            glsl + "\n'unpackHalf2x16' : required extension not requested: GL_ARB_shading_language_packing");
  const std::string name(1020, 'n');
  const std::string attribute = "struct In { float4 " + name +
                                " : A; }; float4 main(In sfg_in) : SV_Target { return "
                                "sfg_in." +
                                name + "; }";
  EXPECT_EQ(refusal(attribute, ShaderTarget::essl300),
            noEssl + "the targets `spirv` and `msl` can\n'' : name too long");

  // Extensions are not there everywhere.
  const std::string wide = "float4 main(float4 a : A) : SV_Target { return (float)((double)a.x * 1.5L); }";
  EXPECT_EQ(
      refusal(wide, ShaderTarget::glsl, options),
      "the shader cannot be expressed in GLSL 3.30; the targets `spirv`, `hlsl`, `glsl` (4.50) and `msl` "
      "can\nit needs the extension `GL_ARB_gpu_shader_fp64`");
}

/// Each operation under the name that HLSL has for it.
TEST(ShaderCompilerTest, NamesOperationsThatOldLanguagesLack) {
  CompileOptions options;
  options.glslVersion = GlslVersion::glsl330;
  const std::pair<const char*, const char*> operations[] = {
      {"countbits(bits.x)", "countbits"},
      {"reversebits(bits.x)", "reversebits"},
      {"firstbitlow(bits.x)", "firstbitlow"},
      {"firstbithigh(bits.x)", "firstbithigh"},
      {"firstbithigh(int(bits.x))", "firstbithigh"},
      {"image.Gather(taps, uv).x", "Gather"},
      {"image.CalculateLevelOfDetail(taps, uv)", "CalculateLevelOfDetail"},
      {"ddx_fine(uv.x)", "ddx_fine"},
      {"ddy_fine(uv.x)", "ddy_fine"},
      {"ddx_coarse(uv.x)", "ddx_coarse"},
      {"ddy_coarse(uv.x)", "ddy_coarse"},
      {"EvaluateAttributeAtCentroid(uv).x", "EvaluateAttributeAtCentroid"},
  };
  for (const auto& [call, name] : operations) {
    const std::string shader =
        std::string("cbuffer b { uint4 bits; }; Texture2D image; SamplerState taps; ") +
        "float4 main(float2 uv : UV) : SV_Target { return " + call + "; }";
    const std::string what = std::string("\nit has no function for `") + name + "`";
    for (const ShaderTarget target : {ShaderTarget::essl300, ShaderTarget::glsl}) {
      const std::string text = refusal(shader, target, options);
      EXPECT_EQ(text.substr(std::min(text.find('\n'), text.size())), what) << text;
    }
    EXPECT_EQ(refusal(shader, ShaderTarget::glsl), "(none)");
  }
}

TEST(ShaderCompilerTest, RefusesComputeStagesThatOldLanguagesLack) {
  const std::string shader = "RWStructuredBuffer<float4> out_ : register(u0); [numthreads(64, 1, 1)] void "
                             "main(uint3 i : SV_DispatchThreadID) { out_[i.x] = 1; }";
  EXPECT_EQ(refusal(shader, ShaderTarget::essl300, {}, ShaderStage::compute),
            refusalOf(ShaderStage::compute, ShaderTarget::essl300));
  EXPECT_EQ(refusal(shader, ShaderTarget::essl, {}, ShaderStage::compute), "(none)");
}

constexpr const char* kTwoCalls =
    "cbuffer Values { float4 gain; float4 unread; };\n"
    "float4 twice(float4 value)\n"
    "{\n"
    "    float4 doubled = value * 2.0;\n"
    "    return doubled;\n"
    "}\n"
    "float4 main(float4 uv : UV) : SV_Target { return twice(uv) * twice(gain); }\n";

TEST(ShaderCompilerTest, KeepsFunctionsWhereNothingIsOptimised) {
  const auto module = [](Optimization optimization) {
    return compileToSpirv(kTwoCalls, "main", ShaderStage::pixel, optimisedFor(optimization));
  };
  EXPECT_EQ(countOf(module(Optimization::speed), kOpFunction), 1u);
  EXPECT_EQ(module(Optimization::speed), compileToSpirv(kTwoCalls, "main", ShaderStage::pixel));
  EXPECT_EQ(countOf(module(Optimization::none), kOpFunction), 3u);  // the front end's own entry point too
  EXPECT_TRUE(holds(module(Optimization::none), "doubled"));
  EXPECT_LT(module(Optimization::size).size(), module(Optimization::speed).size());
  // Members that nothing reads stay where they are.
  for (const Optimization optimization : {Optimization::speed, Optimization::size, Optimization::none}) {
    EXPECT_TRUE(holds(module(optimization), "unread"));
  }
  // Structures with textures are legal only when functions are gone.
  const std::string textured =
      std::string("struct Pair { Texture2D t; SamplerState s; }; Texture2D t0; ") +
      "SamplerState s0; float4 get(Pair p) { return p.t.Sample(p.s, float2(0, 0)); } "
      "float4 main() : SV_Target { Pair p; p.t = t0; p.s = s0; return get(p); }";
  EXPECT_EQ(countOf(compileToSpirv(textured, "main", ShaderStage::pixel, optimisedFor(Optimization::none)),
                    kOpFunction),
            1u);
}

TEST(ShaderCompilerTest, KeepsNamesAndLinesForDebuggers) {
  for (const Optimization optimization : {Optimization::speed, Optimization::size, Optimization::none}) {
    const auto plain = compileToSpirv(kTwoCalls, "main", ShaderStage::pixel, optimisedFor(optimization));
    EXPECT_EQ(countOf(plain, kOpLine), 0u);
    EXPECT_FALSE(holds(plain, kTwoCalls));
    const auto debug =
        compileToSpirv(kTwoCalls, "main", ShaderStage::pixel, optimisedFor(optimization, true));
    EXPECT_GT(countOf(debug, kOpLine), 0u);
    EXPECT_TRUE(holds(debug, kTwoCalls));
    EXPECT_TRUE(holds(debug, "generated"));
  }
  const auto module =
      compileToSpirv(kTwoCalls, "main", ShaderStage::pixel, optimisedFor(Optimization::none, true));
  std::set<std::uint32_t> lines;
  for (std::size_t at = 5; at < module.size(); at += module[at] >> 16) {
    if ((module[at] & 0xffffu) == kOpLine) lines.insert(module[at + 2]);
  }
  EXPECT_EQ(lines, (std::set<std::uint32_t>{3, 4, 5, 7}));
  for (const char* name : {"twice(vf4;", "doubled", "value", "gain", "uv"})
    EXPECT_TRUE(holds(module, name)) << name;
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
