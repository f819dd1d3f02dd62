// Interfaces with everything that the standard fragments and the examples do not use, and that the comparison
// with what compilers read sees what is wrong.

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/documents/shader_names.h"
#include "host/modules/shader_compiler.h"
#include "host/shader/shader_target.h"
#include "tests/shaders/interface_facts.h"
#include "tests/shaders/shader_fixture.h"
#include "tests/support/job_files.h"
#include "tolmsdk/unicode.h"

namespace shaders_test {
namespace {

using namespace sfg::host;

const Json kEveryType = {
    {"everyType",
     {{"language", {"dx11"}},
      {"predefine",
       {"struct Inner { float3 axis; float size; };",
        "struct Outer { Inner inner; float2 more; int counts[3]; float2x3 wide; float3 last; float end; };"}},
      {"includes", {"sfg_samplers.h"}},
      {"stateVariables", Json::array()},
      {"implementation",
       {"void everyType(bool b, int i, uint3 u, float2 f, float3x3 m, sfg_sampler2D s, sfg_sampler1D s1, "
        "sfg_sampler3D s3, sfg_samplerCube sc, Outer o, out bool rb, out int2 ri, out float3x3 rm)",
        "{", "rb = b && !sfg_frontFacing;", "ri = int2(i + o.counts[1], int(u.z));",
        "float3 t = s.image.SampleLevel(s.filtering, f, 0.0).xyz + s1.image.SampleLevel(s1.filtering, f.x, "
        "0.0).xyz + s3.image.SampleLevel(s3.filtering, o.last, 0.0).xyz + sc.image.SampleLevel(sc.filtering, "
        "o.last, 0.0).xyz;",
        "rm = m * (f.x + o.inner.size + dot(o.inner.axis, t) + o.more.y + o.end + o.wide[1].z) * sfg_time;",
        "rm[0] += sfg_screenPosition.xyz + sfg_vertexColor.xyz + mul(sfg_matWorld, sfg_vertexColor).xyz;",
        "rm[1] += n2.y + n3 + (nb ? 1.0 : 0.0) + float(ni) + float(nu.y) + mul(m2, n2).x;",
        "rm[2] += mul(m4, n4).xyz;", "}"}}}}};

/// With `inputs` the values of the node are inputs of the graph, else uniforms of the node.
Json everyType(bool inputs) {
  const std::vector<std::pair<const char*, const char*>> ports = {
      {"b", "bool"},      {"i", "int"},        {"u", "uint3"},      {"f", "float2"},      {"m", "float3x3"},
      {"s", "sampler2D"}, {"s1", "sampler1D"}, {"s3", "sampler3D"}, {"sc", "samplerCube"}};
  Json graph = {{"outputs",
                 {{{"name", "rb"}, {"type", "bool"}, {"node", "a"}},
                  {{"name", "ri"}, {"type", "int2"}, {"node", "a"}, {"output", "ri"}},
                  {{"name", "rm"}, {"type", "float3x3"}, {"node", "a"}, {"output", "rm"}}}},
                {"uniforms",
                 {{{"name", "n3"}, {"type", "float3"}, {"value", {1, 2, 3}}},
                  {{"name", "n2"}, {"type", "float2"}},
                  {{"name", "nb"}, {"type", "bool"}, {"value", true}},
                  {{"name", "ni"}, {"type", "int"}},
                  {{"name", "nu"}, {"type", "uint2"}},
                  {{"name", "m2"}, {"type", "float2x2"}},
                  {{"name", "n4"}, {"type", "float4"}},
                  {{"name", "m4"}, {"type", "float4x4"}}}},
                {"nodes", {{{"name", "a"}, {"fragment", "everyType"}}}}};
  if (!inputs) return graph;
  for (const auto& [name, type] : ports) {
    graph["inputs"].push_back({{"name", name}, {"type", type}});
    graph["nodes"][0]["inputs"][name] = {{"graphInput", name}};
  }
  graph["inputs"].push_back({{"name", "o"}, {"type", "struct"}, {"struct", "Outer"}});
  graph["nodes"][0]["inputs"]["o"] = {{"graphInput", "o"}};
  return graph;
}

class InterfaceTest : public ShaderFixture {
protected:
  JobFiles chosen(bool inputs) const {
    JobFiles settings = this->settings(everyType(inputs));
    define(settings, kEveryType);
    return settings;
  }
};

TEST_F(InterfaceTest, OfEveryTypeIsWhatCompilersRead) {
  for (const bool inputs : {false, true}) {
    for (const ShaderStage stage : {ShaderStage::pixel, ShaderStage::compute}) {
      JobFiles settings = chosen(inputs);
      EXPECT_EQ(compile(settings, stage, true), "");
      settings.functionName = "main";
      EXPECT_EQ(compile(settings, stage, true), "");
      settings.tool = CollapseTool::lightLoop;
      EXPECT_EQ(compile(settings, stage, true), "");
    }
  }
}

/// Every number and name of the interface, changed one at a time, is told from the compilers'.
TEST_F(InterfaceTest, ThatIsWrongIsSeen) {
  CollapseJob job = makeJob(chosen(true));
  job.run();
  const AssembledShader assembled = assembleShader(job, ShaderStage::pixel);
  const std::vector<std::uint32_t> spirv = compileToSpirv(
      TolmSDK::toUtf8(assembled.shader.getCompleteShader()), assembled.entryPoint, ShaderStage::pixel);
  using Change = void (*)(ShaderInterface&);
  const Change changes[] = {
      [](ShaderInterface& s) { s.entryPoint += "x"; },
      [](ShaderInterface& s) { s.attributes.at(0).name += "x"; },
      [](ShaderInterface& s) {
        std::optional<std::size_t>& location = s.attributes.at(0).location;
        location = location ? *location + 1 : 0;
      },
      [](ShaderInterface& s) { s.attributes.at(0).type = "float"; },
      [](ShaderInterface& s) { s.attributes.at(0).isUsed = false; },
      [](ShaderInterface& s) { s.buffers.at(0).name += "x"; },
      [](ShaderInterface& s) { s.buffers.at(0).size += 16; },
      [](ShaderInterface& s) {
        InterfacePlace& place = s.buffers.at(0).place;
        place.binding = place.binding ? *place.binding + 1 : 0;
        if (!place.registerName.empty()) place.registerName = "b9";
      },
      [](ShaderInterface& s) { s.buffers.at(0).members.at(1).offset += 4; },
      [](ShaderInterface& s) { s.buffers.at(0).members.at(1).name += "x"; },
      [](ShaderInterface& s) { s.buffers.at(0).members.at(1).type = "int4"; },
      [](ShaderInterface& s) { s.buffers.at(0).members.at(5).matrixStride = 12; },
      [](ShaderInterface& s) {
        for (InterfaceBuffer& buffer : s.buffers) {
          if (buffer.members.at(0).members.size() > 2) buffer.members[0].members[2].arrayStride = 4;
        }
      },
      [](ShaderInterface& s) {
        InterfacePlace& place = s.textures.at(0).place;
        place.binding = place.binding ? *place.binding + 1 : 0;
        if (!place.registerName.empty()) place.registerName = "t9";
      },
      [](ShaderInterface& s) { s.textures.at(0).type += "x"; },
      [](ShaderInterface& s) { s.textures.at(0).name += "x"; },
      [](ShaderInterface& s) { ++s.renderTargets.at(0).index; },
      [](ShaderInterface& s) { s.renderTargets.at(0).name += "x"; },
  };
  for (const auto& [target, options] : targetVersions(ShaderStage::pixel)) {
    const std::string text = translate(spirv, ShaderStage::pixel, target, options);
    const Facts found = target == ShaderTarget::spirv ? factsOfModule(spirv)
                        : target == ShaderTarget::msl ? factsOfMetal(text)
                                                      : factsOfTranslation(text, target, ShaderStage::pixel);
    ShaderInterface right = reflectShader(assembled, target, options);
    markUsed(right, spirv);
    EXPECT_EQ(difference(factsOf(right), found), "") << targetName(target) << text;
    for (std::size_t i = 0; i < std::size(changes); ++i) {
      ShaderInterface wrong = right;
      changes[i](wrong);
      EXPECT_NE(difference(factsOf(wrong), found), "")
          << targetName(target) << " " << right.version << ", change " << i;
    }
  }
}

TEST_F(InterfaceTest, HashesDifferWithTextTargetAndInterface) {
  const auto hashOf = [](const JobFiles& settings, ShaderStage stage, std::optional<ShaderTarget> target) {
    CollapseJob job = makeJob(settings);
    job.run();
    return reflectShader(assembleShader(job, stage), target).hash;
  };
  const JobFiles settings = chosen(true);
  const std::string hash = hashOf(settings, ShaderStage::pixel, std::nullopt);
  EXPECT_EQ(hash.size(), 40u);
  EXPECT_EQ(hashOf(settings, ShaderStage::pixel, std::nullopt), hash);
  EXPECT_NE(hashOf(settings, ShaderStage::compute, std::nullopt), hash);
  EXPECT_NE(hashOf(settings, ShaderStage::pixel, ShaderTarget::spirv), hash);
  EXPECT_NE(hashOf(settings, ShaderStage::pixel, ShaderTarget::spirv),
            hashOf(settings, ShaderStage::pixel, ShaderTarget::glsl));

  JobFiles otherOrder = settings;
  std::reverse(otherOrder.libraryFolders.begin(), otherOrder.libraryFolders.end());
  EXPECT_EQ(hashOf(otherOrder, ShaderStage::pixel, std::nullopt), hash);
}

TEST_F(InterfaceTest, TellsWhereValuesComeFrom) {
  JobFiles settings = this->settings({{"outputs", {{{"name", "color"}, {"type", "float3"}, {"node", "lit"}}}},
                                      {"nodes", {{{"name", "lit"}, {"fragment", "ggxSurface"}}}}});
  light(settings,
        {{"lights", {{{"name", "n0"}, {"fragment", "directionalLight"}, {"profile", "sfg_Light"}}}}});
  CollapseJob job = makeJob(settings);
  job.run();
  std::map<std::string, InterfaceOrigin> origins;
  for (const InterfaceBuffer& buffer : assembleShader(job, ShaderStage::pixel).reflection.buffers) {
    for (const InterfaceMember& member : buffer.members) origins[member.name] = member.origin;
  }
  EXPECT_EQ(origins.at("light_axisn0").kind, "light");
  EXPECT_EQ(origins.at("light_axisn0").path(), "n0.light_axis");
  EXPECT_EQ(origins.at("light_axisn0").fragment, "directionalLight");
  EXPECT_EQ(origins.at("roughnessn0").kind, "node");
  EXPECT_EQ(origins.at("roughnessn0").path(), "lit.roughness");
  EXPECT_EQ(origins.at("roughnessn0").fragment, "ggxSurface");
  EXPECT_EQ(origins.at("sfg_eyePosition").kind, "stateVariable");
  EXPECT_EQ(origins.at("sfg_eyePosition").path(), "sfg_eyePosition");
}

/// The module's words without those that only name things.
std::vector<std::uint32_t> withoutNames(const std::vector<std::uint32_t>& module) {
  constexpr std::size_t kHeader = 5;
  constexpr std::uint32_t kName = 5;
  constexpr std::uint32_t kMemberName = 6;
  std::vector<std::uint32_t> words(module.begin(), module.begin() + kHeader);
  for (std::size_t at = kHeader; at < module.size(); at += module[at] >> 16) {
    const std::uint32_t operation = module[at] & 0xffffu;
    if (operation == kName || operation == kMemberName) continue;
    words.insert(words.end(), module.begin() + static_cast<std::ptrdiff_t>(at),
                 module.begin() + static_cast<std::ptrdiff_t>(at + (module[at] >> 16)));
  }
  return words;
}

TEST_F(InterfaceTest, ReadableNamesChangeNothingElse) {
  for (const auto& file : std::filesystem::directory_iterator("examples/materials")) {
    if (file.path().extension() != ".json") continue;
    std::ifstream stream(file.path());
    JobFiles lit = settings(Json::parse(stream));
    light(lit, environmentOf(4));
    CollapseJob job = makeJob(lit);
    job.run();
    std::vector<std::vector<std::uint32_t>> modules;
    for (const NameStyle names : {NameStyle::generated, NameStyle::readable}) {
      const AssembledShader assembled = assembleShader(job, ShaderStage::pixel, names);
      EXPECT_EQ(assembled.generatedNames.empty(), names == NameStyle::generated) << file.path();
      modules.push_back(withoutNames(compileToSpirv(TolmSDK::toUtf8(assembled.shader.getCompleteShader()),
                                                    assembled.entryPoint, ShaderStage::pixel)));
    }
    EXPECT_TRUE(modules[0] == modules[1]) << file.path();
  }
}

/// Whether HLSL refuses a variable of that name.
bool isWordOfHlsl(const std::string& word) {
  try {
    compileToSpirv("cbuffer b { float " + word + "; }; float4 main() : SV_Target { return " + word + "; }",
                   "main", ShaderStage::pixel);
    compileToSpirv("Texture2D " + word + "; SamplerState s; float4 main() : SV_Target { return " + word +
                       ".Sample(s, float2(0.5, 0.5)); }",
                   "main", ShaderStage::pixel);
    return false;
  } catch (const CompileError&) {
    return true;
  }
}

/// Whatever graph, nodes and uniforms are called, every target has the names that the interface says.
TEST_F(InterfaceTest, NamesAreKeywordsOfNoTarget) {
  const std::vector<std::string> words = {"sample",      "kernel",
                                          "texture",     "buffer",
                                          "input",       "output",
                                          "filter",      "common",
                                          "vec3",        "float3x4",
                                          "half",        "device",
                                          "constant",    "fragment",
                                          "vertex",      "thread",
                                          "uniform",     "varying",
                                          "attribute",   "in",
                                          "out",         "inout",
                                          "flat",        "precise",
                                          "lowp",        "class",
                                          "template",    "union",
                                          "operator",    "this",
                                          "half4",       "mix",
                                          "clamp",       "saturate",
                                          "lerp",        "frac",
                                          "fract",       "rsqrt",
                                          "select",      "main",
                                          "main0",       "position",
                                          "color",       "access",
                                          "bias",        "level",
                                          "abs",         "min",
                                          "assert",      "typename",
                                          "constexpr",   "nullptr",
                                          "auto",        "register",
                                          "row_major",   "packoffset",
                                          "cbuffer",     "SamplerState",
                                          "Texture2D",   "matrix",
                                          "vector",      "technique",
                                          "pass",        "string",
                                          "gl_Color",    "a__b",
                                          "_1",          "isnan",
                                          "active",      "partition",
                                          "resource",    "patch",
                                          "not",         "and",
                                          "xor",         "goto",
                                          "sizeof",      "enum",
                                          "long",        "short",
                                          "unsigned",    "signed",
                                          "double",      "typedef",
                                          "static_cast", "discard_fragment",
                                          "extract_bits"};
  std::string sum = "result = 0.0";
  Json graph = {{"outputs", {{{"name", "result"}, {"type", "float"}, {"node", "row"}}}},
                {"nodes", Json::array()}};
  std::string parameters;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string number = std::to_string(i);
    parameters += "float p" + number + ", ";
    sum += " + p" + number;
  }
  // Nodes are called after the words, too; the last is fed by them all.
  Json last = {{"name", "row"}, {"fragment", "sumOfAll"}, {"inputs", Json::object()}};
  for (std::size_t i = 0; i < words.size(); ++i) {
    graph["nodes"].push_back({{"name", words[i]}, {"fragment", "passOn"}});
    last["inputs"]["p" + std::to_string(i)] = {{"node", words[i]}};
  }
  graph["nodes"].push_back(last);
  JobFiles settings = this->settings(graph);
  const auto code = [](const std::string& prototype, const std::string& body) {
    return Json({{"language", {"dx11"}}, {"implementation", {prototype, "{", body, "}"}}});
  };
  define(settings,
         {{"passOn", code("void passOn(float major, float x, out float result)", "result = major * x;")},
          {"sumOfAll", code("void sumOfAll(" + parameters + "out float result)", sum + ";")}});
  EXPECT_EQ(compile(settings, ShaderStage::pixel, true), "");

  // The graph's own uniforms, which code names. HLSL itself refuses its keywords.
  for (const char* word :
       {"kernel", "buffer", "filter", "common", "device", "constant", "mix", "fract", "level", "access",
        "active", "partition", "patch", "fragment", "vertex", "attribute", "varying"}) {
    Json one = {{"outputs", {{{"name", "result"}, {"type", "float"}, {"node", "n"}}}},
                {"uniforms", {{{"name", word}, {"type", "float"}}}},
                {"nodes", {{{"name", "n"}, {"fragment", "namesIt"}}}}};
    JobFiles own = this->settings(one);
    define(own, {{"namesIt", code("void namesIt(out float result)", std::string("result = ") + word + ";")}});
    EXPECT_EQ(compile(own, ShaderStage::pixel, true), "") << word;
  }
}

/// Uniforms and textures of the graph, which code names, are called after words of old versions of GLSL: as
/// many of them as HLSL takes for names.
TEST_F(InterfaceTest, NamesAreNoWordsOfOldVersionsOfGlsl) {
  std::istringstream words(
      "const uniform layout centroid flat smooth break continue do for while switch case default "
      "if else in out inout float int void bool true false invariant discard return mat2 mat3 "
      "mat4 mat2x2 mat2x3 mat2x4 mat3x2 mat3x3 mat3x4 mat4x2 mat4x3 mat4x4 vec2 vec3 vec4 ivec2 "
      "ivec3 ivec4 bvec2 bvec3 bvec4 uint uvec2 uvec3 uvec4 lowp mediump highp precision "
      "sampler2D sampler3D samplerCube sampler2DShadow samplerCubeShadow sampler2DArray "
      "sampler2DArrayShadow isampler2D isampler3D isamplerCube isampler2DArray usampler2D "
      "usampler3D usamplerCube usampler2DArray struct attribute varying coherent volatile "
      "restrict readonly writeonly resource atomic_uint noperspective patch sample subroutine "
      "common partition active asm class union enum typedef template this goto inline noinline "
      "public static extern external interface long short double half fixed unsigned superp input "
      "output hvec2 hvec3 hvec4 dvec2 dvec3 dvec4 fvec2 fvec3 fvec4 sampler3DRect filter image1D "
      "image2D image3D imageCube iimage1D iimage2D iimage3D iimageCube uimage1D uimage2D uimage3D "
      "uimageCube image1DArray image2DArray iimage1DArray iimage2DArray uimage1DArray "
      "uimage2DArray imageBuffer iimageBuffer uimageBuffer sampler1D sampler1DShadow "
      "sampler1DArray sampler1DArrayShadow isampler1D isampler1DArray usampler1D usampler1DArray "
      "sampler2DRect sampler2DRectShadow isampler2DRect usampler2DRect samplerBuffer "
      "isamplerBuffer usamplerBuffer sampler2DMS isampler2DMS usampler2DMS sampler2DMSArray "
      "isampler2DMSArray usampler2DMSArray sizeof cast namespace using image1DShadow "
      "image2DShadow image1DArrayShadow image2DArrayShadow row_major samplerCubeArray "
      "samplerCubeArrayShadow isamplerCubeArray usamplerCubeArray imageCubeArray iimageCubeArray "
      "uimageCubeArray image2DRect iimage2DRect uimage2DRect image2DMS iimage2DMS uimage2DMS "
      "image2DMSArray iimage2DMSArray uimage2DMSArray dmat2 dmat3 dmat4 dmat2x2 dmat2x3 dmat2x4 "
      "dmat3x2 dmat3x3 dmat3x4 dmat4x2 dmat4x3 dmat4x4 buffer shared precise radians degrees sin "
      "cos tan asin acos atan sinh cosh tanh asinh acosh atanh pow exp log exp2 log2 sqrt "
      "inversesqrt abs sign floor trunc round roundEven ceil fract mod modf min max clamp mix "
      "step smoothstep isnan isinf floatBitsToInt floatBitsToUint intBitsToFloat uintBitsToFloat "
      "packSnorm2x16 unpackSnorm2x16 packUnorm2x16 unpackUnorm2x16 packHalf2x16 unpackHalf2x16 "
      "length distance dot cross normalize faceforward reflect refract matrixCompMult "
      "outerProduct transpose determinant inverse lessThan lessThanEqual greaterThan "
      "greaterThanEqual equal notEqual any all not textureSize texture textureProj textureLod "
      "textureOffset texelFetch texelFetchOffset textureProjOffset textureLodOffset "
      "textureProjLod textureProjLodOffset textureGrad textureGradOffset textureProjGrad "
      "textureProjGradOffset dFdx dFdy fwidth noise1 noise2 noise3 noise4 ftransform EmitVertex "
      "EndPrimitive texture1D texture1DProj texture1DLod texture1DProjLod texture2D texture2DProj "
      "texture2DLod texture2DProjLod texture3D texture3DProj texture3DLod texture3DProjLod "
      "textureCube textureCubeLod shadow1D shadow2D shadow1DProj shadow2DProj shadow1DLod "
      "shadow2DLod shadow1DProjLod shadow2DProjLod texture2DGradARB");
  std::string sum = "result = 0.0";
  std::vector<std::string> uniforms;
  std::vector<std::string> textures;
  for (std::string word; words >> word;) {
    if (!nameFault(word, false).empty() || isWordOfHlsl(word)) continue;  // refused by documents or code
    // The first letter shares them out, so that textures stay few.
    if (word[0] == 's' || word[0] == 't') {
      if (textures.size() < 12) textures.push_back(word);
    } else {
      uniforms.push_back(word);
    }
  }
  ASSERT_EQ(textures.size(), 12u);
  ASSERT_GT(uniforms.size(), 100u);
  Json graph = {{"outputs", {{{"name", "result"}, {"type", "float"}, {"node", "n"}}}},
                {"uniforms", Json::array()},
                {"nodes", {{{"name", "n"}, {"fragment", "namesThem"}}}}};
  for (const std::string& name : uniforms) {
    sum += " + " + name;
    graph["uniforms"].push_back({{"name", name}, {"type", "float"}});
  }
  for (const std::string& name : textures) {
    sum += " + " + name + ".Sample(sampler_" + name + ", float2(0.5, 0.5)).x";
    graph["uniforms"].push_back({{"name", name}, {"type", "sampler2D"}});
  }
  JobFiles settings = this->settings(graph);
  define(settings, {{"namesThem",
                     {{"language", {"dx11"}},
                      {"implementation", {"void namesThem(out float result)", "{", sum + ";", "}"}}}}});
  EXPECT_EQ(compile(settings, ShaderStage::pixel, true), "");
  EXPECT_EQ(compile(settings, ShaderStage::pixel, true, Optimization::none), "");
}

}  // namespace
}  // namespace shaders_test
