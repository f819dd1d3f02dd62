// What the command refuses: exit status, place and reason.

#include <ostream>

#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

struct Refusal {
  const char* name;
  const char* graph;
  int status;
  const char* message;
  const char* environment = nullptr;
  const char* arguments = "";
};

std::ostream& operator<<(std::ostream& out, const Refusal& refusal) { return out << refusal.name; }

// "shade" fragments call their input `a` as a function; "lerp3" is an expression, "blend3" a function.
constexpr const char* kCallers = R"json({
  "lerp3": { "mode": "inline", "language": ["dx11"], "implementation": ["lerp({{x}}, {{y}}, 0.5)"] },
  "blend3": { "language": ["dx11"], "implementation": [
    "void blend3(float3 x, float3 y, out float3 result)", "{", "result = x + y;", "}" ], "ports": { "x": { "value": [0, 0, 0] }, "y": { "value": [0, 0, 0] } } },
  "coarse3": { "profiles": [
    { "language": ["dx11"], "lod": 100, "implementation": [
      "void coarse3(float3 x, float3 y, out float3 result)", "{", "result = x + y;", "}" ] },
    { "language": ["dx11"], "lod": 10, "mode": "inline", "implementation": ["lerp({{x}}, {{y}}, 0.5)"] } ], "ports": { "x": { "value": [0, 0, 0] }, "y": { "value": [0, 0, 0] } } },
  "shade": { "language": ["dx11"], "implementation": [
    "void shade(float3 a, out float3 result)", "{", "float3 called;", "sfg_shader(a, result, called);",
    "result = called;", "}" ], "ports": { "a": { "value": [0, 0, 0] } } },
  "shadeEarly": { "language": ["dx11"],
    "predefine": ["float3 early() { float3 called; sfg_shader(a, result, called); return called; }"],
    "implementation": ["void shadeEarly(float3 a, out float3 result)", "{", "result = early();", "}"], "ports": { "a": { "value": [0, 0, 0] } } },
  "shadeInComment": { "language": ["dx11"], "implementation": [
    "void shadeInComment(float3 a, out float3 result)", "{", "// sfg_shader(a, result, result);", "result = a;", "}" ], "ports": { "a": { "value": [0, 0, 0] } } },
  "shadeLit": { "profiles": [
    { "language": ["dx11"], "implementation": ["void shadeLit(float3 a, out float3 result)", "{", "result = a;", "}"] },
    { "name": "Lamp", "language": ["dx11"], "implementation": [
      "void shadeLit(float3 a, out float3 result)", "{", "float3 called;", "sfg_shader(a, result, called);",
      "result = called * sfg_currentLight.color;", "}" ] } ], "ports": { "a": { "value": [0, 0, 0] } } }
})json";

/// In place of DOUBLING: forty nodes, each an expression of twice the length of the one before.
std::string withDoublings(std::string graph) {
  const std::size_t place = graph.find("DOUBLING");
  if (place == graph.npos) return graph;
  std::string nodes;
  for (int i = 0; i < 40; ++i) {
    const std::string before = R"({ "node": "d)" + std::to_string(i - 1) + "\" }";
    const std::string source = i == 0 ? R"({ "value": 1 })" : before;
    nodes += R"({ "name": "d)" + std::to_string(i) + R"(", "fragment": "sum", "interface": {
      "inputs": [ { "name": "a", "type": "float" }, { "name": "b", "type": "float" } ],
      "outputs": [ { "name": "r", "type": "float" } ] }, "inputs": { "a": )" +
             source + R"(, "b": )" + source + " } },\n";
  }
  return graph.replace(place, 8, nodes);
}

class RefusalTest : public CommandTest, public testing::WithParamInterface<Refusal> {};

TEST_P(RefusalTest, TellsPlaceAndReason) {
  const Refusal& refusal = GetParam();
  writeLibrary();
  write("lib/callers.fraglib", kCallers);
  write("graph.json", withDoublings(refusal.graph));
  if (refusal.environment != nullptr) write("scene.json", refusal.environment);
  const std::string scene = refusal.environment != nullptr ? " --environment scene.json " : " ";
  const CommandRun result = run("collapse graph.json -L lib --format json" + scene + refusal.arguments);
  EXPECT_EQ(result.err, refusal.message);
  EXPECT_EQ(result.status, refusal.status);
}

constexpr const char* kRed = R"({ "outputs": [ { "name": "color", "type": "float3", "node": "red" } ],
  "nodes": [ { "name": "red", "fragment": "tint" } ] })";

const Refusal kDocuments[] = {
    {"MalformedJson", "{ \"nodes\": [ }", 2,
     "graph.json:1:14: error: expected a value or `]`, found `}` [malformed-json]\n"},
    {"EmptyFile", "", 2,
     "graph.json:1:1: error: expected a value, found the end of the text [malformed-json]\n"},
    {"TopLevelIsNoObject", "[]", 2,
     "graph.json:1:1: error: expected an object at the top level [wrong-kind]\n"},
    {"NodesIsNoArray", R"({ "nodes": {} })", 2,
     "graph.json:1:12: error: `nodes` must be an array [wrong-kind]\n"},
    {"NodeIsNoObject", R"({ "nodes": [ 3 ] })", 2,
     "graph.json:1:14: error: expected an object [wrong-kind]\n"},
    {"NodeWithoutName", R"({ "nodes": [ { "fragment": "tint" } ] })", 2,
     "graph.json:1:14: error: `name` is missing [missing-key]\n"},
    {"NodeWithoutFragment", R"({ "nodes": [ { "name": "a" } ] })", 2,
     "graph.json:1:14: error: `fragment` is missing [missing-key]\n"},
    {"NodeNameTwice", R"({ "nodes": [ { "name": "a", "fragment": "tint" },
  { "name": "a", "fragment": "tint" } ] })",
     2, "graph.json:2:13: error: the node name `a` is used twice [repeated-name]\n"},
    {"PortNameTwice", R"({ "nodes": [ { "name": "a", "fragment": "twice", "interface": {
  "inputs": [ { "name": "x", "type": "float" }, { "name": "x", "type": "float" } ] } } ] })",
     2, "graph.json:2:59: error: the port name `x` is used twice [repeated-name]\n"},
    {"OutputPortNameTwice", R"({ "nodes": [ { "name": "a", "fragment": "twice", "interface": {
  "outputs": [ { "name": "x", "type": "float" }, { "name": "x", "type": "float" } ] } } ] })",
     2, "graph.json:2:60: error: the port name `x` is used twice [repeated-name]\n"},
    {"GraphInputNameTwice",
     R"({ "inputs": [ { "name": "x", "type": "float" }, { "name": "x", "type": "int" } ] })", 2,
     "graph.json:1:59: error: the name `x` is used twice among graph inputs and outputs [repeated-name]\n"},
    {"GraphInputAndOutputShareNames", R"({ "inputs": [ { "name": "x", "type": "float" } ],
  "outputs": [ { "name": "x", "type": "float" } ] })",
     2,
     "graph.json:2:26: error: the name `x` is used twice among graph inputs and outputs [repeated-name]\n"},
    {"ParameterWithoutType", R"({ "inputs": [ { "name": "x" } ] })", 2,
     "graph.json:1:15: error: `type` is missing [missing-key]\n"},
    {"ParameterOfUnknownType", R"({ "uniforms": [ { "name": "x", "type": "float5" } ] })", 2,
     "graph.json:1:40: error: `type` names no type: `float5`; did you mean `float`? Types are `bool`, `int`, "
     "`int2`, `int3`, `int4`, `uint`, `uint2`, `uint3`, `uint4`, `float`, `float2`, `float3`, `float4`, "
     "`float2x2`, `float3x3`, `float4x4`, `sampler1D`, `sampler2D`, `sampler3D`, `samplerCube`, `struct` "
     "[unknown-type]\n"},
    {"StructureWithoutName", R"({ "inputs": [ { "name": "x", "type": "struct" } ] })", 2,
     "graph.json:1:15: error: `struct` is missing [missing-key]\n"},
    {"ParameterValueDoesNotFit", R"({ "inputs": [ { "name": "x", "type": "float2", "value": [1, 2, 3] } ] })",
     2,
     "graph.json:1:57: error: `value` must hold as many numbers as the type `float2` has components: 2 "
     "[wrong-value]\n"},
    {"ConstantSamplerParameter",
     R"({ "inputs": [ { "name": "x", "type": "sampler2D", "constant": true } ] })", 2,
     "graph.json:1:15: error: `x` cannot be constant: a value of type `sfg_sampler2D` has no text "
     "[wrong-value]\n"},
    {"InputHoldsNothing",
     R"({ "nodes": [ { "name": "a", "fragment": "tint", "inputs": { "amount": {} } } ] })", 2,
     "graph.json:1:71: error: input `amount` of node `a` must hold exactly one of `node`, `graphInput`, "
     "`value`, `constant` [one-source]\n"},
    {"InputHoldsTwo", R"({ "nodes": [ { "name": "a", "fragment": "tint",
  "inputs": { "amount": { "value": 1, "constant": 2 } } } ] })",
     2,
     "graph.json:2:25: error: input `amount` of node `a` must hold exactly one of `node`, `graphInput`, "
     "`value`, `constant` [one-source]\n"},
    {"InputHoldsThree", R"({ "nodes": [ { "name": "a", "fragment": "tint",
  "inputs": { "amount": { "value": 1, "node": "a", "graphInput": "x" } } } ] })",
     2,
     "graph.json:2:25: error: input `amount` of node `a` must hold exactly one of `node`, `graphInput`, "
     "`value`, `constant` [one-source]\n"},
    {"InputIsNoObject", R"({ "nodes": [ { "name": "a", "fragment": "tint", "inputs": { "amount": 3 } } ] })",
     2, "graph.json:1:71: error: input `amount` of node `a` must be an object [wrong-kind]\n"},
    {"UnknownInputPort",
     R"({ "nodes": [ { "name": "a", "fragment": "tint", "inputs": { "amuont": { "value": 3 } } } ] })", 2,
     "graph.json:1:61: error: node `a` has no input `amuont`; did you mean `amount`? Its inputs are `color`, "
     "`amount` [unknown-port]\n"},
    {"UnknownSourceNode",
     R"({ "nodes": [ { "name": "a", "fragment": "tint", "inputs": { "color": { "node": "b" } } } ] })", 2,
     "graph.json:1:80: error: unknown node `b` [unknown-node]\n"},
    {"UnknownSourcePort", R"({ "nodes": [ { "name": "a", "fragment": "tint" },
  { "name": "b", "fragment": "tint", "inputs": { "color": { "node": "a", "output": "color" } } } ] })",
     2, "graph.json:2:84: error: node `a` has no output `color`; its outputs are `result` [unknown-port]\n"},
    {"InlineWithoutInterface", R"({ "nodes": [ { "name": "a", "fragment": "twice" },
  { "name": "b", "fragment": "tint", "inputs": { "amount": { "node": "a" } } } ] })",
     2,
     "graph.json:2:60: error: node `a` has no outputs; a node of an inline fragment needs an `interface` "
     "[unknown-port]\n"},
    {"UnknownGraphInput",
     R"({ "nodes": [ { "name": "a", "fragment": "tint", "inputs": { "color": { "graphInput": "x" } } } ] })",
     2, "graph.json:1:86: error: unknown graph input `x`; the graph inputs are none [unknown-graph-input]\n"},
    {"OutputOfUnknownNode", R"({ "outputs": [ { "name": "x", "type": "float", "node": "a" } ] })", 2,
     "graph.json:1:56: error: unknown node `a` [unknown-node]\n"},
    {"OutputOfUnknownPort", R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a", "output": "y" } ],
  "nodes": [ { "name": "a", "fragment": "tint" } ] })",
     2, "graph.json:1:72: error: node `a` has no output `y`; its outputs are `result` [unknown-port]\n"},
    {"OutputPortWithoutNode", R"({ "outputs": [ { "name": "x", "type": "float3", "output": "y" } ] })", 2,
     "graph.json:1:59: error: `output` needs a `node` [output-without-node]\n"},
    {"ValueDoesNotFit",
     R"({ "nodes": [ { "name": "a", "fragment": "tint", "inputs": { "color": { "value": [1, 2] } } } ] })", 2,
     "graph.json:1:81: error: `value` of input `color` of node `a` does not fit the type `float3`: expected "
     "an array of 3 numbers [wrong-value]\n"},
    {"ConstantDoesNotFit",
     R"({ "nodes": [ { "name": "a", "fragment": "tint", "inputs": { "amount": { "constant": true } } } ] })",
     2,
     "graph.json:1:85: error: `constant` of input `amount` of node `a` does not fit the type `float`: "
     "expected a number [wrong-value]\n"},
    {"ConstantOfSampler",
     R"({ "nodes": [ { "name": "a", "fragment": "pick", "inputs": { "image": { "constant": 1 } } } ] })", 2,
     "graph.json:1:84: error: `constant` of input `image` of node `a` cannot be given: a value of type "
     "`sfg_sampler2D` has no text [wrong-value]\n"},
    {"ConstantOfStructure",
     R"({ "nodes": [ { "name": "a", "fragment": "measure", "inputs": { "patch": { "constant": 1 } } } ] })",
     2,
     "graph.json:1:87: error: `constant` of input `patch` of node `a` cannot be given: a value of type "
     "`Patch` has no text [wrong-value]\n"},
    {"ValueOfSampler",
     R"({ "nodes": [ { "name": "a", "fragment": "pick", "inputs": { "image": { "value": 1 } } } ] })", 2,
     "graph.json:1:81: error: `value` of input `image` of node `a` cannot be given: a value of type "
     "`sfg_sampler2D` has no text [wrong-value]\n"},
    {"UnknownPreprocessFragment", R"({ "preprocess": [ "nope" ] })", 2,
     "graph.json:1:19: error: unknown fragment `nope` [unknown-fragment]\n"},
    {"UnknownPostprocessFragment", R"({ "postprocess": [ "nope" ] })", 2,
     "graph.json:1:20: error: unknown fragment `nope` [unknown-fragment]\n"},
    {"PreprocessIsNoName", R"({ "preprocess": [ {} ] })", 2,
     "graph.json:1:19: error: expected a string that is not empty [wrong-kind]\n"},
    {"ChainRefusesPostprocess", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "red" } ],
  "nodes": [ { "name": "red", "fragment": "tint" } ],
  "postprocess": [ "grade",
    "frame" ] })",
     2,
     "graph.json:4:5: error: the inputs of post-process fragment `frame` do not fit the outputs of `grade` "
     "[chain-mismatch]\n"},
};

const Refusal kEnvironments[] = {
    {"MalformedEnvironment", kRed, 2,
     "scene.json:1:18: error: expected a member name behind the comma in front of this bracket, found `}` "
     "[malformed-json]\n",
     "{ \"lights\": [ ], }"},
    {"LightsIsNoArray", kRed, 2, "scene.json:1:13: error: `lights` must be an array [wrong-kind]\n",
     R"({ "lights": {} })"},
    {"LightWithoutFragment", kRed, 2, "scene.json:1:15: error: `fragment` is missing [missing-key]\n",
     R"({ "lights": [ { "name": "key" } ] })"},
    {"UnknownLightFragment", kRed, 2,
     "scene.json:1:29: error: unknown fragment `sun`; did you mean `sum`? [unknown-fragment]\n",
     R"({ "lights": [ { "fragment": "sun" } ] })"},
    {"LightNameTwice", kRed, 2,
     "scene.json:2:13: error: the light name `key` is used twice [repeated-name]\n",
     R"({ "lights": [ { "name": "key", "fragment": "lamp" },
  { "name": "key", "fragment": "lamp" } ] })"},
    {"LightNameTwiceByDefault", kRed, 2,
     "scene.json:2:3: error: the light name `light1` is used twice [repeated-name]\n",
     R"({ "lights": [ { "name": "light1", "fragment": "lamp" },
  { "fragment": "lamp" } ] })"},
    {"UnknownOutputFragment", kRed, 2,
     "scene.json:1:13: error: unknown fragment `screen` [unknown-fragment]\n", R"({ "output": "screen" })"},
};

const Refusal kArguments[] = {
    {"LibraryFolderIsMissing", kRed, 2, "sfg: error: the folder `nowhere` does not exist [unknown-folder]\n",
     nullptr, "-L nowhere"},
    {"LibraryFolderIsAFile", kRed, 2, "sfg: error: `graph.json` is not a folder [unknown-folder]\n", nullptr,
     "-L graph.json"},
    {"IncludeFolderIsMissing", kRed, 2, "sfg: error: the folder `nowhere` does not exist [unknown-folder]\n",
     nullptr, "-I nowhere"},
    {"EnvironmentIsMissing", kRed, 2, "nowhere.json: error: no such file [unreadable-file]\n", nullptr,
     "--environment nowhere.json"},
    {"UnknownLanguage", kRed, 2,
     "sfg: error: unknown language `dx12`; did you mean `dx11`? [unknown-language]\n", nullptr,
     "--language dx12"},
    {"UnknownTool", kRed, 2,
     "sfg: error: --tool: `fast` is none of `default`, `lightloop` [wrong-usage]\ntry `sfg --help`, or `sfg "
     "COMMAND --help`\n",
     nullptr, "--tool fast"},
    {"UnknownOption", kRed, 2,
     "sfg: error: unknown option `--fast` of `sfg collapse` [wrong-usage]\n"
     "try `sfg --help`, or `sfg COMMAND --help`\n",
     nullptr, "--fast"},
    {"LevelOfDetailIsNoNumber", kRed, 2,
     "sfg: error: --surface-lod: `fine` is not a finite number [wrong-usage]\ntry `sfg --help`, or `sfg "
     "COMMAND --help`\n",
     nullptr, "--surface-lod fine"},
    {"LevelOfDetailIsNotFinite", kRed, 2,
     "sfg: error: --light-lod: `inf` is not a finite number [wrong-usage]\ntry `sfg --help`, or `sfg COMMAND "
     "--help`\n",
     nullptr, "--light-lod inf"},
    {"OutputFolderIsMissing", kRed, 2,
     "nowhere/out.json: error: cannot be written: No such file or directory [cannot-write]\n", nullptr,
     "-o nowhere/out.json"},
};

const Refusal kCollapses[] = {
    {"UnknownFragmentOfANode",
     R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a", "output": "any" } ],
  "nodes": [
    { "name": "a", "fragment": "paint", "inputs": { "whatever": { "value": 3 } } } ] })",
     1,
     "graph.json:3:32: error: node `a` uses the fragment `paint`, which no library has [unknown-fragment]\n"
     "graph.json:3:32: note: the generator says \"sfgError : Failed to create fragment: paint!\" "
     "[generator]\n"},
    {"Loop", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "grade", "inputs": { "color": { "node": "b" } } },
    { "name": "b", "fragment": "tint", "inputs": { "color": { "node": "c" } } },
    { "name": "c", "fragment": "grade", "inputs": { "color": { "node": "a" } } } ] })",
     1,
     "graph.json:4:62: error: input `color` of node `c` closes a loop through node `a` [loop]\n"
     "graph.json:4:62: note: the generator says \"sfgError : circular loop: grade!\" [generator]\n"},
    {"LoopToItself", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "grade", "inputs": { "color": { "node": "a" } } } ] })",
     1,
     "graph.json:2:71: error: input `color` of node `a` closes a loop through node `a` [loop]\n"
     "graph.json:2:71: note: the generator says \"sfgError : circular loop: grade!\" [generator]\n"},
    {"NoOutputs", R"({ "nodes": [ { "name": "a", "fragment": "tint" } ] })", 1,
     "graph.json: error: the graph has no `outputs` [no-output]\n"
     "graph.json: note: the generator says \"sfgError : the graph should has at least one output!\" "
     "[generator]\n"},
    {"UnwiredOutput", R"({ "outputs": [ { "name": "color", "type": "float3" } ] })", 1,
     "graph.json:1:16: error: graph output `color` has no `node` [unwired-output]\n"
     "graph.json:1:16: note: the generator says \"Graph output must be connected to a fragment!\" "
     "[generator]\n"},
    {"UnwiredOutputOfLightLoop", R"({ "outputs": [ { "name": "color", "type": "float3" } ] })", 1,
     "graph.json:1:16: error: graph output `color` has no `node` [unwired-output]\n"
     "graph.json:1:16: note: the generator says \"Graph output must have connection!\" [generator]\n",
     nullptr, "--tool lightloop"},
    {"PreprocessWithInputs", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint" } ], "preprocess": [ "clock", "grade" ] })",
     1,
     "graph.json:2:78: error: pre-process fragment `grade` has the input `color` [preprocess-input]\n"
     "graph.json:2:78: note: the generator says \"sfgError : pre-process fragment should has no inputs!\" "
     "[generator]\n"},
    {"PostprocessDoesNotFitGraph", R"({ "outputs": [ { "name": "size", "type": "float", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "measure" } ], "postprocess": [ "grade" ] })",
     1,
     "graph.json:1:16: error: graph output `size` of type `float` feeds input `color` of post-process "
     "fragment `grade` of type `float3` [chain-mismatch]\n"
     "graph.json:1:16: note: the generator says \"sfgError : the graph outputs should be the same as the "
     "output fragment inputs!\" [generator]\n"},
    {"OutputFragmentDoesNotFitGraph", R"({ "outputs": [ { "name": "size", "type": "int", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "measure" } ] })",
     1,
     "graph.json:1:16: error: graph output `size` of type `int` feeds input `color` of output fragment "
     "`frame` of type `float4` [chain-mismatch]\n"
     "graph.json:1:16: note: the generator says \"sfgError : the graph outputs should be the same as the "
     "output fragment inputs!\" [generator]\n",
     R"({ "output": "frame" })"},
    {"OutputsOfSeveralNodes", R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" },
    { "name": "y", "type": "float3", "node": "b" } ],
  "nodes": [ { "name": "a", "fragment": "tint" }, { "name": "b", "fragment": "tint" } ] })",
     1,
     "graph.json:2:5: error: graph output `y` comes from node `b` and `x` from node `a`; without a light "
     "loop all outputs come from one node [several-sources]\n"
     "graph.json:2:5: note: the generator says \"Failed to evaluate fragment!\" [generator]\n"},
    {"InlineFragmentWithTooManyInputs", R"({ "outputs": [ { "name": "x", "type": "float3", "node": "b" } ],
  "nodes": [ { "name": "a", "fragment": "twice", "interface": {
    "inputs": [ { "name": "a", "type": "float" }, { "name": "b", "type": "float" } ],
    "outputs": [ { "name": "r", "type": "float" } ] } },
  { "name": "b", "fragment": "tint", "inputs": { "amount": { "node": "a" } } } ] })",
     1,
     "graph.json:2:14: error: node `a` has 2 inputs, its fragment `twice` 1 [port-count]\n"
     "graph.json:2:14: note: the generator says \"Inline body parameter count is not equal to the node input "
     "count!\" [generator]\n"},
    {"OutputOfUnknownType", R"({ "outputs": [ { "name": "x", "type": "Lamp", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "lamp" } ] })",
     2,
     "graph.json:1:39: error: `type` names no type: `Lamp`; types are `bool`, `int`, `int2`, `int3`, `int4`, "
     "`uint`, `uint2`, `uint3`, `uint4`, `float`, `float2`, `float3`, `float4`, `float2x2`, `float3x3`, "
     "`float4x4`, `sampler1D`, `sampler2D`, `sampler3D`, `samplerCube`, `struct` [unknown-type]\n"},
    {"NodeWithoutDefaultProfile",
     R"({ "outputs": [ { "name": "x", "type": "struct", "struct": "Lamp", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "lamp" } ] })",
     1,
     "graph.json:2:14: error: node `a` uses the fragment `lamp`, which has no profile `default` for the "
     "language `dx11` [no-profile]\n"},
    {"CodeThatGrowsTooLarge", R"({ "outputs": [ { "name": "x", "type": "float3", "node": "b" } ],
  "nodes": [ DOUBLING
  { "name": "b", "fragment": "tint", "inputs": { "amount": { "node": "d39" } } } ] })",
     1,
     "sfgError : the generated code is too large!\ngraph.json: note: while this graph was collapsed "
     "[collapse-place]\n"},
    {"FunctionWithTooFewInputs", R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint", "interface": {
    "inputs": [ { "name": "color", "type": "float3" } ],
    "outputs": [ { "name": "r", "type": "float3" } ] } } ] })",
     1,
     "graph.json:2:14: error: node `a` has 1 inputs, its fragment `tint` 2 [port-count]\n"
     "graph.json:2:14: note: the generator says \"Failed to evaluate fragment!\" [generator]\n"},
    {"FunctionWithTooManyOutputsUnderLightLoop",
     R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a", "output": "s" } ],
  "nodes": [ { "name": "a", "fragment": "grade", "interface": {
    "inputs": [ { "name": "color", "type": "float3" } ],
    "outputs": [ { "name": "r", "type": "float3" }, { "name": "s", "type": "float3" } ] } } ] })",
     1, "graph.json:2:14: error: node `a` has 2 outputs, its fragment `grade` 1 [port-count]\n", nullptr,
     "--tool lightloop"},
    {"PreprocessWithoutDefaultProfile", R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint" } ], "preprocess": [ "lamp" ] })",
     1,
     "graph.json:2:69: error: the chain uses the fragment `lamp`, which has no profile `default` for the "
     "language `dx11` [no-profile]\n"
     "graph.json:2:69: note: the generator says \"The fragment lamp doesn't have a default profile\" "
     "[generator]\n"},
    {"PostprocessThatWantsMore", R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint" } ], "postprocess": [ "tint" ] })",
     1,
     "graph.json: error: the graph has no output for input `amount` of post-process fragment `tint` "
     "[chain-mismatch]\n"
     "graph.json: note: the generator says \"sfgError : the graph outputs should be the same as the output "
     "fragment inputs!\" [generator]\n"},
    {"SurfaceWithoutDefaultProfileAndNoLight",
     R"({ "outputs": [ { "name": "x", "type": "struct", "struct": "Lamp", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "lamp" } ] })",
     1,
     "graph.json:2:14: error: node `a` uses the fragment `lamp`, which has no profile `default` for the "
     "language `dx11` [no-profile]\n"
     "graph.json:2:14: note: the generator says \"Failed to set default profile.\" [generator]\n",
     nullptr, "--tool lightloop"},
    {"SurfaceWithoutTheLightsProfile",
     R"({ "outputs": [ { "name": "x", "type": "struct", "struct": "Lamp", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "lamp" } ] })",
     1,
     "graph.json:2:14: error: node `a` uses the fragment `lamp`, which has neither the profile `Neon`, which "
     "light `key` asks for, nor `default` for the language `dx11` [no-profile]\n"
     "graph.json:2:14: note: the generator says \"Failed to set light profile Neon.\" [generator]\n",
     R"({ "lights": [ { "name": "key", "fragment": "lit", "profile": "Neon" } ] })", "--tool lightloop"},
    {"LightWithoutProfile", R"({ "outputs": [ { "name": "x", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "lit" } ] })",
     1,
     "scene.json:1:63: error: light `key` asks for the profile `Neon`, which its fragment `lamp` does not "
     "have; known are `Lamp` [light-profile]\n"
     "scene.json:1:63: note: the generator says \"Failed to set light profile Neon.\" [generator]\n",
     R"({ "lights": [ { "name": "key", "fragment": "lamp", "profile": "Neon" } ] })", "--tool lightloop"},
};

constexpr const char* kLamp = R"({ "lights": [ { "name": "key", "fragment": "lamp", "profile": "Lamp" } ] })";
constexpr const char* kCalledExpression =
    R"({ "outputs": [ { "name": "color", "type": "float3", "node": "shade" } ],
  "nodes": [ { "name": "shade", "fragment": "shade", "inputs": { "a": { "node": "mix" } } },
  { "name": "mix", "fragment": "lerp3", "interface": {
    "inputs": [ { "name": "x", "type": "float3", "value": [0, 0, 0] }, { "name": "y", "type": "float3", "value": [0, 0, 0] } ],
    "outputs": [ { "name": "r", "type": "float3" } ] } } ] })";
constexpr const char* kCalledFunction =
    R"({ "outputs": [ { "name": "color", "type": "float3", "node": "shade" } ],
  "nodes": [ { "name": "shade", "fragment": "shade", "inputs": { "a": { "node": "mix" } } },
  { "name": "mix", "fragment": "blend3", "interface": {
    "inputs": [ { "name": "x", "type": "float3", "value": [0, 0, 0] }, { "name": "y", "type": "float3", "value": [0, 0, 0] } ],
    "outputs": [ { "name": "r", "type": "float3" } ] } } ] })";
constexpr const char* kCalledCoarse =
    R"({ "outputs": [ { "name": "color", "type": "float3", "node": "shade" } ],
  "nodes": [ { "name": "shade", "fragment": "shade", "inputs": { "a": { "node": "mix" } } },
  { "name": "mix", "fragment": "coarse3", "interface": {
    "inputs": [ { "name": "x", "type": "float3", "value": [0, 0, 0] }, { "name": "y", "type": "float3", "value": [0, 0, 0] } ],
    "outputs": [ { "name": "r", "type": "float3" } ] } } ] })";
constexpr const char* kCalledEarly =
    R"({ "outputs": [ { "name": "color", "type": "float3", "node": "shade" } ],
  "nodes": [ { "name": "shade", "fragment": "shadeEarly", "inputs": { "a": { "node": "mix" } } },
  { "name": "mix", "fragment": "lerp3", "interface": {
    "inputs": [ { "name": "x", "type": "float3", "value": [0, 0, 0] }, { "name": "y", "type": "float3", "value": [0, 0, 0] } ],
    "outputs": [ { "name": "r", "type": "float3" } ] } } ] })";
constexpr const char* kCalledInComment =
    R"({ "outputs": [ { "name": "color", "type": "float3", "node": "shade" } ],
  "nodes": [ { "name": "shade", "fragment": "shadeInComment", "inputs": { "a": { "node": "mix" } } },
  { "name": "mix", "fragment": "lerp3", "interface": {
    "inputs": [ { "name": "x", "type": "float3", "value": [0, 0, 0] }, { "name": "y", "type": "float3", "value": [0, 0, 0] } ],
    "outputs": [ { "name": "r", "type": "float3" } ] } } ] })";
constexpr const char* kCalledLit = R"({ "outputs": [ { "name": "color", "type": "float3", "node": "shade" } ],
  "nodes": [ { "name": "shade", "fragment": "shadeLit", "inputs": { "a": { "node": "mix" } } },
  { "name": "mix", "fragment": "lerp3", "interface": {
    "inputs": [ { "name": "x", "type": "float3", "value": [0, 0, 0] }, { "name": "y", "type": "float3", "value": [0, 0, 0] } ],
    "outputs": [ { "name": "r", "type": "float3" } ] } } ] })";
constexpr const char* kCalledUnreachable =
    R"({ "outputs": [ { "name": "color", "type": "float3", "node": "red" } ],
  "nodes": [ { "name": "red", "fragment": "tint" },
  { "name": "shade", "fragment": "shade", "inputs": { "a": { "node": "mix" } } },
  { "name": "mix", "fragment": "lerp3", "interface": {
    "inputs": [ { "name": "x", "type": "float3", "value": [0, 0, 0] }, { "name": "y", "type": "float3", "value": [0, 0, 0] } ],
    "outputs": [ { "name": "r", "type": "float3" } ] } } ] })";

const Refusal kCalls[] = {
    {"Expression", kCalledExpression, 1,
     "graph.json:2:71: error: input `a` of node `shade` calls its source through `sfg_shader`, but node "
     "`mix` (fragment `lerp3`) is an inline expression, which cannot be called; wire a function fragment "
     "[called-expression]\n"},
    {"ExpressionUnderLightLoop", kCalledExpression, 1,
     "graph.json:2:71: error: input `a` of node `shade` calls its source through `sfg_shader`, but node "
     "`mix` (fragment `lerp3`) is an inline expression, which cannot be called; wire a function fragment "
     "[called-expression]\n",
     nullptr, "--tool lightloop"},
    {"Function", kCalledFunction, 0, ""},
    {"FunctionUnderLightLoop", kCalledFunction, 0, "", nullptr, "--tool lightloop"},
    {"ExpressionAtALowerLevel", kCalledCoarse, 1,
     "graph.json:2:71: error: input `a` of node `shade` calls its source through `sfg_shader`, but node "
     "`mix` (fragment `coarse3`) is an inline expression, which cannot be called; wire a function fragment "
     "[called-expression]\n",
     nullptr, "--surface-lod 20"},
    {"ExpressionAtALowerLevelUnderLightLoop", kCalledCoarse, 1,
     "graph.json:2:71: error: input `a` of node `shade` calls its source through `sfg_shader`, but node "
     "`mix` (fragment `coarse3`) is an inline expression, which cannot be called; wire a function fragment "
     "[called-expression]\n",
     kLamp, "--surface-lod 20 --tool lightloop"},
    {"FunctionAtAHigherLevel", kCalledCoarse, 0, "", nullptr, "--surface-lod 90"},
    {"ExpressionCalledInPredefinesOnly", kCalledEarly, 1,
     "graph.json:2:76: error: input `a` of node `shade` calls its source through `sfg_shader`, but node "
     "`mix` (fragment `lerp3`) is an inline expression, which cannot be called; wire a function fragment "
     "[called-expression]\n"},
    {"ExpressionCalledInCommentOnly", kCalledInComment, 0, ""},
    {"ExpressionCalledForALight", kCalledLit, 1,
     "graph.json:2:74: error: input `a` of node `shade` calls its source through `sfg_shader`, but node "
     "`mix` (fragment `lerp3`) is an inline expression, which cannot be called; wire a function fragment "
     "[called-expression]\n",
     kLamp, "--tool lightloop"},
    {"ExpressionNotCalledWithoutTheLight", kCalledLit, 0, "", nullptr, "--tool lightloop"},
    {"ExpressionNotCalledByTheDefaultTool", kCalledLit, 0,
     "graph.json:2:14: warning: node `shade` is not lit: only the light loop (`--tool lightloop`) uses the "
     "lights of the environment [lit-without-light]\n",
     kLamp},
    {"EachExpression", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "shade" } ],
  "nodes": [ { "name": "shade", "fragment": "shade", "inputs": { "a": { "node": "mix" } } },
  { "name": "mix", "fragment": "lerp3", "interface": {
    "inputs": [ { "name": "x", "type": "float3" }, { "name": "y", "type": "float3" } ],
    "outputs": [ { "name": "r", "type": "float3" } ] }, "inputs": { "x": { "node": "early" } } },
  { "name": "early", "fragment": "shadeEarly", "inputs": { "a": { "node": "late" } } },
  { "name": "late", "fragment": "lerp3", "interface": {
    "inputs": [ { "name": "x", "type": "float3" }, { "name": "y", "type": "float3" } ],
    "outputs": [ { "name": "r", "type": "float3" } ] } } ] })",
     1,
     "graph.json:2:71: error: input `a` of node `shade` calls its source through `sfg_shader`, but node "
     "`mix` (fragment `lerp3`) is an inline expression, which cannot be called; wire a function fragment "
     "[called-expression]\ngraph.json:6:65: error: input `a` of node `early` calls its source through "
     "`sfg_shader`, but node `late` (fragment `lerp3`) is an inline expression, which cannot be called; wire "
     "a function fragment [called-expression]\n"},
    {"ExpressionThatNoOutputReaches", kCalledUnreachable, 0, ""},
    {"ExpressionThatNoOutputReachesUnderLightLoop", kCalledUnreachable, 0, "", nullptr, "--tool lightloop"},
};

std::string nameOf(const testing::TestParamInfo<Refusal>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Documents, RefusalTest, testing::ValuesIn(kDocuments), nameOf);
INSTANTIATE_TEST_SUITE_P(Environments, RefusalTest, testing::ValuesIn(kEnvironments), nameOf);
INSTANTIATE_TEST_SUITE_P(Arguments, RefusalTest, testing::ValuesIn(kArguments), nameOf);
INSTANTIATE_TEST_SUITE_P(Calls, RefusalTest, testing::ValuesIn(kCalls), nameOf);
INSTANTIATE_TEST_SUITE_P(Collapses, RefusalTest, testing::ValuesIn(kCollapses), nameOf);

class CalledExpressionTest : public CommandTest, public testing::WithParamInterface<const char*> {};

TEST_P(CalledExpressionTest, WritesNothingButTheRefusal) {
  writeLibrary();
  write("lib/callers.fraglib", kCallers);
  write("graph.json", kCalledExpression);
  const CommandRun result = run(std::string(GetParam()) + " graph.json -L lib");
  EXPECT_EQ(result.err, kCalls[0].message);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 1);
}

INSTANTIATE_TEST_SUITE_P(Commands, CalledExpressionTest,
                         testing::Values("collapse --format shader", "collapse --format json",
                                         "collapse --format json --tool lightloop", "compile",
                                         "compile --target glsl --tool lightloop"));

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
