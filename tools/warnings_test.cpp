// Warnings: each for a graph made to deserve it, and none for its nearest sound neighbour.

#include <gmock/gmock.h>

#include <filesystem>
#include <ostream>
#include <sstream>

#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

struct WarningCase {
  const char* name;
  const char* graph;
  const char* environment;
  const char* arguments;
  const char* warnings;
};

std::ostream& operator<<(std::ostream& out, const WarningCase& warning) { return out << warning.name; }

// "lit" and "lamp" of the test library are a surface with the profile `Lamp` and its light.
constexpr const char* kFragments = R"json({
  "glow": { "profiles": [
    { "language": ["dx11"], "predefine": ["struct Glow { float3 c; };"], "implementation": [
      "void glow(float3 albedo, out Glow result)", "{", "result.c = albedo;", "}" ] },
    { "name": "Lamp", "language": ["dx11"], "predefine": ["struct Glow { float3 c; };"], "implementation": [
      "void glow(float3 albedo, out Glow result)", "{", "result.c = albedo * sfg_currentLight.color;", "}" ] } ], "ports": { "albedo": { "value": [0, 0, 0] } } },
  "unglow": { "language": ["dx11"], "predefine": ["struct Glow { float3 c; };"], "implementation": [
    "void unglow(Glow glow, out float3 result)", "{", "result = glow.c;", "}" ] },
  "always": { "language": ["dx11"], "implementation": [
    "void always(out float3 result)", "{", "result = sfg_currentLight.color;", "}" ] },
  "scaled": { "language": ["dx11"], "uniforms": [ { "name": "al", "type": "float" } ], "implementation": [
    "void scaled(out float3 result)", "{", "float scale = al;", "result = scale;", "}" ] },
  "helped": { "language": ["dx11"], "predefine": ["float one() { return 1.0; }", "float oneHalf() { return 0.5; }"],
    "implementation": [ "void helped(out float3 result)", "{", "result = one() * oneHalf();", "}" ] },
  "textured": { "language": ["dx11"], "uniforms": [ { "name": "picture", "type": "sampler2D" } ], "implementation": [
    "void textured(out float3 result)", "{", "result = picture.SampleLevel(sampler_picture, float2(0, 0), 0).rgb;", "}" ] },
  "raw": { "language": ["dx11"], "predefine": ["// a constant", "#define RAW 1", "static const float rawConstant = 1.0;"],
    "implementation": [ "void raw(float3 color, out float3 result)", "{", "result = color * rawConstant;", "}" ], "ports": { "color": { "value": [0, 0, 0] } } },
  "buffered": { "language": ["dx11"], "predefine": ["cbuffer Own : register(b7) { float own; };"],
    "implementation": [ "void buffered(float3 color, out float3 result)", "{", "result = color * own;", "}" ], "ports": { "color": { "value": [0, 0, 0] } } },
  "filtered": { "language": ["dx11"], "predefine": ["SamplerState filterState : register(s7);"],
    "implementation": [ "void filtered(float3 color, out float3 result)", "{", "result = color;", "}" ], "ports": { "color": { "value": [0, 0, 0] } } },
  "msl": { "mode": "metaSL", "language": ["dx11"], "implementation": [
    "void msl(out float3 result)", "{", "result = float3(0, 0, 0);", "}" ] },
  "dimmed": { "uniforms": [ { "name": "dim", "type": "float" }, { "name": "unread", "type": "float" } ], "profiles": [
    { "language": ["dx11"], "implementation": ["void dimmed(out float3 result)", "{", "result = dim;", "}" ] },
    { "name": "msl_light", "language": ["dx11"], "implementation": [
      "void dimmedLight(float3 Pw, float3 Nw, out Light_iterator light)", "{", "light.msl_shadow = dim;", "}" ] } ] },
  "macro": { "language": ["dx11"], "predefine": ["// only a macro", "#define MACRO 1"],
    "implementation": [ "void macro(float3 color, out float3 result)", "{", "result = color * MACRO;", "}" ], "ports": { "color": { "value": [0, 0, 0] } } }
})json";

class WarningTest : public CommandTest, public testing::WithParamInterface<WarningCase> {};

TEST_P(WarningTest, SaysWhatIsWrong) {
  const WarningCase& warning = GetParam();
  writeLibrary();
  write("lib/warnings.fraglib", kFragments);
  write("graph.json", warning.graph);
  write("scene.json", warning.environment);
  const CommandRun result =
      run(std::string("collapse graph.json -L lib --environment scene.json ") + warning.arguments);
  EXPECT_EQ(result.err, warning.warnings);
  EXPECT_EQ(result.status, 0);
}

constexpr const char* kNoLight = "{}";
constexpr const char* kOneLight =
    R"({ "lights": [ { "name": "key", "fragment": "lamp", "profile": "Lamp" } ] })";
constexpr const char* kTwoLights = R"({ "lights": [ { "name": "key", "fragment": "lamp", "profile": "Lamp" },
  { "name": "fill", "fragment": "lamp", "profile": "Lamp" } ] })";
constexpr const char* kLoop = "--tool lightloop";

constexpr const char* kInlineAtOutput = R"({ "outputs": [ { "name": "x", "type": "float", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "twice", "interface": {
    "inputs": [ { "name": "a", "type": "float", "value": 0 } ], "outputs": [ { "name": "r", "type": "float" } ] } } ] })";
constexpr const char* kUnlitBetween = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "c" } ],
  "nodes": [ { "name": "a", "fragment": "lit" },
    { "name": "b", "fragment": "grade", "inputs": { "color": { "node": "a" } } },
    { "name": "c", "fragment": "lit", "inputs": { "albedo": { "node": "b" } } } ] })";
constexpr const char* kLitOnLit = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "c" } ],
  "nodes": [ { "name": "a", "fragment": "lit" },
    { "name": "b", "fragment": "lit", "inputs": { "albedo": { "node": "a" } } },
    { "name": "c", "fragment": "grade", "inputs": { "color": { "node": "b" } } } ] })";
constexpr const char* kLitAtOutputAndInLit = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" },
    { "name": "y", "type": "float3", "node": "b" } ],
  "nodes": [ { "name": "a", "fragment": "lit" },
    { "name": "b", "fragment": "lit", "inputs": { "albedo": { "node": "a" } } } ] })";
constexpr const char* kLit = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "lit" } ] })";
constexpr const char* kUnlit = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint" } ] })";
constexpr const char* kAlways = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "always" } ] })";
constexpr const char* kGraphInput = R"({ "inputs": [ { "name": "albedo", "type": "float3" } ],
  "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "lit", "inputs": { "albedo": { "graphInput": "albedo" } } } ] })";
constexpr const char* kStructure = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "b" } ],
  "nodes": [ { "name": "a", "fragment": "glow" },
    { "name": "b", "fragment": "unglow", "inputs": { "glow": { "node": "a" } } } ] })";
constexpr const char* kScaled = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "scaled" } ] })";
constexpr const char* kHelped = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "helped" } ] })";
constexpr const char* kTextured = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "textured" } ] })";
constexpr const char* kRawOnce = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "raw" }, { "name": "unused", "fragment": "raw" } ] })";
constexpr const char* kRawTwice = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "b" } ],
  "nodes": [ { "name": "a", "fragment": "raw" },
    { "name": "b", "fragment": "raw", "inputs": { "color": { "node": "a" } } } ] })";
constexpr const char* kBufferedTwice = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "b" } ],
  "nodes": [ { "name": "a", "fragment": "buffered" },
    { "name": "b", "fragment": "buffered", "inputs": { "color": { "node": "a" } } } ] })";
constexpr const char* kFilteredTwice = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "b" } ],
  "nodes": [ { "name": "a", "fragment": "filtered" },
    { "name": "b", "fragment": "filtered", "inputs": { "color": { "node": "a" } } } ] })";
constexpr const char* kMacroTwice = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "b" } ],
  "nodes": [ { "name": "a", "fragment": "macro" },
    { "name": "b", "fragment": "macro", "inputs": { "color": { "node": "a" } } } ] })";

constexpr const char* kMetaSL = R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "msl" } ] })";
constexpr const char* kDimmedLights = R"({ "lights": [ { "name": "key", "fragment": "dimmed" },
  { "name": "fill", "fragment": "dimmed" } ] })";

const WarningCase kCases[] = {
    {"InlineFragmentAtOutputOfDefaultToolIsSound", kInlineAtOutput, kNoLight, "", ""},
    {"InlineFragmentAtOutputOfLightLoopIsSound", kInlineAtOutput, kNoLight, kLoop, ""},
    {"UnlitFragmentBetweenLitOnes", kUnlitBetween, kTwoLights, kLoop,
     "graph.json:3:5: warning: node `b` keeps its value of the first light: it is not lit, but stands "
     "between lit nodes [unlit-between-lit]\n"},
    {"UnlitFragmentBetweenLitOnesIsSoundWithOneLight", kUnlitBetween, kOneLight, kLoop, ""},
    {"LitFragmentOnLitOneIsSound", kLitOnLit, kTwoLights, kLoop, ""},
    {"LitFragmentAtOutputAndInLitOne", kLitAtOutputAndInLit, kTwoLights, kLoop,
     "graph.json:3:14: warning: node `a` feeds both an output and another lit node, which reads the sum over "
     "the lights so far [lit-feeds-lit]\n"},
    {"LitFragmentAtOutputAndInLitOneIsSoundWithOneLight", kLitAtOutputAndInLit, kOneLight, kLoop, ""},
    {"LightProfileThatNoFragmentOffers", kLit,
     R"({ "lights": [ { "name": "key", "fragment": "lamp", "profile": "Lamp" },
  { "name": "neon", "fragment": "lit", "profile": "Neon" }, { "name": "more", "fragment": "lit", "profile": "Neon" } ] })",
     kLoop,
     "scene.json:2:3: warning: light `neon` asks for the profile `Neon`, which no fragment of the graph has "
     "[unoffered-profile]\n"},
    {"LightProfileOnUnlitGraphIsSound", kUnlit, kTwoLights, kLoop, ""},
    {"LitFragmentUnderDefaultTool", kAlways, kNoLight, "--format json",
     "graph.json:2:14: warning: node `a` reads the current light, but only the light loop (`--tool "
     "lightloop`) has one [lit-without-light]\n"},
    {"LitProfileWithoutLights", kAlways, kNoLight, kLoop,
     "graph.json:2:14: warning: node `a` reads the current light, but the environment has no lights "
     "[lit-without-light]\n"},
    {"LitProfileWithLightIsSound", kAlways, kOneLight, kLoop, ""},
    {"DefaultProfileThatCannotReadTheLight", kAlways,
     R"({ "lights": [ { "name": "key", "fragment": "lit", "profile": "Neon" } ] })",
     "--tool lightloop --format json",
     "scene.json:1:15: warning: light `key` asks for the profile `Neon`, which no fragment of the graph has "
     "[unoffered-profile]\n"},
    {"LitFragmentWithDefaultProfileIsSoundWithoutLights", kLit, kNoLight, kLoop, ""},
    {"GraphInputUnderLightLoopInJson", kGraphInput, kOneLight, "--tool lightloop --format json",
     "graph.json:3:70: warning: the light-loop function has no parameter for the graph input `albedo`; only "
     "the complete shader (`--format shader`) declares it [undeclared-graph-input]\n"},
    {"GraphInputUnderLightLoopInShaderIsSound", kGraphInput, kOneLight, kLoop, ""},
    {"GraphInputOfDefaultToolIsSound", kGraphInput, kNoLight, "--format json", ""},
    {"StructureSummedOverLights", kStructure, kOneLight, kLoop,
     "graph.json:2:14: warning: output `result` of node `a` of type `Glow` is summed over the lights, but "
     "has no `+=` [structure-summed]\n"},
    {"StructureOfUnlitFragmentIsSound", kStructure, kNoLight, kLoop, ""},
    {"UniformNameInsideOther", kScaled, kNoLight, "",
     "lib/warnings.fraglib:12:51: warning: fragment `scaled`: the uniform name `al` occurs inside `scale`, "
     "which is changed with it when it is renamed [name-inside-name]\n"},
    {"HelperNameInsideOther", kHelped, kNoLight, "",
     "lib/warnings.fraglib:13:89: warning: fragment `helped`: the helper name `one` occurs inside `oneHalf`, "
     "which is changed with it when it is renamed [name-inside-name]\n"},
    {"SamplerOfATextureUniformIsSound", kTextured, kNoLight, "--format json", ""},
    {"StaticConstantOfAFragmentUsedTwice", kRawTwice, kNoLight, "",
     "lib/warnings.fraglib:17:83: warning: fragment `raw`: it is used 2 times, and so often `static const "
     "float rawConstant = 1.0;` of its predefines is written [repeated-statement]\n"},
    {"StaticConstantOfAFragmentUsedOnceIsSound", kRawOnce, kNoLight, "", ""},
    {"ConstantBufferOfAFragmentUsedTwice", kBufferedTwice, kNoLight, "",
     "lib/warnings.fraglib:19:54: warning: fragment `buffered`: it is used 2 times, and so often `cbuffer "
     "Own : register(b7) { float own; };` of its predefines is written [repeated-statement]\n"},
    {"SamplerRegisterOfAFragmentUsedTwice", kFilteredTwice, kNoLight, "",
     "lib/warnings.fraglib:21:79: warning: fragment `filtered`: it is used 2 times, and so often "
     "`SamplerState filterState : register(s7);` of its predefines is written [repeated-statement]\n"},
    {"InoutInputWithoutAVariable", R"({ "outputs": [ { "name": "x", "type": "float", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "measure" } ] })",
     kNoLight, "",
     "graph.json:2:14: warning: input `seed` of node `a` is `inout`, but nothing is wired to it that could "
     "be written [inout-without-variable]\n"},
    {"InoutInputWithAVariableIsSound", R"({ "outputs": [ { "name": "x", "type": "float", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "measure", "inputs": { "seed": { "node": "c" } } },
    { "name": "c", "fragment": "clock" } ] })",
     kNoLight, "", ""},
    {"LightUniformOfMetaSLCodeUnderDefaultTool", kMetaSL, kDimmedLights, "--format json",
     "scene.json:1:15: warning: light `key` has the uniform `dim`, which its function for MetaSL code reads, "
     "but only the light loop (`--tool lightloop`) declares [undeclared-light-uniform]\n"},
    {"LightUniformOfMetaSLCodeUnderLightLoopIsSound", kMetaSL, kDimmedLights,
     "--tool lightloop --format json", ""},
    {"LightUniformWithoutMetaSLCodeIsSound", kUnlit, kDimmedLights, "", ""},
    {"MacroOfAFragmentUsedTwiceIsSound", kMacroTwice, kNoLight, "", ""},
};

std::string nameOf(const testing::TestParamInfo<WarningCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Cases, WarningTest, testing::ValuesIn(kCases), nameOf);

// The examples, under every environment, have none. Some are finished by post-process fragments.
class ExampleTest : public CommandTest, public testing::WithParamInterface<std::string> {};

TEST_P(ExampleTest, HasNoWarnings) {
  const std::string library = repository("library");
  const std::string graph = repository("examples/materials/" + GetParam() + ".json");
  const std::string common = "collapse " + graph + " -L " + library + " -I " + library;
  std::istringstream told(run(common).err);
  for (std::string line; std::getline(told, line);) {
    EXPECT_THAT(line, testing::HasSubstr(": warning: post-process fragment `post")) << graph;
  }
  for (const auto& scene : std::filesystem::directory_iterator(repository("examples/environments"))) {
    EXPECT_EQ(run(common + " --tool lightloop --environment " + scene.path().string()).err, "")
        << scene.path();
  }
}

std::vector<std::string> examples() {
  std::vector<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(SFG_REPOSITORY "/examples/materials")) {
    if (file.path().extension() == ".json") names.push_back(file.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string exampleName(const testing::TestParamInfo<std::string>& info) { return info.param; }

INSTANTIATE_TEST_SUITE_P(Materials, ExampleTest, testing::ValuesIn(examples()), exampleName);

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
