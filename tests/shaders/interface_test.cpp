// Interfaces with everything that the standard fragments and the examples do not use, and that the comparison
// with what compilers read sees what is wrong.

#include <filesystem>
#include <fstream>

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
      [](ShaderInterface& s) { ++*s.attributes.at(0).location; },
      [](ShaderInterface& s) { s.attributes.at(0).type = "float"; },
      [](ShaderInterface& s) { s.attributes.at(0).isUsed = false; },
      [](ShaderInterface& s) { s.buffers.at(0).name += "x"; },
      [](ShaderInterface& s) { s.buffers.at(0).size += 16; },
      [](ShaderInterface& s) {
        InterfacePlace& place = s.buffers.at(0).place;
        place.binding ? ++*place.binding : 0;
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
        place.binding ? ++*place.binding : 0;
        if (!place.registerName.empty()) place.registerName = "t9";
      },
      [](ShaderInterface& s) { s.textures.at(0).type += "x"; },
      [](ShaderInterface& s) { s.textures.at(0).name += "x"; },
      [](ShaderInterface& s) { ++s.renderTargets.at(0).index; },
      [](ShaderInterface& s) { s.renderTargets.at(0).name += "x"; },
  };
  for (const ShaderTarget target :
       {ShaderTarget::spirv, ShaderTarget::hlsl, ShaderTarget::glsl, ShaderTarget::essl, ShaderTarget::msl}) {
    const std::string text = translate(spirv, ShaderStage::pixel, target);
    const Facts found = target == ShaderTarget::spirv ? factsOfModule(spirv)
                        : target == ShaderTarget::msl ? factsOfMetal(text)
                                                      : factsOfTranslation(text, target, ShaderStage::pixel);
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

}  // namespace
}  // namespace shaders_test
