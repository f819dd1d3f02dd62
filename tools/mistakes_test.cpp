// A table of mistakes that people make: each with its exact place, identifier and words.

#include <ostream>

#include "sfg/host/compile.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

constexpr const char* kGraph = R"json({
  "inputs": [ { "name": "uv", "type": "float2" } ],
  "outputs": [ { "name": "color", "type": "float4", "node": "pixel", "output": "result" } ],
  "uniforms": [ { "name": "fade", "type": "float", "value": 1.0 } ],
  "nodes": [
    { "name": "clouds", "fragment": "fbmNoise2",
      "inputs": { "position": { "graphInput": "uv" }, "octaves": { "constant": 4 }, "gain": { "value": 0.5 } } },
    { "name": "ramp", "fragment": "colorRampTwo",
      "inputs": { "low": { "value": [0, 0, 0.2] }, "position": { "node": "clouds", "output": "result" } } },
    { "name": "lines", "fragment": "stripes", "inputs": { "color": { "node": "ramp" }, "uv": { "graphInput": "uv" } } },
    { "name": "pixel", "fragment": "outputColor", "inputs": { "color": { "node": "lines", "output": "result" } } }
  ]
}
)json";

constexpr const char* kOwn = R"json({
  "// about": "fragments of this project",
  "stripes": {
    "description": "Darkens every other row.",
    "ports": { "color": { "description": "to darken", "kind": "color" } },
    "uniforms": [ { "name": "rows", "type": "float", "value": 8.0 } ],
    "language": ["dx11"],
    "includes": ["sfg_math.h"],
    "implementation": [
      "void stripes(float3 color, float2 uv, out float3 result)",
      "{",
      "\tresult = frac(uv.y * rows) < 0.5 ? color : color * 0.5;",
      "}"
    ]
  }
}
)json";

constexpr const char* kLit = R"json({
  "inputs": [ { "name": "uv", "type": "float2" } ],
  "outputs": [ { "name": "color", "type": "float3", "node": "wall", "output": "result" } ],
  "nodes": [
    { "name": "bricks", "fragment": "brickColor", "inputs": { "uv": { "graphInput": "uv" } } },
    { "name": "wall", "fragment": "lambertSurface", "inputs": { "albedo": { "node": "bricks", "output": "color" } } }
  ]
}
)json";

constexpr const char* kScene = R"json({
  "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "pointLight", "profile": "sfg_Light" }
  ]
}
)json";

/// One change to one of the documents above, which are sound.
struct Mistake {
  const char* name;
  const char* command;
  const char* arguments;
  const char* file;
  const char* from;
  const char* to;
  int status;
  const char* told;  ///< with LIBRARY for the folder of the standard library
};

std::ostream& operator<<(std::ostream& out, const Mistake& mistake) { return out << mistake.name; }

class MistakeTest : public CommandTest, public testing::WithParamInterface<Mistake> {
protected:
  void writeChanged(const Mistake& mistake, const std::string& file, std::string text) const {
    if (file == mistake.file && *mistake.from != '\0') {
      const std::size_t place = text.find(mistake.from);
      ASSERT_NE(place, text.npos) << mistake.from;
      text.replace(place, std::string(mistake.from).size(), mistake.to);
    }
    write(file, text);
  }
};

TEST_P(MistakeTest, IsToldWhereItWasMade) {
  const Mistake& mistake = GetParam();
  const bool compiles = std::string(mistake.arguments).starts_with("-o out.spv");
  if (compiles && !host::hasCompilers()) GTEST_SKIP() << "built without compilers";
  writeChanged(mistake, "graph.json", kGraph);
  writeChanged(mistake, "own/own.fraglib", kOwn);
  writeChanged(mistake, "scene.json", kScene);
  writeChanged(mistake, "lit.json", kLit);
  const std::string library = repository("library");
  const std::string command = mistake.command;
  const bool isLit = command.ends_with("lit.json") || std::string(mistake.file) == "lit.json";
  CommandRun result = run(command +
                          (command.ends_with(".json") ? ""
                           : isLit                    ? " lit.json"
                                                      : " graph.json") +
                          " -L '" + library + "' -L own -I '" + library + "' " + mistake.arguments);
  for (std::size_t at = result.err.find(library); at != std::string::npos; at = result.err.find(library)) {
    result.err.replace(at, library.size(), "LIBRARY");
  }
  EXPECT_EQ(result.err, mistake.told);
  EXPECT_EQ(result.status, mistake.status);
}

const Mistake kMistakes[] = {
    {"SoundDocuments", "collapse", "", "graph.json", "", "", 0, ""},
    {"GraphKeyInput", "collapse", "", "graph.json", R"json("inputs": [ { "name": "uv")json",
     R"json("input": [ { "name": "uv")json", 2,
     "graph.json:2:3: error: unknown key `input` of a graph; did you mean `inputs`? [unknown-key]\n"},
    {"GraphKeyOutput", "collapse", "", "graph.json", R"json("outputs": [)json", R"json("output": [)json", 1,
     "graph.json:3:3: warning: unknown key `output` of a graph; did you mean `outputs`? [unknown-key]\n"
     "graph.json: error: the graph has no `outputs` [no-output]\n"
     "graph.json: note: the generator says \"sfgError : the graph should has at least one output!\" "
     "[generator]\n"},
    {"GraphKeyNodes", "collapse", "", "graph.json", R"json("nodes": [)json", R"json("node": [)json", 2,
     "graph.json:5:3: error: unknown key `node` of a graph; did you mean `nodes`? [unknown-key]\n"},
    {"GraphKeyUniform", "collapse", "", "graph.json", R"json("uniforms")json", R"json("uniform")json", 0,
     "graph.json:4:3: warning: unknown key `uniform` of a graph; did you mean `uniforms`? [unknown-key]\n"},
    {"GraphKeyPostproces", "collapse", "", "graph.json", R"json("nodes": [)json",
     R"json("postproces": ["toneMapAces"],
  "nodes": [)json",
     0,
     "graph.json:5:3: warning: unknown key `postproces` of a graph; did you mean `postprocess`? "
     "[unknown-key]\n"},
    {"GraphKeyOfAnotherKind", "collapse", "", "graph.json", R"json("nodes": [)json",
     R"json("wheels": 4,
  "nodes": [)json",
     0,
     "graph.json:5:3: warning: unknown key `wheels` of a graph; its keys are `description`, `inputs`, "
     "`outputs`, `uniforms`, `nodes`, `preprocess`, `postprocess`, `$schema` [unknown-key]\n"},
    {"GraphKeyInOtherCase", "collapse", "", "graph.json", R"json("uniforms")json", R"json("Uniforms")json", 0,
     "graph.json:4:3: warning: unknown key `Uniforms` of a graph; did you mean `uniforms`? [unknown-key]\n"},
    {"NodeKeyInput", "collapse", "", "graph.json", R"json("stripes", "inputs")json",
     R"json("stripes", "input")json", 0,
     "graph.json:10:47: warning: unknown key `input` of a node; did you mean `inputs`? [unknown-key]\n"},
    {"NodeKeyFragment", "collapse", "", "graph.json", R"json("name": "ramp", "fragment")json",
     R"json("name": "ramp", "fragmnet")json", 2,
     "graph.json:8:23: error: unknown key `fragmnet` of a node; did you mean `fragment`? [unknown-key]\n"},
    {"NodeKeyName", "collapse", "", "graph.json", R"json({ "name": "ramp")json",
     R"json({ "nmae": "ramp")json", 2,
     "graph.json:8:7: error: unknown key `nmae` of a node; did you mean `name`? [unknown-key]\n"},
    {"NodeKeyInterface", "collapse", "", "graph.json", R"json("stripes", "inputs")json",
     R"json("stripes", "interfaces": {}, "inputs")json", 0,
     "graph.json:10:47: warning: unknown key `interfaces` of a node; did you mean `interface`? "
     "[unknown-key]\n"},
    {"NodeInputKeyValue", "collapse", "", "graph.json", R"json("low": { "value")json",
     R"json("low": { "valeu")json", 2,
     "graph.json:9:28: error: unknown key `valeu` of an input of a node; did you mean `value`? "
     "[unknown-key]\n"},
    {"NodeInputKeyNode", "collapse", "", "graph.json", R"json("color": { "node": "ramp" })json",
     R"json("color": { "nod": "ramp" })json", 2,
     "graph.json:10:70: error: unknown key `nod` of an input of a node; did you mean `node`? "
     "[unknown-key]\n"},
    {"NodeInputKeyGraphInput", "collapse", "", "graph.json", R"json({ "graphInput": "uv" })json",
     R"json({ "graphinput": "uv" })json", 2,
     "graph.json:7:33: error: unknown key `graphinput` of an input of a node; did you mean `graphInput`? "
     "[unknown-key]\n"},
    {"NodeInputKeyConstant", "collapse", "", "graph.json", R"json({ "constant": 4 })json",
     R"json({ "const": 4 })json", 2,
     "graph.json:7:68: error: unknown key `const` of an input of a node; did you mean `constant`? "
     "[unknown-key]\n"},
    {"NodeInputKeyOutput", "collapse", "", "graph.json", R"json("node": "clouds", "output": "result")json",
     R"json("node": "clouds", "outputs": "result")json", 0,
     "graph.json:9:84: warning: unknown key `outputs` of an input of a node; did you mean `output`? "
     "[unknown-key]\n"},
    {"OutputKeyNode", "collapse", "", "graph.json", R"json("node": "pixel", "output")json",
     R"json("nodes": "pixel", "output")json", 2,
     "graph.json:3:53: error: unknown key `nodes` of a graph output; did you mean `node`? [unknown-key]\n"},
    {"ParameterKeyType", "collapse", "", "graph.json", R"json("name": "fade", "type")json",
     R"json("name": "fade", "typ")json", 2,
     "graph.json:4:35: error: unknown key `typ` of a parameter; did you mean `type`? [unknown-key]\n"},
    {"ParameterKeyValue", "collapse", "", "graph.json", R"json("float", "value": 1.0)json",
     R"json("float", "defualt": 1.0)json", 0,
     "graph.json:4:52: warning: unknown key `defualt` of a parameter; its keys are `name`, `type`, `struct`, "
     "`value`, `constant`, `semantic`, `description`, `label`, `min`, `max`, `step`, `kind`, `space` "
     "[unknown-key]\n"},
    {"KeyTwiceInANode", "collapse", "", "graph.json", R"json("gain": { "value": 0.5 })json",
     R"json("gain": { "value": 0.5 }, "gain": { "value": 0.25 })json", 0,
     "graph.json:7:111: warning: the key `gain` stands at line 7, column 85 of the same object, too; only "
     "the last one counts [repeated-key]\n"},
    {"CommentsAreSound", "collapse", "", "graph.json", R"json("gain": { "value": 0.5 })json",
     R"json("//gain": { "valeu": 0.5 })json", 0, ""},
    {"OutputNamedFloat", "collapse", "", "graph.json", R"json("name": "color", "type": "float4")json",
     R"json("name": "float", "type": "float4")json", 2,
     "graph.json:3:26: error: the name of a graph output cannot stand in code: `float` is a word of the "
     "shading language; did you mean `float_`? [bad-name]\n"},
    {"OutputNamedCode", "collapse", "", "graph.json", R"json("name": "color", "type": "float4")json",
     R"json("name": "color; } void evil() {", "type": "float4")json", 2,
     "graph.json:3:26: error: the name of a graph output cannot stand in code: `color; } void evil() {` is "
     "no identifier; did you mean `color_void_evil`? [bad-name]\n"},
    {"OutputNamedReturn", "collapse", "", "graph.json", R"json("name": "color", "type": "float4")json",
     R"json("name": "return", "type": "float4")json", 2,
     "graph.json:3:26: error: the name of a graph output cannot stand in code: `return` is a word of the "
     "shading language; did you mean `return_`? [bad-name]\n"},
    {"InputNamedWithABlank", "collapse", "", "graph.json", R"json("name": "uv", "type")json",
     R"json("name": "base uv", "type")json", 2,
     "graph.json:2:25: error: the name of a graph input cannot stand in code: `base uv` is no identifier; "
     "did you mean `base_uv`? [bad-name]\n"},
    {"UniformNamedWithADigit", "collapse", "", "graph.json", R"json("name": "fade")json",
     R"json("name": "2fade")json", 2,
     "graph.json:4:27: error: the name of a uniform cannot stand in code: `2fade` is no identifier; did you "
     "mean `_2fade`? [bad-name]\n"},
    {"UniformNamedMatrix", "collapse", "", "graph.json", R"json("name": "fade")json",
     R"json("name": "matrix")json", 2,
     "graph.json:4:27: error: the name of a uniform cannot stand in code: `matrix` is a word of the shading "
     "language; did you mean `matrix_`? [bad-name]\n"},
    {"PortNamedSampler", "collapse", "", "graph.json", R"json("stripes", "inputs")json",
     R"json("stripes", "interface": { "inputs": [ { "name": "sampler", "type": "float3" } ] }, "inputs")json",
     2,
     "graph.json:10:84: error: the name of a port cannot stand in code: `sampler` is a word of the shading "
     "language; did you mean `sampler_`? [bad-name]\n"},
    {"PortNamedWithADash", "collapse", "", "graph.json", R"json("stripes", "inputs")json",
     R"json("stripes", "interface": { "inputs": [ { "name": "base-color", "type": "float3" } ] }, "inputs")json",
     2,
     "graph.json:10:84: error: the name of a port cannot stand in code: `base-color` is no identifier; did "
     "you mean `base_color`? [bad-name]\n"},
    {"TypeVec3", "collapse", "", "graph.json", R"json("name": "fade", "type": "float")json",
     R"json("name": "fade", "type": "vec3")json", 2,
     "graph.json:4:43: error: `type` names no type: `vec3`; did you mean `float3`? Types are `bool`, `int`, "
     "`int2`, `int3`, `int4`, `uint`, `uint2`, `uint3`, `uint4`, `float`, `float2`, `float3`, `float4`, "
     "`float2x2`, `float3x3`, `float4x4`, `sampler1D`, `sampler2D`, `sampler3D`, `samplerCube`, `struct` "
     "[unknown-type]\n"},
    {"TypeFlaot", "collapse", "", "graph.json", R"json("name": "fade", "type": "float")json",
     R"json("name": "fade", "type": "flaot")json", 2,
     "graph.json:4:43: error: `type` names no type: `flaot`; did you mean `float`? Types are `bool`, `int`, "
     "`int2`, `int3`, `int4`, `uint`, `uint2`, `uint3`, `uint4`, `float`, `float2`, `float3`, `float4`, "
     "`float2x2`, `float3x3`, `float4x4`, `sampler1D`, `sampler2D`, `sampler3D`, `samplerCube`, `struct` "
     "[unknown-type]\n"},
    {"TypeColor", "collapse", "", "graph.json", R"json("type": "float4", "node")json",
     R"json("type": "color", "node")json", 2,
     "graph.json:3:43: error: `type` names no type: `color`; did you mean `float3`? Types are `bool`, `int`, "
     "`int2`, `int3`, `int4`, `uint`, `uint2`, `uint3`, `uint4`, `float`, `float2`, `float3`, `float4`, "
     "`float2x2`, `float3x3`, `float4x4`, `sampler1D`, `sampler2D`, `sampler3D`, `samplerCube`, `struct` "
     "[unknown-type]\n"},
    {"TypeTexture2D", "collapse", "", "graph.json",
     R"json("name": "fade", "type": "float", "value": 1.0)json",
     R"json("name": "fade", "type": "Texture2D")json", 2,
     "graph.json:4:43: error: `type` names no type: `Texture2D`; did you mean `sampler2D`? Types are `bool`, "
     "`int`, `int2`, `int3`, `int4`, `uint`, `uint2`, `uint3`, `uint4`, `float`, `float2`, `float3`, "
     "`float4`, `float2x2`, `float3x3`, `float4x4`, `sampler1D`, `sampler2D`, `sampler3D`, `samplerCube`, "
     "`struct` [unknown-type]\n"},
    {"UnknownPort", "collapse", "", "graph.json", R"json("octaves": {)json", R"json("octavs": {)json", 2,
     "graph.json:7:55: error: node `clouds` has no input `octavs`; did you mean `octaves`? Its inputs are "
     "`position`, `octaves`, `lacunarity`, `gain` [unknown-port]\n"},
    {"UnknownPortFarFromAll", "collapse", "", "graph.json", R"json("octaves": {)json",
     R"json("wheels": {)json", 2,
     "graph.json:7:55: error: node `clouds` has no input `wheels`; its inputs are `position`, `octaves`, "
     "`lacunarity`, `gain` [unknown-port]\n"},
    {"UnknownOutput", "collapse", "", "graph.json", R"json("node": "clouds", "output": "result")json",
     R"json("node": "clouds", "output": "reslt")json", 2,
     "graph.json:9:94: error: node `clouds` has no output `reslt`; did you mean `result`? Its outputs are "
     "`result` [unknown-port]\n"},
    {"UnknownNode", "collapse", "", "graph.json", R"json("color": { "node": "ramp" })json",
     R"json("color": { "node": "rampe" })json", 2,
     "graph.json:10:78: error: unknown node `rampe`; did you mean `ramp`? [unknown-node]\n"},
    {"UnknownGraphInput", "collapse", "", "graph.json", R"json({ "graphInput": "uv" })json",
     R"json({ "graphInput": "uw" })json", 2,
     "graph.json:7:47: error: unknown graph input `uw`; did you mean `uv`? The graph inputs are `uv` "
     "[unknown-graph-input]\n"},
    {"UnknownFragmentOfANode", "collapse", "", "graph.json", R"json("fbmNoise2")json",
     R"json("fmbNoise2")json", 1,
     "graph.json:6:37: error: node `clouds` uses the fragment `fmbNoise2`, which no library has; did you "
     "mean `fbmNoise2`? [unknown-fragment]\n"
     "graph.json:6:37: note: the generator says \"sfgError : Failed to create fragment: fmbNoise2!\" "
     "[generator]\n"},
    {"UnknownFragmentFarFromAll", "collapse", "", "graph.json", R"json("fbmNoise2")json",
     R"json("unicorn")json", 1,
     "graph.json:6:37: error: node `clouds` uses the fragment `unicorn`, which no library has "
     "[unknown-fragment]\n"
     "graph.json:6:37: note: the generator says \"sfgError : Failed to create fragment: unicorn!\" "
     "[generator]\n"},
    {"UnknownPostprocess", "collapse", "", "graph.json", R"json("nodes": [)json",
     R"json("postprocess": ["toneMapAcse"],
  "nodes": [)json",
     2,
     "graph.json:5:19: error: unknown fragment `toneMapAcse`; did you mean `toneMapAces`? "
     "[unknown-fragment]\n"},
    {"WireFloat2IntoFloat3", "collapse", "", "graph.json", R"json("color": { "node": "ramp" })json",
     R"json("color": { "graphInput": "uv" })json", 1,
     "graph.json:10:68: error: graph input `uv` of type `float2` does not fit input `color` of node `lines` "
     "of type `float3`; fragments that convert are `directionFromUv`, `extendFloat3` "
     "[wire-type]\n"},
    {"WireFloat3IntoFloat", "collapse", "", "graph.json",
     R"json("position": { "node": "clouds", "output": "result" })json",
     R"json("position": { "node": "lines" }, "high": { "value": [1, 1, 1] })json", 1,
     "graph.json:9:64: error: output `result` of node `lines` of type `float3` does not fit input `position` "
     "of node `ramp` of type `float`; fragments that convert are `facingRatio`, `luminance`, `perlinNoise3` "
     "[wire-type]\n"},
    {"WireFloat3IntoFloat2", "collapse", "", "graph.json",
     R"json("color": { "node": "ramp" }, "uv": { "graphInput": "uv" })json",
     R"json("color": { "node": "ramp" }, "uv": { "node": "ramp" })json", 0,
     "graph.json:10:94: warning: output `result` of node `ramp` of type `float3` is cut to input `uv` of "
     "node `lines` of type `float2`: its last component is dropped [dropped-components]\n"},
    {"WireFloatIntoFloat3IsSound", "collapse", "", "graph.json", R"json("color": { "node": "ramp" })json",
     R"json("color": { "node": "clouds" })json", 0, ""},
    {"WireIntoGraphOutput", "collapse", "", "graph.json", R"json("node": "pixel", "output": "result")json",
     R"json("node": "lines", "output": "result")json", 1,
     "graph.json:3:16: error: output `result` of node `lines` of type `float3` does not fit graph output "
     "`color` of type `float4`; fragments that convert are `outputColor`, `outputNormal`, `extendFloat4` "
     "[wire-type]\n"},
    {"WireCutAtGraphOutput", "collapse", "", "graph.json", R"json("type": "float4", "node": "pixel")json",
     R"json("type": "float3", "node": "pixel")json", 0,
     "graph.json:3:16: warning: output `result` of node `pixel` of type `float4` is cut to graph output "
     "`color` of type `float3`: its last component is dropped [dropped-components]\n"},
    {"WireFloat2IntoTexture", "collapse", "", "graph.json",
     R"json({ "name": "lines", "fragment": "stripes", "inputs": { "color": { "node": "ramp" }, "uv": { "graphInput": "uv" } } })json",
     R"json({ "name": "lines", "fragment": "sampleTexture2D", "inputs": { "image": { "graphInput": "uv" } } })json",
     2,
     "graph.json:11:101: error: node `lines` has no output `result`; its outputs are `color`, `alpha` "
     "[unknown-port]\n"},
    {"WireMatrixIntoColor", "collapse", "", "graph.json",
     R"json({ "name": "ramp", "fragment": "colorRampTwo",
      "inputs": { "low": { "value": [0, 0, 0.2] }, "position": { "node": "clouds", "output": "result" } } })json",
     R"json({ "name": "ramp", "fragment": "rotationMatrix" })json", 1,
     "graph.json:9:68: error: output `result` of node `ramp` of type `float3x3` does not fit input `color` "
     "of node `lines` of type `float3`; a fragment that converts is `rotateVector` [wire-type]\n"},
    {"WireTypeIsAWarningInJson", "collapse", "--format json", "graph.json",
     R"json("color": { "node": "ramp" })json", R"json("color": { "graphInput": "uv" })json", 0,
     "graph.json:10:68: warning: graph input `uv` of type `float2` does not fit input `color` of node "
     "`lines` of type `float3`; fragments that convert are `directionFromUv`, `extendFloat3` "
     "[wire-type]\n"},
    {"WireTypeBeforeCompiling", "compile", "", "graph.json", R"json("color": { "node": "ramp" })json",
     R"json("color": { "graphInput": "uv" })json", 1,
     "graph.json:10:68: error: graph input `uv` of type `float2` does not fit input `color` of node `lines` "
     "of type `float3`; fragments that convert are `directionFromUv`, `extendFloat3` "
     "[wire-type]\n"},
    {"WireTypeBeforeReflecting", "reflect", "", "graph.json", R"json("color": { "node": "ramp" })json",
     R"json("color": { "graphInput": "uv" })json", 1,
     "graph.json:10:68: error: graph input `uv` of type `float2` does not fit input `color` of node `lines` "
     "of type `float3`; fragments that convert are `directionFromUv`, `extendFloat3` "
     "[wire-type]\n"},
    {"FragmentKeyImplementation", "collapse", "", "own/own.fraglib", R"json("implementation")json",
     R"json("implementaton")json", 1,
     "own/own.fraglib:9:5: error: unknown key `implementaton` of a fragment; did you mean `implementation`? "
     "Without it fragment `stripes` cannot be loaded [unknown-key]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:9:5 [not-loaded]\n"},
    {"FragmentKeyLanguage", "collapse", "", "own/own.fraglib", R"json("language")json",
     R"json("langauge")json", 1,
     "own/own.fraglib:7:5: error: unknown key `langauge` of a fragment; did you mean `language`? Without it "
     "fragment `stripes` cannot be loaded [unknown-key]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:7:5 [not-loaded]\n"},
    {"FragmentWithoutImplementation", "collapse", "", "own/own.fraglib", R"json("implementation": [)json",
     R"json("// implementation": [)json", 1,
     "own/own.fraglib:3:14: error: fragment `stripes`: `implementation` is missing [missing-key]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:3:14 [not-loaded]\n"},
    {"FragmentKeyUniform", "collapse", "", "own/own.fraglib", R"json("uniforms")json", R"json("uniform")json",
     0,
     "own/own.fraglib:6:5: warning: unknown key `uniform` of a fragment; did you mean `uniforms`? "
     "[unknown-key]\n"},
    {"FragmentKeyInclude", "collapse", "", "own/own.fraglib", R"json("includes")json", R"json("include")json",
     0,
     "own/own.fraglib:8:5: warning: unknown key `include` of a fragment; did you mean `includes`? "
     "[unknown-key]\n"},
    {"FragmentKeyDescription", "collapse", "", "own/own.fraglib", R"json("description": "Darkens)json",
     R"json("descripton": "Darkens)json", 0,
     "own/own.fraglib:4:5: warning: unknown key `descripton` of a fragment; did you mean `description`? "
     "[unknown-key]\n"},
    {"PortKeyKind", "collapse", "", "own/own.fraglib", R"json("kind": "color")json",
     R"json("knd": "color")json", 0,
     "own/own.fraglib:5:55: warning: unknown key `knd` of a port; did you mean `kind`? [unknown-key]\n"},
    {"UniformKeyValue", "collapse", "", "own/own.fraglib", R"json("float", "value": 8.0)json",
     R"json("float", "valu": 8.0)json", 0,
     "own/own.fraglib:6:54: warning: unknown key `valu` of a parameter; did you mean `value`? "
     "[unknown-key]\n"},
    {"UniformWithoutName", "collapse", "", "own/own.fraglib", R"json("name": "rows", )json", "", 1,
     "own/own.fraglib:6:19: error: fragment `stripes`: `name` is missing [missing-key]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:6:19 [not-loaded]\n"},
    {"UniformTypeVec2", "collapse", "", "own/own.fraglib", R"json("type": "float", "value": 8.0)json",
     R"json("type": "vec2")json", 1,
     "own/own.fraglib:6:45: error: fragment `stripes`: `type` names no type: `vec2`; did you mean `float2`? "
     "Types are `bool`, `int`, `int2`, `int3`, `int4`, `uint`, `uint2`, `uint3`, `uint4`, `float`, `float2`, "
     "`float3`, `float4`, `float2x2`, `float3x3`, `float4x4`, `sampler1D`, `sampler2D`, `sampler3D`, "
     "`samplerCube`, `struct` [unknown-type]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:6:45 [not-loaded]\n"},
    {"UniformValueDoesNotFit", "collapse", "", "own/own.fraglib", R"json("value": 8.0)json",
     R"json("value": [8, 8])json", 1,
     "own/own.fraglib:6:63: error: fragment `stripes`: `value` must hold as many numbers as the type `float` "
     "has components: 1 [wrong-value]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:6:63 [not-loaded]\n"},
    {"LanguageIsAText", "collapse", "", "own/own.fraglib", R"json(["dx11"])json", R"json("dx11")json", 1,
     "own/own.fraglib:7:17: error: fragment `stripes`: `language` must be an array of strings, not a string "
     "[wrong-kind]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:7:17 [not-loaded]\n"},
    {"LanguageHlsl", "collapse", "", "own/own.fraglib", R"json(["dx11"])json", R"json(["hlsl"])json", 1,
     "own/own.fraglib:7:18: warning: the profile is for no language that is known: `hlsl`; known is `dx11` "
     "[unknown-language]\n"
     "graph.json:10:5: error: node `lines` uses the fragment `stripes`, which has no profile `default` for "
     "the language `dx11` [no-profile]\n"},
    {"IncludesIsAText", "collapse", "", "own/own.fraglib", R"json(["sfg_math.h"])json",
     R"json("sfg_math.h")json", 1,
     "own/own.fraglib:8:17: error: fragment `stripes`: `includes` must be an array of strings, not a string "
     "[wrong-kind]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:8:17 [not-loaded]\n"},
    {"ModeInlien", "collapse", "", "own/own.fraglib", R"json("language")json",
     R"json("mode": "inlien", "language")json", 0,
     "own/own.fraglib:7:13: warning: `mode` is none of `function`, `inline`, `metaSL`: `inlien`; did you "
     "mean `inline`? It is taken for `function` [unknown-word]\n"},
    {"IncludeMistyped", "collapse", "", "own/own.fraglib", R"json("sfg_math.h")json",
     R"json("sfg_mth.h")json", 0,
     "own/own.fraglib:8:18: warning: fragment `stripes` includes `sfg_mth.h`, which is in no include folder; "
     "did you mean `sfg_math.h`? [missing-include]\n"},
    {"IncludeFarFromAll", "collapse", "", "own/own.fraglib", R"json("sfg_math.h")json",
     R"json("unicorns.h")json", 0,
     "own/own.fraglib:8:18: warning: fragment `stripes` includes `unicorns.h`, which is in no include folder "
     "[missing-include]\n"},
    {"PrototypeReturnsAValue", "collapse", "", "own/own.fraglib", R"json("void stripes)json",
     R"json("float stripes)json", 1,
     "own/own.fraglib:10:7: error: fragment `stripes`: function result type is not void [not-loaded]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:10:7 [not-loaded]\n"},
    {"PortTypeVec3", "collapse", "", "own/own.fraglib", R"json(float3 color, float2 uv)json",
     R"json(vec3 color, float2 uv)json", 1,
     "own/own.fraglib:10:21: error: fragment `stripes`: the type `vec3` of `color` is none of the language, "
     "and nothing declares it as a structure; did you mean `float3`? [unknown-port-type]\n"},
    {"FragmentTwiceInAFile", "collapse", "", "own/own.fraglib", R"json(  "stripes": {)json",
     R"json(  "stripes": { "language": ["dx11"], "implementation": [] },
  "stripes": {)json",
     0,
     "own/own.fraglib:4:3: warning: fragment `stripes` is defined at own/own.fraglib:3:3, too; only the last "
     "definition counts [repeated-fragment]\n"},
    {"FragmentHidesOneOfTheLibrary", "collapse", "", "own/own.fraglib", R"json("stripes": {)json",
     R"json("fbmNoise2": { "language": ["dx11"], "implementation": ["void fbmNoise2(float2 position, float octaves, float gain, out float result)", "{", "result = 1;", "}"] },
  "stripes": {)json",
     0,
     "own/own.fraglib:3:16: note: fragment `fbmNoise2` replaces the one of an earlier folder, at "
     "LIBRARY/noise.fraglib:229:16 [hidden-fragment]\n"},
    {"LibraryIsNoJson", "collapse", "", "own/own.fraglib",
     R"json("}"
    ])json",
     R"json("}"
    )json",
     1,
     "own/own.fraglib:13:10: error: missing `]` for the `[` of line 9, column 23 [malformed-json]\n"
     "graph.json:10:36: error: node `lines` uses the fragment `stripes`, which no library has; not all "
     "libraries could be read [unknown-fragment]\n"
     "graph.json:10:36: note: the generator says \"sfgError : Failed to create fragment: stripes!\" "
     "[generator]\n"},
    {"LodTwice", "collapse", "", "own/own.fraglib", R"json("language")json",
     R"json("lod": 1, "lod": 2, "language")json", 0,
     "own/own.fraglib:7:15: warning: the key `lod` stands at line 7, column 5 of the same object, too; only "
     "the last one counts [repeated-key]\n"},
    {"LodIsAWord", "collapse", "", "own/own.fraglib", R"json("language")json",
     R"json("lod": "high", "language")json", 1,
     "own/own.fraglib:7:12: error: fragment `stripes`: `lod` must be a number, not a string [wrong-kind]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:7:12 [not-loaded]\n"},
    {"ImplementationBesideProfiles", "collapse", "", "own/own.fraglib", R"json("language")json",
     R"json("profiles": [ { "language": ["dx11"], "implementation": ["void stripes(float3 color, float2 uv, out float3 result)", "{", "result = color * rows;", "}"] } ],
    "language")json",
     0,
     "own/own.fraglib:8:5: warning: `language` has no effect beside `profiles`; it belongs into each of them "
     "[ignored-key]\n"
     "own/own.fraglib:9:5: warning: `includes` has no effect beside `profiles`; it belongs into each of them "
     "[ignored-key]\n"
     "own/own.fraglib:10:5: warning: `implementation` has no effect beside `profiles`; it belongs into each "
     "of them [ignored-key]\n"},
    {"ImplementationIsAText", "collapse", "", "own/own.fraglib",
     R"json("}"
    ])json",
     R"json("}", 3
    ])json",
     1,
     "own/own.fraglib:13:12: error: fragment `stripes`: `implementation` must be an array of strings, not a "
     "number [wrong-kind]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:13:12 [not-loaded]\n"},
    {"FragmentIsAText", "collapse", "", "own/own.fraglib", R"json("stripes": {)json",
     R"json("dots": "later",
  "stripes": {)json",
     0,
     "own/own.fraglib:3:11: error: fragment `dots`: `fragment` must be an object, not a string "
     "[wrong-kind]\n"},
    {"EnvironmentKeyLights", "collapse", "--tool lightloop --environment scene.json", "scene.json",
     R"json("lights")json", R"json("ligths")json", 0,
     "scene.json:2:3: warning: unknown key `ligths` of an environment; did you mean `lights`? "
     "[unknown-key]\n"},
    {"LightKeyFragment", "collapse", "--tool lightloop --environment scene.json", "scene.json",
     R"json("fill", "fragment")json", R"json("fill", "fragmet")json", 2,
     "scene.json:4:23: error: unknown key `fragmet` of a light; did you mean `fragment`? [unknown-key]\n"},
    {"LightKeyProfile", "collapse", "--tool lightloop --environment scene.json", "scene.json",
     R"json("pointLight", "profile")json", R"json("pointLight", "profil")json", 1,
     "scene.json:4:49: warning: unknown key `profil` of a light; did you mean `profile`? [unknown-key]\n"
     "scene.json:4:5: error: light `fill` asks for the profile `default`, which its fragment `pointLight` "
     "does not have; known are `msl_light`, `sfg_Light` [light-profile]\n"
     "scene.json:4:5: note: the generator says \"Failed to set light profile default.\" [generator]\n"},
    {"LightNamedWithABlank", "collapse", "--tool lightloop --environment scene.json", "scene.json",
     R"json("fill")json", R"json("fill light")json", 2,
     "scene.json:4:15: error: the name of the light `fill light` goes into names of the code, which hold "
     "letters, digits and `_` only [bad-name]\n"},
    {"UnknownLight", "collapse", "--tool lightloop --environment scene.json", "scene.json",
     R"json("pointLight")json", R"json("pointLigth")json", 2,
     "scene.json:4:35: error: unknown fragment `pointLigth`; did you mean `pointLight`? "
     "[unknown-fragment]\n"},
    {"LightNameTwice", "collapse", "--tool lightloop --environment scene.json", "scene.json",
     R"json("fill")json", R"json("key")json", 2,
     "scene.json:4:15: error: the light name `key` is used twice [repeated-name]\n"},
    {"UnknownOutputFragment", "collapse", "--tool lightloop --environment scene.json", "scene.json",
     R"json("lights": [)json",
     R"json("output": "outputColour",
  "lights": [)json",
     2,
     "scene.json:2:13: error: unknown fragment `outputColour`; did you mean `outputColor`? "
     "[unknown-fragment]\n"},
    {"LightsIsAnObject", "collapse", "--tool lightloop --environment scene.json", "scene.json",
     R"json("lights": [
)json",
     R"json("lights": {},
  "light": [
)json",
     2,
     "scene.json:3:3: warning: unknown key `light` of an environment; did you mean `lights`? [unknown-key]\n"
     "scene.json:2:13: error: `lights` must be an array [wrong-kind]\n"},
    {"UnconnectedInput", "collapse", "", "graph.json", R"json(, "uv": { "graphInput": "uv" } } },
    { "name": "pixel")json",
     R"json( } },
    { "name": "pixel")json",
     0,
     "graph.json:10:5: warning: input `uv` of node `lines` is wired to nothing and has no value, so it is 0: "
     "wire it, give it a `value` here, or one in the `ports` of fragment `stripes` [unconnected-input]\n"},
    {"UnconnectedInputOfTheLibraryIsSound", "collapse", "", "graph.json",
     R"json("octaves": { "constant": 4 }, )json", "", 0, ""},
    {"UnwiredInputOfASurfaceIsSound", "collapse", "--tool lightloop --environment scene.json", "lit.json",
     R"json("inputs": { "albedo": { "node": "bricks", "output": "color" } })json", R"json("inputs": {})json",
     0, ""},
    {"InputWithTwoSources", "collapse", "", "graph.json", R"json("gain": { "value": 0.5 })json",
     R"json("gain": { "value": 0.5, "graphInput": "uv" })json", 2,
     "graph.json:7:93: error: input `gain` of node `clouds` must hold exactly one of `node`, `graphInput`, "
     "`value`, `constant` [one-source]\n"},
    {"InputIsANumber", "collapse", "", "graph.json", R"json("gain": { "value": 0.5 })json",
     R"json("gain": 0.5)json", 2,
     "graph.json:7:93: error: input `gain` of node `clouds` must be an object [wrong-kind]\n"},
    {"ColorOfTwoNumbers", "collapse", "", "graph.json", R"json([0, 0, 0.2])json", R"json([0, 0.2])json", 2,
     "graph.json:9:37: error: `value` of input `low` of node `ramp` does not fit the type `float3`: expected "
     "an array of 3 numbers [wrong-value]\n"},
    {"ColorAsAText", "collapse", "", "graph.json", R"json([0, 0, 0.2])json", R"json("#000033")json", 2,
     "graph.json:9:37: error: `value` of input `low` of node `ramp` does not fit the type `float3`: expected "
     "an array of 3 numbers [wrong-value]\n"},
    {"ConstantOfATexture", "collapse", "", "graph.json",
     R"json("fragment": "outputColor", "inputs": { "color": { "node": "lines", "output": "result" } })json",
     R"json("fragment": "sampleTexture2D", "inputs": { "image": { "constant": 1 } })json", 2,
     "graph.json:3:80: error: node `pixel` has no output `result`; its outputs are `color`, `alpha` "
     "[unknown-port]\n"},
    {"LoopOfTwoNodes", "collapse", "", "graph.json", R"json("low": { "value": [0, 0, 0.2] })json",
     R"json("low": { "node": "lines" })json", 1,
     "graph.json:10:68: error: input `color` of node `lines` closes a loop through node `ramp` [loop]\n"
     "graph.json:10:68: note: the generator says \"sfgError : circular loop: stripes!\" [generator]\n"},
    {"NodeNameTwice", "collapse", "", "graph.json", R"json("name": "ramp")json",
     R"json("name": "clouds")json", 2,
     "graph.json:8:15: error: the node name `clouds` is used twice [repeated-name]\n"},
    {"OutputWithoutNode", "collapse", "", "graph.json", R"json("node": "pixel", )json", "", 2,
     "graph.json:3:63: error: `output` needs a `node` [output-without-node]\n"},
    {"OutputUnwired", "collapse", "", "graph.json", R"json(, "node": "pixel", "output": "result")json", "", 1,
     "graph.json:3:16: error: graph output `color` has no `node` [unwired-output]\n"
     "graph.json:3:16: note: the generator says \"Graph output must be connected to a fragment!\" "
     "[generator]\n"},
    {"OutputsOfSeveralNodes", "collapse", "", "graph.json", R"json("output": "result" } ],)json",
     R"json("output": "result" },
    { "name": "height", "type": "float", "node": "clouds" } ],)json",
     1,
     "graph.json:4:5: error: graph output `height` comes from node `clouds` and `color` from node `pixel`; "
     "without a light loop all outputs come from one node [several-sources]\n"
     "graph.json:4:5: note: the generator says \"Failed to evaluate fragment!\" [generator]\n"},
    {"NodesIsAnObject", "collapse", "", "graph.json", R"json("nodes": [
)json",
     R"json("nodes": {}, "// nodes": [
)json",
     2, "graph.json:5:12: error: `nodes` must be an array [wrong-kind]\n"},
    {"CommaBehindTheLast", "collapse", "", "graph.json", R"json("output": "result" } } }
)json",
     R"json("output": "result" } } },
)json",
     2,
     "graph.json:12:3: error: expected a value behind the comma in front of this bracket, found `]` "
     "[malformed-json]\n"},
    {"CommaMissing", "collapse", "", "graph.json", R"json("fragment": "fbmNoise2",)json",
     R"json("fragment": "fbmNoise2")json", 2,
     "graph.json:6:48: error: missing `,` behind this value [malformed-json]\n"},
    {"QuotationMarkMissing", "collapse", "", "graph.json", R"json("fbmNoise2",)json",
     R"json("fbmNoise2,)json", 2,
     "graph.json:6:48: error: expected a closing `\"` before the end of the line; a line feed is written "
     "`\\n` [malformed-json]\n"},
    {"SlashesInJson", "collapse", "", "graph.json", R"json(  "nodes": [)json",
     R"json(  // the nodes
  "nodes": [)json",
     2,
     "graph.json:5:3: error: expected a member name in double quotes, found a comment, which JSON does not "
     "have [malformed-json]\n"},
    {"SingleQuotes", "collapse", "", "graph.json", R"json("fbmNoise2")json", R"json('fbmNoise2')json", 2,
     "graph.json:6:37: error: expected a value, found `'`; strings stand in double quotes, `\"` "
     "[malformed-json]\n"},
    {"TwoUnknownFragments", "collapse", "", "graph.json", R"json("fragment": "colorRampTwo")json",
     R"json("fragment": "colorRamp2")json", 1,
     "graph.json:8:35: error: node `ramp` uses the fragment `colorRamp2`, which no library has; did you mean "
     "`colorRampTwo`? [unknown-fragment]\n"
     "graph.json:8:35: note: the generator says \"sfgError : Failed to create fragment: colorRamp2!\" "
     "[generator]\n"},
    {"LightWithoutProfileName", "collapse lit.json", "--tool lightloop --environment scene.json",
     "scene.json", R"json(, "profile": "sfg_Light" },)json", R"json( },)json", 1,
     "scene.json:3:5: error: light `key` asks for the profile `default`, which its fragment "
     "`directionalLight` does not have; known are `msl_light`, `sfg_Light` [light-profile]\n"
     "scene.json:3:5: note: the generator says \"Failed to set light profile default.\" [generator]\n"},
    {"InterfaceInputContradictsTheCode", "collapse", "", "graph.json", R"json("stripes", "inputs")json",
     R"json("stripes", "interface": { "inputs": [ { "name": "color", "type": "float4" }, { "name": "uv", "type": "float2" } ], "outputs": [ { "name": "result", "type": "float3" } ] }, "inputs")json",
     1,
     "graph.json:10:101: error: input `color` of node `lines` is of type `float4` here, but of type `float3` "
     "in the code of fragment `stripes` [interface-mismatch]\n"},
    {"InterfaceOutputContradictsTheCode", "collapse", "", "graph.json", R"json("stripes", "inputs")json",
     R"json("stripes", "interface": { "inputs": [ { "name": "color", "type": "float3" }, { "name": "uv", "type": "float2" } ], "outputs": [ { "name": "result", "type": "float" } ] }, "inputs")json",
     1,
     "graph.json:10:192: error: output `result` of node `lines` is of type `float` here, but of type "
     "`float3` in the code of fragment `stripes` [interface-mismatch]\n"},
    {"InterfaceInAnotherOrder", "collapse", "", "graph.json", R"json("stripes", "inputs")json",
     R"json("stripes", "interface": { "inputs": [ { "name": "uv", "type": "float2" }, { "name": "color", "type": "float3" } ], "outputs": [ { "name": "result", "type": "float3" } ] }, "inputs")json",
     1,
     "graph.json:10:98: error: input `uv` of node `lines` is of type `float2` here, but of type `float3`, as "
     "`color` in the code of fragment `stripes` [interface-mismatch]\n"
     "graph.json:10:137: error: input `color` of node `lines` is of type `float3` here, but of type "
     "`float2`, as `uv` in the code of fragment `stripes` [interface-mismatch]\n"},
    {"InterfaceWithTooFewInputs", "collapse", "", "graph.json",
     R"json("stripes", "inputs": { "color": { "node": "ramp" }, "uv": { "graphInput": "uv" } })json",
     R"json("stripes", "interface": { "inputs": [ { "name": "color", "type": "float3" } ], "outputs": [ { "name": "result", "type": "float3" } ] }, "inputs": { "color": { "node": "ramp" } })json",
     1,
     "graph.json:10:5: error: node `lines` has 1 inputs, its fragment `stripes` 2 [port-count]\n"
     "graph.json:10:5: note: the generator says \"Failed to evaluate fragment!\" [generator]\n"},
    {"InlineWithoutInterface", "collapse", "", "graph.json",
     R"json("fragment": "stripes", "inputs": { "color": { "node": "ramp" }, "uv": { "graphInput": "uv" } })json",
     R"json("fragment": "mixInline")json", 2,
     "graph.json:11:101: error: node `lines` has no output `result`; a node of an inline fragment needs an "
     "`interface` [unknown-port]\n"},
    {"PostprocessOfTheDefaultTool", "collapse", "", "graph.json", R"json("nodes": [)json",
     R"json("postprocess": ["postGamma"],
  "nodes": [)json",
     0,
     "graph.json:5:19: warning: post-process fragment `postGamma` does nothing: only the light loop (`--tool "
     "lightloop`) evaluates it [idle-postprocess]\n"},
    {"PostprocessDoesNotFit", "collapse", "--tool lightloop --environment scene.json", "graph.json",
     R"json("nodes": [)json",
     R"json("postprocess": ["luminance"],
  "nodes": [)json",
     1,
     "graph.json:3:16: error: graph output `color` of type `float4` feeds input `color` of post-process "
     "fragment `luminance` of type `float3` [chain-mismatch]\n"
     "graph.json:3:16: note: the generator says \"sfgError : the graph outputs should be the same as the "
     "output fragment inputs!\" [generator]\n"},
    {"PreprocessWithInputs", "collapse", "", "graph.json", R"json("nodes": [)json",
     R"json("preprocess": ["luminance"],
  "nodes": [)json",
     1,
     "graph.json:5:18: error: pre-process fragment `luminance` has the input `color` [preprocess-input]\n"
     "graph.json:5:18: note: the generator says \"sfgError : pre-process fragment should has no inputs!\" "
     "[generator]\n"},
    {"MetadataOfNoPort", "collapse", "", "own/own.fraglib", R"json("ports": { "color")json",
     R"json("ports": { "colour")json", 0,
     "own/own.fraglib:5:26: warning: fragment `stripes`: it has no port `colour`; its ports are `color`, "
     "`result`, `uv` [unknown-port]\n"},
    {"PortKindIsNoWord", "collapse", "", "own/own.fraglib", R"json("kind": "color")json",
     R"json("kind": "colour")json", 0,
     "own/own.fraglib:5:63: warning: port `color` of fragment `stripes`: unknown kind `colour`; did you "
     "mean `color`? Known are `angle`, `color`, `direction`, `distance`, `factor`, `normal`, `position`, "
     "`uv` [unknown-word]\n"},
    {"PortValueDoesNotFit", "collapse", "", "own/own.fraglib", R"json("kind": "color")json",
     R"json("value": 0.5)json", 0,
     "own/own.fraglib:5:64: warning: port `color` of fragment `stripes`: `value` does not fit the type "
     "`float3`: expected an array of 3 numbers [wrong-value]\n"},
    {"PortValueOutOfRange", "collapse", "", "own/own.fraglib", R"json("kind": "color")json",
     R"json("value": [0, 0, 2], "max": 1)json", 0,
     "own/own.fraglib:5:64: warning: port `color` of fragment `stripes`: `value` is above `max` "
     "[wrong-value]\n"},
    {"PortRangeUpsideDown", "collapse", "", "own/own.fraglib", R"json("kind": "color")json",
     R"json("min": 1, "max": 0)json", 0,
     "own/own.fraglib:5:62: warning: port `color` of fragment `stripes`: `min` is above `max` "
     "[wrong-value]\n"},
    {"PortSpaceWithoutKind", "collapse", "", "own/own.fraglib", R"json("kind": "color")json",
     R"json("space": "world")json", 0,
     "own/own.fraglib:5:64: warning: port `color` of fragment `stripes`: `world` is a space of directions, "
     "normals and positions (`kind`) [wrong-value]\n"},
    {"ImplementationEmpty", "collapse", "", "own/own.fraglib", R"json("implementation": [)json",
     R"json("implementation": [], "// implementation": [)json", 1,
     "own/own.fraglib:9:23: error: fragment `stripes`: `implementation` is empty [not-loaded]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:9:23 [not-loaded]\n"},
    {"PrototypeWithoutBrackets", "collapse", "", "own/own.fraglib",
     R"json((float3 color, float2 uv, out float3 result))json", "", 1,
     "own/own.fraglib:10:19: error: fragment `stripes`: `(` is missing behind the function's name "
     "[not-loaded]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:10:19 [not-loaded]\n"},
    {"ParameterWithoutType", "collapse", "", "own/own.fraglib", R"json(float2 uv,)json", R"json(uv,)json", 1,
     "own/own.fraglib:10:35: error: fragment `stripes`: the parameter `uv` needs a type and a name "
     "[not-loaded]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:10:35 [not-loaded]\n"},
    {"PrototypeNotClosed", "collapse", "", "own/own.fraglib", R"json(out float3 result)")json",
     R"json(out float3 result")json", 1,
     "own/own.fraglib:10:20: error: fragment `stripes`: `(` is not closed [not-loaded]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:10:20 [not-loaded]\n"},
    {"ParameterIsAnArray", "collapse", "", "own/own.fraglib", R"json(float2 uv,)json",
     R"json(float2 uv[2],)json", 1,
     "own/own.fraglib:10:44: error: fragment `stripes`: a parameter cannot be an array [not-loaded]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:10:44 [not-loaded]\n"},
    {"ParameterNameTwice", "collapse", "", "own/own.fraglib", R"json(float2 uv,)json",
     R"json(float2 color,)json", 1,
     "own/own.fraglib:10:42: error: fragment `stripes`: the name `color` is given to two parameters "
     "[not-loaded]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:10:42 [not-loaded]\n"},
    {"ParameterCommaTwice", "collapse", "", "own/own.fraglib", R"json(float2 uv,)json",
     R"json(float2 uv,,)json", 1,
     "own/own.fraglib:10:44: error: fragment `stripes`: a parameter is missing behind `,` [not-loaded]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:10:44 [not-loaded]\n"},
    {"ParameterCommaMissing", "list", "", "own/own.fraglib", R"json(float2 uv, out)json",
     R"json(float2 uv out)json", 1,
     "own/own.fraglib:10:45: error: fragment `stripes`: `,` is missing in front of `out` [not-loaded]\n"},
    {"UniformNameTwice", "collapse", "", "own/own.fraglib", R"json("value": 8.0 })json",
     R"json("value": 8.0 }, { "name": "rows", "type": "float" })json", 0,
     "own/own.fraglib:6:80: warning: fragment `stripes`: the uniform name `rows` is used twice "
     "[repeated-name]\n"},
    {"UniformNamedAsAPort", "collapse", "", "own/own.fraglib", R"json({ "name": "rows")json",
     R"json({ "name": "color", "type": "float" }, { "name": "rows")json", 0,
     "own/own.fraglib:6:29: warning: fragment `stripes`: the uniform name `color` is the name of a port, too "
     "[repeated-name]\n"},
    {"PortOfAMistypedStructure", "collapse", "", "own/own.fraglib",
     R"json("includes": ["sfg_math.h"],
    "implementation": [
      "void stripes(float3 color,)json",
     R"json("includes": ["sfg_math.h"], "predefine": ["struct Tiles { float rows; };"],
    "implementation": [
      "void stripes(float3 color, Tils tiles,)json",
     1,
     "own/own.fraglib:10:35: error: fragment `stripes`: the type `Tils` of `tiles` is none of the language, "
     "and "
     "nothing declares it as a structure; did you mean `Tiles`? [unknown-port-type]\n"},
    {"UniformOfAnUnknownStructure", "collapse", "", "own/own.fraglib",
     R"json("type": "float", "value": 8.0)json", R"json("type": "struct", "struct": "Grid")json", 1,
     "own/own.fraglib:6:65: error: fragment `stripes`: the type `Grid` of `rows` is none of the language, "
     "and nothing declares it as a structure [unknown-port-type]\n"},
    {"ParameterWithDefault", "collapse", "", "own/own.fraglib", R"json(float2 uv,)json",
     R"json(float2 uv = 0,)json", 1,
     "own/own.fraglib:10:45: error: fragment `stripes`: a parameter has no value in the code; give it one as "
     "`value` in `ports` [not-loaded]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:10:45 [not-loaded]\n"},
    {"PredefineIsAText", "collapse", "", "own/own.fraglib", R"json("includes": ["sfg_math.h"])json",
     R"json("predefine": "float a;")json", 1,
     "own/own.fraglib:8:18: error: fragment `stripes`: `predefine` must be an array of strings, not a string "
     "[wrong-kind]\n"
     "graph.json:10:36: note: for node `lines`, the fragment `stripes` cannot be loaded: see "
     "own/own.fraglib:8:18 [not-loaded]\n"},
    {"ShaderArgumentIsAUniform", "compile", "-o out.spv", "own/own.fraglib",
     R"json("\tresult = frac(uv.y * rows) < 0.5 ? color : color * 0.5;",)json",
     R"json("\tsfg_shader(color, position, rows, result, result);",)json", 1,
     "own/own.fraglib:12:38: error: fragment `stripes`: the uniform `rows` is not known among the arguments "
     "of `sfg_shader`; assign it to a variable in front of the call [shader-argument]\n"},
    {"ShaderArgumentIsAStateVariable", "compile", "-o out.spv", "own/own.fraglib",
     R"json("\tresult = frac(uv.y * rows) < 0.5 ? color : color * 0.5;",)json",
     R"json("\tsfg_shader(color, position, sfg_time, result, result);",)json", 1,
     "own/own.fraglib:12:38: error: fragment `stripes`: the state variable `sfg_time` is not known among the "
     "arguments of `sfg_shader`; assign it to a variable in front of the call [shader-argument]\n"},
    {"ShaderArgumentIsCut", "compile", "-o out.spv", "own/own.fraglib",
     R"json("\tresult = frac(uv.y * rows) < 0.5 ? color : color * 0.5;",)json",
     R"json("\tsfg_shader(color, position, uv.x + 0.5, result, result);",)json", 1,
     "own/own.fraglib:12:38: error: fragment `stripes`: the argument `uv.x + 0.5` of `sfg_shader` is cut at "
     "its blanks and commas; it must be one name or number; assign it to a variable in front of the call "
     "[shader-argument]\n"},
    {"ShaderArgumentIsAWarningInJson", "collapse", "--format json", "own/own.fraglib",
     R"json("\tresult = frac(uv.y * rows) < 0.5 ? color : color * 0.5;",)json",
     R"json("\tsfg_shader(color, position, rows, result, result);",)json", 0,
     "own/own.fraglib:12:38: warning: fragment `stripes`: the uniform `rows` is not known among the "
     "arguments of `sfg_shader`; assign it to a variable in front of the call [shader-argument]\n"},
    {"CodeSemicolonMissing", "compile", "-o out.spv", "own/own.fraglib", R"json(color * 0.5;)json",
     R"json(color * 0.5)json", 1,
     "own/own.fraglib:12:64: error: missing `;` behind `0.5` [compile-error]\n"
     "graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]\n"
     "generated:411:1: note: the compiler says \"';' : Expected\" of the line `}` [code-origin]\n"},
    {"CodeNameMistyped", "compile", "-o out.spv", "own/own.fraglib", R"json(uv.y * rows)json",
     R"json(uv.y * rwos)json", 1,
     "own/own.fraglib:12:31: error: `rwos` is not declared; did you mean `rows`? [compile-error]\n"
     "graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]\n"
     "generated:410:23: note: the compiler says \"'rwos' : unknown variable\" of the line `result = "
     "frac(uv.y * rwos) < 0.5 ? color : color * 0.5;` [code-origin]\n"},
    {"CodeFunctionMistyped", "compile", "-o out.spv", "own/own.fraglib", R"json(frac()json",
     R"json(fract()json", 1,
     "own/own.fraglib:12:19: error: `fract` is no function that is declared here; did you mean `frac`? "
     "[compile-error]\n"
     "graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]\n"
     "generated:410:11: note: the compiler says \"'fract' : no matching overloaded function found\" of the "
     "line `result = fract(uv.y * lines_rows) < 0.5 ? color : color * 0.5;` [code-origin]\n"},
    {"CodeBraceMissing", "compile", "-o out.spv", "own/own.fraglib",
     R"json("\tresult = frac(uv.y * rows) < 0.5 ? color : color * 0.5;",)json",
     R"json("\tif (uv.x > 0.5) {", "\tresult = color * rows;",)json", 1,
     "own/own.fraglib:12:26: error: `{` is not closed [compile-error]\n"
     "graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]\n"
     "generated:465: note: the compiler says \"'declaration' : Expected\" of the line `` [code-origin]\n"},
    {"CodeBracketMissing", "compile", "-o out.spv", "own/own.fraglib", R"json(frac(uv.y * rows) <)json",
     R"json(frac(uv.y * rows <)json", 1,
     "own/own.fraglib:12:23: error: `(` is not closed [compile-error]\n"
     "graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]\n"
     "generated:410:61: note: the compiler says \"')' : Expected\" of the line `result = frac(uv.y * "
     "lines_rows < 0.5 ? color : color * 0.5;` [code-origin]\n"},
    {"CodeSwizzleOutOfRange", "compile", "-o out.spv", "own/own.fraglib", R"json(uv.y * rows)json",
     R"json(uv.z * rows)json", 1,
     "own/own.fraglib:12:27: error: `.z` names components that `uv` of type `float2` does not have "
     "[compile-error]\n"
     "graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]\n"
     "generated:410:19: note: the compiler says \"'z' : vector swizzle selection out of range\" of the line "
     "`result = frac(uv.z * lines_rows) < 0.5 ? color : color * 0.5;` [code-origin]\n"},
    {"CodeVectorIntoAnother", "compile", "-o out.spv", "own/own.fraglib", R"json(color * 0.5;)json",
     R"json(color * uv;)json", 1,
     "own/own.fraglib:12:10: error: the value does not fit `result` of type `float3` [compile-error]\n"
     "graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]\n"
     "generated:410:9: note: the compiler says \"'' : could not create assignment\" of the line `result = "
     "frac(uv.y * lines_rows) < 0.5 ? color : color * uv;` [code-origin]\n"},
    {"CodeHelperOfNoInclude", "compile", "-o out.spv", "own/own.fraglib", R"json(frac(uv.y)json",
     R"json(sfg_noSuchHelper(uv.y)json", 1,
     "own/own.fraglib:12:19: error: `sfg_noSuchHelper` is no function that is declared here [compile-error]\n"
     "graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]\n"
     "generated:410:11: note: the compiler says \"'sfg_noSuchHelper' : no matching overloaded function "
     "found\" of the line `result = sfg_noSuchHelper(uv.y * lines_rows) < 0.5 ? color : color * 0.5;` "
     "[code-origin]\n"},
    {"CodeForMistyped", "compile", "-o out.spv", "own/own.fraglib", R"json(\tresult = frac()json",
     R"json(\tfro (int i = 0; i < 3; ++i) result = color;", "\tresult = frac()json", 1,
     R"told(own/own.fraglib:12:10: error: unexpected `fro`; did you mean `for`? [compile-error]
)told"
     R"told(graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]
)told"
     R"told(generated:410:7: note: the compiler says "'int' : unknown variable" of the line `fro (int i = 0; i < 3; ++i) result = color;` [code-origin]
)told"},
    {"CodeStateVariableMistyped", "compile", "-o out.spv", "own/own.fraglib", R"json(color * 0.5;)json",
     R"json(sfg_worldNormals;)json", 1,
     R"told(own/own.fraglib:12:53: error: `sfg_worldNormals` is not declared; did you mean `sfg_worldNormal`? [compile-error]
)told"
     R"told(graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]
)told"
     R"told(generated:410:51: note: the compiler says "'sfg_worldNormals' : unknown variable" of the line `result = frac(uv.y * lines_rows) < 0.5 ? color : sfg_worldNormals;` [code-origin]
)told"},
    {"CodeForeignCharacter", "compile", "-o out.spv", "own/own.fraglib", R"json(color * 0.5;)json",
     R"json(color * 0.5；)json", 1,
     R"told(own/own.fraglib:12:64: error: the character U+FF1B cannot stand in code [compile-error]
)told"
     R"told(graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]
)told"
     R"told(generated:410:62: note: the compiler says "'<bad token>' : unexpected token" of the line `result = frac(uv.y * lines_rows) < 0.5 ? color : color * 0.5；` [code-origin]
)told"},
    {"CodeInclude", "compile", "-o out.spv", "own/own.fraglib", R"json(\tresult = frac()json",
     R"json(#include \"sfg_math.h\"", "\tresult = frac()json", 1,
     R"told(own/own.fraglib:12:8: error: `#include` cannot stand in a fragment's code; name the file in `includes` [compile-error]
)told"
     R"told(graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]
)told"
     R"told(generated:410:2: note: the compiler says "'#include' : Could not process include directive for header name: sfg_math.h" of the line `#include "sfg_math.h"` [code-origin]
)told"},
    {"CodeInAPredefine", "compile", "-o out.spv", "own/own.fraglib", R"json("includes": ["sfg_math.h"],)json",
     R"json("predefine": ["float half_(float a)", "{", "\treturn a * b;", "}"],)json", 1,
     "own/own.fraglib:8:62: error: `b` is not declared [compile-error]\n"
     "graph.json:10:5: note: node `lines` uses the fragment `stripes` [code-origin]\n"
     "generated:407:13: note: the compiler says \"'b' : unknown variable\" of the line `return a * b;` "
     "[code-origin]\n"},
    {"CodeIncludeMisspelt", "compile", "-o out.spv", "own/own.fraglib", R"json(sfg_math.h)json",
     R"json(sfg_mtah.h)json", 0,
     "own/own.fraglib:8:18: warning: fragment `stripes` includes `sfg_mtah.h`, which is in no include "
     "folder; did you mean `sfg_math.h`? [missing-include]\n"},
    {"CodeUnknownFragment", "compile", "-o out.spv", "graph.json", R"json(fbmNoise2)json",
     R"json(fmbNoise2)json", 1,
     "graph.json:6:37: error: node `clouds` uses the fragment `fmbNoise2`, which no library has; did you "
     "mean `fbmNoise2`? [unknown-fragment]\n"
     "graph.json:6:37: note: the generator says \"sfgError : Failed to create fragment: fmbNoise2!\" "
     "[generator]\n"},
    {"LightProfileMistyped", "collapse", "--tool lightloop --environment scene.json", "scene.json",
     R"json("fill", "fragment": "pointLight", "profile": "sfg_Light")json",
     R"json("fill", "fragment": "pointLight", "profile": "sfg_Ligth")json", 1,
     "scene.json:4:60: error: light `fill` asks for the profile `sfg_Ligth`, which its fragment `pointLight` "
     "does not have; did you mean `sfg_Light`? Known are `msl_light`, `sfg_Light` [light-profile]\n"
     "scene.json:4:60: note: the generator says \"Failed to set light profile sfg_Ligth.\" [generator]\n"},
    {"LightProfileOfNoSurface", "collapse lit.json", "--tool lightloop --environment scene.json",
     "scene.json", R"json("profile": "sfg_Light" },)json", R"json("profile": "msl_light" },)json", 0,
     "scene.json:3:5: warning: light `key` asks for the profile `msl_light`, which no fragment of the graph "
     "has; did you mean `sfg_Light`? [unoffered-profile]\n"},
    {"LightLoopWithoutAProfileForTheLanguage", "collapse", "--tool lightloop --environment scene.json",
     "own/own.fraglib", R"json(["dx11"])json", R"json(["hlsl"])json", 1,
     "own/own.fraglib:7:18: warning: the profile is for no language that is known: `hlsl`; known is `dx11` "
     "[unknown-language]\n"
     "graph.json:10:5: error: node `lines` uses the fragment `stripes`, which has neither the profile "
     "`sfg_Light`, which light `key` asks for, nor `default` for the language `dx11` [no-profile]\n"
     "graph.json:10:5: note: the generator says \"Failed to set light profile sfg_Light.\" [generator]\n"},
    {"LightFragmentIsASurface", "collapse lit.json", "--tool lightloop --environment scene.json",
     "scene.json", R"json("pointLight")json", R"json("lambertSurface")json", 1,
     "scene.json:4:5: error: light `fill` gives `result` of type `float3` in the profile `sfg_Light` of "
     "fragment `lambertSurface`, but node `wall` (fragment `lambertSurface`) reads `sfg_currentLight` of "
     "type "
     "`sfg_Light` [light-type]\n"},
    {"SurfaceMistyped", "collapse", "--tool lightloop --environment scene.json", "lit.json",
     R"json("lambertSurface")json", R"json("lambertSurfce")json", 1,
     "lit.json:6:35: error: node `wall` uses the fragment `lambertSurfce`, which no library has; did you "
     "mean `lambertSurface`? [unknown-fragment]\n"
     "lit.json:6:35: note: the generator says \"sfgError : Failed to create fragment: lambertSurfce!\" "
     "[generator]\n"},
    {"SurfaceInputMistyped", "collapse", "--tool lightloop --environment scene.json", "lit.json",
     R"json("albedo")json", R"json("albdo")json", 2,
     "lit.json:6:65: error: node `wall` has no input `albdo`; did you mean `albedo`? Its inputs are "
     "`albedo`, `normal` [unknown-port]\n"},
    {"SurfaceOutputMistyped", "collapse", "--tool lightloop --environment scene.json", "lit.json",
     R"json("output": "color" })json", R"json("output": "colour" })json", 2,
     "lit.json:6:105: error: node `bricks` has no output `colour`; did you mean `color`? Its outputs are "
     "`color`, `height` [unknown-port]\n"},
    {"OutputIsTheGraph", "collapse", "-o graph.json", "graph.json", "", "", 2,
     "graph.json: error: is read by this command; write to another file [cannot-write]\n"},
    {"OutputIsALibrary", "collapse", "-o own/own.fraglib", "graph.json", "", "", 2,
     "own/own.fraglib: error: is read by this command; write to another file [cannot-write]\n"},
    {"DepfileIsTheOutput", "collapse", "-o out.hlsl --MF out.hlsl", "graph.json", "", "", 2,
     "out.hlsl: error: is named for two results; write to two files [cannot-write]\n"},
    {"OutputFolderIsMissing", "collapse", "-o no/out.hlsl", "graph.json", "", "", 2,
     "no/out.hlsl: error: cannot be written: No such file or directory [cannot-write]\n"},
    {"DeviceIsFull", "collapse", "-o /dev/full", "graph.json", "", "", 2,
     "/dev/full: error: cannot be written: No space left on device [cannot-write]\n"},
    {"EnvironmentMistyped", "collapse", "--tool lightloop --environment scen.json", "graph.json", "", "", 2,
     "scen.json: error: no such file [unreadable-file]\n"},
    {"LevelOfDetailIsAWord", "collapse", "--surface-lod high", "graph.json", "", "", 2,
     "sfg: error: --surface-lod: `high` is not a finite number [wrong-usage]\n"
     "try `sfg --help`, or `sfg COMMAND --help`\n"},
    {"StageMistyped", "collapse", "--stage pixle", "graph.json", "", "", 2,
     "sfg: error: --stage: `pixle` is none of `pixel`, `compute`, `vertex`; did you mean `pixel`? "
     "[wrong-usage]\n"
     "try `sfg --help`, or `sfg COMMAND --help`\n"},
    {"TargetMistyped", "compile", "--target sprv", "graph.json", "", "", 2,
     "sfg: error: --target: `sprv` is none of `spirv`, `hlsl`, `glsl`, `essl`, `msl`, `essl300`; did you "
     "mean `spirv`? [wrong-usage]\n"
     "try `sfg --help`, or `sfg COMMAND --help`\n"},
    {"OptionOfAnotherCommand", "collapse", "--target spirv", "graph.json", "", "", 2,
     "sfg: error: unknown option `--target` of `sfg collapse` [wrong-usage]\n"
     "try `sfg --help`, or `sfg COMMAND --help`\n"},
    {"SecondGraph", "collapse", "scene.json", "graph.json", "", "", 2,
     "sfg: error: `scene.json` was not expected behind the other arguments [wrong-usage]\n"
     "try `sfg --help`, or `sfg COMMAND --help`\n"},
    {"LanguageInCapitals", "collapse", "--language DX11", "graph.json", "", "", 2,
     "sfg: error: unknown language `DX11`; did you mean `dx11`? [unknown-language]\n"},
    {"FunctionNamedWithABlank", "collapse", "--function-name 'my function'", "graph.json", "", "", 2,
     "sfg: error: the function's name cannot stand in code: `my function` is no identifier; did you mean "
     "`my_function`? [bad-name]\n"},
    {"FunctionNamedFloat", "collapse", "--function-name float", "graph.json", "", "", 2,
     "sfg: error: the function's name cannot stand in code: `float` is a word of the shading language; did "
     "you mean `float_`? [bad-name]\n"},
    {"OptionMistyped", "collapse", "--envronment scene.json", "graph.json", "", "", 2,
     "sfg: error: unknown option `--envronment` of `sfg collapse`; did you mean `--environment`? "
     "[wrong-usage]\n"
     "try `sfg --help`, or `sfg COMMAND --help`\n"},
    {"ToolMistyped", "collapse", "--tool lightlop", "graph.json", "", "", 2,
     "sfg: error: --tool: `lightlop` is none of `default`, `lightloop`; did you mean `lightloop`? "
     "[wrong-usage]\n"
     "try `sfg --help`, or `sfg COMMAND --help`\n"},
    {"LanguageMistyped", "collapse", "--language dx1", "graph.json", "", "", 2,
     "sfg: error: unknown language `dx1`; did you mean `dx11`? [unknown-language]\n"},
    {"IncludeFolderMissing", "collapse", "-I incldes", "graph.json", "", "", 2,
     "sfg: error: the folder `incldes` does not exist [unknown-folder]\n"},
    {"LibraryFolderMistyped", "collapse", "-L owm", "graph.json", "", "", 2,
     "sfg: error: the folder `owm` does not exist; did you mean `own`? [unknown-folder]\n"},
};

std::string nameOf(const testing::TestParamInfo<Mistake>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Documents, MistakeTest, testing::ValuesIn(kMistakes), nameOf);

/// Folders and include files instead of texts.
class FileMistakeTest : public CommandTest {
protected:
  FileMistakeTest() {
    write("graph.json", R"({ "outputs": [ { "name": "c", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "far" } ] })");
    write("lib/far.fraglib", R"json({ "far": { "language": ["dx11"], "includes": ["far.h"],
  "implementation": ["void far(out float3 result)", "{", "result = 1;", "}"] } })json");
    write("lib/other.h", "float other;\n");
  }
  CommandRun collapse() const { return run("collapse graph.json -L lib -I lib"); }
};

TEST_F(FileMistakeTest, IncludeFileThatOnlyIncludesIsSound) {
  write("lib/far.h", "#include \"other.h\"\n");
  EXPECT_EQ(collapse().err, "");
}

TEST_F(FileMistakeTest, IncludeFileThatIsEmpty) {
  write("lib/far.h", "");
  EXPECT_EQ(collapse().err,
            "lib/far.h: warning: the include file is empty; fragment `far` includes it [empty-include]\n");
}

TEST_F(FileMistakeTest, IncludeFileThatIsAFolder) {
  write("lib/far.h/x", "");
  EXPECT_EQ(collapse().err,
            "lib/far.h: warning: the include file cannot be read: it is a folder; fragment `far` "
            "includes it [unreadable-include]\n");
}

TEST_F(FileMistakeTest, IncludeFileNamedByAnIncludeFile) {
  write("lib/far.h", "float far;\n#include \"othre.h\"\n");
  EXPECT_EQ(collapse().err,
            "lib/far.h:2:10: warning: this include file includes `othre.h`, which is in no include "
            "folder; did you mean `other.h`? [missing-include]\n");
}

TEST_F(FileMistakeTest, ListWithoutLibraries) {
  const CommandRun result = run("list");
  EXPECT_EQ(result.err, "sfg: error: no folder of libraries is given (`-L DIR`) [wrong-usage]\n");
  EXPECT_EQ(result.status, 2);
}

TEST_F(FileMistakeTest, ListWithABrokenLibrary) {
  write("lib/a.fraglib", "{ \"f\": ");
  const CommandRun result = run("list -L lib");
  EXPECT_EQ(result.err,
            "lib/a.fraglib:1:8: error: expected a value, found the end of the text [malformed-json]\n");
  EXPECT_EQ(result.out, "far  lib/far.fraglib:1:10\n");
  EXPECT_EQ(result.status, 1);
}

TEST_F(FileMistakeTest, DumpOfAnUnknownFragment) {
  const CommandRun result = run("dump -L lib farr");
  EXPECT_EQ(result.err, "sfg: error: unknown fragment `farr`; did you mean `far`? [unknown-fragment]\n");
  EXPECT_EQ(result.status, 2);
}

TEST_F(FileMistakeTest, CommandMistyped) {
  EXPECT_EQ(run("colapse graph.json").err,
            "sfg: error: unknown command `colapse`; did you mean `collapse`? [wrong-usage]\n"
            "try `sfg --help`, or `sfg COMMAND --help`\n");
}

TEST_F(FileMistakeTest, SourceIsShownInFull) {
  write("lib/far.h", "");
  write("graph.json", "{\n\t\"nodse\": []\n}\n");
  const CommandRun result = run("collapse graph.json -L lib -I lib --diagnostics=full");
  EXPECT_EQ(result.err.substr(0, result.err.find("graph.json: error")),
            "graph.json:2:2: warning: unknown key `nodse` of a graph; did you mean `nodes`? [unknown-key]\n"
            "    2 |     \"nodse\": []\n"
            "      |     ^\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
