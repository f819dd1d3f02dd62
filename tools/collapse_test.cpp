// `sfg collapse`: its results, where they go, and its help.

#include <filesystem>

#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

class CollapseTest : public CommandTest {
protected:
  CollapseTest() { writeLibrary(); }
};

constexpr const char* kTwoNodes = R"({ "inputs": [ { "name": "amount", "type": "float" } ],
  "outputs": [ { "name": "color", "type": "float3", "node": "again" } ],
  "uniforms": [ { "name": "exposure", "type": "float", "value": 0.1 } ],
  "nodes": [
    { "name": "again", "fragment": "tint", "inputs": { "color": { "node": "once" }, "amount": { "constant": 0.1 } } },
    { "name": "once", "fragment": "tint", "inputs": { "color": { "value": [1, 0.5, 0] },
      "amount": { "graphInput": "amount" } } } ] })";

TEST_F(CollapseTest, WritesJsonKeysInOrder) {
  write("graph.json", kTwoNodes);
  const CommandRun result = run("collapse graph.json -L lib --format json");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, R"golden({
  "function": {
    "name": "CollapsedFunction",
    "inputs": [
      {
        "type": "float",
        "name": "amount"
      }
    ],
    "outputs": [
      {
        "type": "float3",
        "name": "color"
      }
    ],
    "body": "    float3 result_n1_01;\n    tint1(\n        colorn1,\n        amount,\n        result_n1_01);\n    tint1(\n        result_n1_01,\n        0.1,\n        color);\n"
  },
  "profile": "default",
  "languages": [
    "dx11"
  ],
  "lod": 100.0,
  "predefines": "void tint1(\n    float3 color,\n    float amount,\n    out float3 result)\n{\n\tresult = color * amount;\n}\n",
  "includes": [],
  "flatIncludes": [],
  "stateVariables": [],
  "customStateVariables": [],
  "uniforms": [
    {
      "type": "fvec3",
      "name": "colorn1"
    },
    {
      "type": "float",
      "name": "exposure"
    }
  ],
  "inputs": [],
  "outputs": [],
  "shaderInputTypes": []
}
)golden");
}

TEST_F(CollapseTest, WritesALightLoopWithEverythingTheJsonCanHold) {
  write("inc/base.h", "float base() { return 1.0; }\n");
  write("inc/top.h", "#include \"base.h\"\nfloat top() { return base(); }\n");
  write("more/more.fraglib", R"json({ "glow": { "language": ["dx11"], "includes": ["top.h"],
    "stateVariables": ["ticks", "unknown"],
    "uniforms": [ { "name": "shape", "type": "struct", "struct": "Shape" } ],
    "predefine": ["struct Shape { float size; };"], "implementation": [
    "void glow(float3 color, out float3 result)", "{",
    "result = color * top() * shape.size + sfg_worldNormal + sfg_eyePosition + ticks;", "}" ] } })json");
  write("graph.json", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "glow" } ],
    "nodes": [ { "name": "lit", "fragment": "lit" },
      { "name": "glow", "fragment": "glow", "inputs": { "color": { "node": "lit" } } } ],
    "preprocess": [ "clock" ], "postprocess": [ "grade" ] })");
  write("scene.json", R"({ "lights": [ { "name": "key", "fragment": "lamp", "profile": "Lamp" } ] })");
  const CommandRun result =
      run("collapse graph.json -L lib -L more -I inc --tool lightloop --environment scene.json "
          "--function-name Ignored --profile-name Ignored --format json");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, R"golden({
  "function": {
    "name": "AccumulatedLitSurface",
    "inputs": [],
    "outputs": [
      {
        "type": "float3",
        "name": "output_result0_0"
      }
    ],
    "body": "    float ticks = 0.0;\n    clock1(\n        ticks);\n    float3 accumulate_n0_result = float3(0.0, 0.0, 0.0);\n    // ------------------------------------------------------------ \n    // Light 0 \n    // ------------------------------------------------------------ \n    Lamp result_key_01;\n    lamp1(\n        result_key_01);\n    float3 result_n0_02;\n    lit2(\n        albedon0,\n        result_key_01,\n        result_n0_02);\n    accumulate_n0_result += result_n0_02;\n    float3 result_n1_01;\n    glow1(\n        accumulate_n0_result,\n        sfg_worldNormal,\n        ticks,\n        result_n1_01);\n    grade1(\n        result_n1_01,\n        output_result0_0);\n"
  },
  "profile": "default",
  "languages": [
    "dx11"
  ],
  "lod": 100.0,
  "predefines": "void clock1(\n    out float ticks)\n{\n\tticks = sfg_time;\n}\nstruct Lamp { float3 color; };\nvoid lamp1(\n    out Lamp light)\n{\n\tlight.color = float3(1, 1, 1);\n}\nvoid lit2(\n    float3 albedo,\n    Lamp result_key_01,\n    out float3 result)\n{\n\tresult = albedo * result_key_01.color;\n}\nstruct Shape { float size; };\nvoid glow1(\n    float3 color,\n    inout float3 sfg_worldNormal,\n    float ticks,\n    out float3 result)\n{\n\tresult = color * top() * shapen1.size + sfg_worldNormal + sfg_eyePosition + ticks;\n}\nvoid grade1(\n    float3 color,\n    out float3 result)\n{\n\tresult = color;\n}\n",
  "includes": [
    "top.h"
  ],
  "flatIncludes": [
    "base.h",
    "top.h"
  ],
  "stateVariables": [
    "sfg_eyePosition",
    "sfg_time",
    "sfg_worldNormal"
  ],
  "customStateVariables": [
    "ticks",
    "unknown"
  ],
  "uniforms": [
    {
      "type": "fvec3",
      "name": "albedon0"
    },
    {
      "type": "Shape",
      "name": "shapen1"
    }
  ],
  "inputs": [],
  "outputs": [
    {
      "type": "fvec3",
      "name": "result"
    }
  ],
  "shaderInputTypes": []
}
)golden");
}

TEST_F(CollapseTest, NamesFunctionAndProfile) {
  write("graph.json", kTwoNodes);
  const CommandRun result =
      run("collapse graph.json -L lib --function-name Shade --profile-name fine --format json");
  EXPECT_NE(result.out.find("\"name\": \"Shade\""), std::string::npos);
  EXPECT_NE(result.out.find("\"profile\": \"fine\""), std::string::npos);
}

TEST_F(CollapseTest, PicksProfilesByLevelOfDetail) {
  write("more/levels.fraglib", R"json({ "level": { "profiles": [
    { "lod": 10, "language": ["dx11"], "implementation": ["void coarse(out float3 result) { result = 0; }"] },
    { "lod": 90, "language": ["dx11"], "implementation": ["void fine(out float3 result) { result = 1; }"] } ] } })json");
  write("graph.json", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
    "nodes": [ { "name": "a", "fragment": "level" } ] })");
  EXPECT_NE(run("collapse graph.json -L more --format json").out.find("fine2("), std::string::npos);
  EXPECT_NE(run("collapse graph.json -L more --surface-lod 20 --format json").out.find("coarse1("),
            std::string::npos);
}

TEST_F(CollapseTest, LaterLibraryFolderOverridesEarlier) {
  write("more/other.fraglib", R"json({ "tint": { "language": ["dx11"], "implementation": [
    "void other(float3 color, float amount, out float3 result) { result = color; }"] } })json");
  write("graph.json", kTwoNodes);
  EXPECT_NE(run("collapse graph.json -L lib -L more --format json").out.find("other1("), std::string::npos);
  EXPECT_NE(run("collapse graph.json -L more -L lib --format json").out.find("tint1("), std::string::npos);
}

TEST_F(CollapseTest, AnswersNullWithStatusOne) {
  write("graph.json",
        R"({ "outputs": [ { "name": "color", "type": "struct", "struct": "Lamp", "node": "a" } ],
    "nodes": [ { "name": "a", "fragment": "lamp" } ] })");
  const CommandRun json = run("collapse graph.json -L lib --format json");
  EXPECT_EQ(json.out, "null\n");
  EXPECT_EQ(json.status, 1);
  const CommandRun shader = run("collapse graph.json -L lib");
  EXPECT_EQ(shader.out, "");
  EXPECT_EQ(shader.status, 1);
}

TEST_F(CollapseTest, WritesToAFileAsAWholeOrNotAtAll) {
  write("graph.json", kTwoNodes);
  write("out.json", "old");
  EXPECT_EQ(run("collapse graph.json -L lib --tool lightloop --environment nowhere.json -o out.json").status,
            2);
  EXPECT_EQ(read("out.json"), "old");
  const CommandRun result = run("collapse graph.json -L lib --format json -o out.json");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(read("out.json"), run("collapse graph.json -L lib --format json").out);
  std::size_t files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(path("."))) ++files;
  EXPECT_EQ(files, 5u) << "a temporary file stayed: graph.json, out.json, lib, .out and .err are expected";
}

TEST_F(CollapseTest, WritesThroughALinkAndIntoADevice) {
  write("graph.json", kTwoNodes);
  write("real/target.json", "old");
  std::filesystem::create_symlink("real/target.json", path("link.json"));
  EXPECT_EQ(run("collapse graph.json -L lib --format json -o link.json").status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(path("link.json")));
  EXPECT_EQ(read("real/target.json")[0], '{');
  EXPECT_EQ(run("collapse graph.json -L lib --format json -o /dev/null").status, 0);
  EXPECT_FALSE(std::filesystem::is_regular_file("/dev/null"));
}

TEST_F(CollapseTest, TellsThatStandardOutputIsFull) {
  write("graph.json", kTwoNodes);
  const CommandRun result =
      run("collapse graph.json -L lib --format json >/dev/full 2>err; echo $? >status; true");
  EXPECT_EQ(read("status"), "2\n");
  EXPECT_EQ(read("err"),
            "standard output: error: cannot be written: No space left on device [cannot-write]\n");
}

TEST_F(CollapseTest, EveryCommandTellsThatStandardOutputIsFull) {
  const std::string start = "standard output: error: cannot be written: ";
  const std::string written = start + "No space left on device [cannot-write]\n";
  const std::string printed = start + "the stream is closed or full [cannot-write]\n";
  const std::pair<std::string, std::string> rows[] = {
      {"--help", written},      {"--version", printed},       {"collapse --help", written},
      {"list -L lib", written}, {"dump -L lib lit", written}, {"completion zsh", written},
      {"manual", written}};
  for (const auto& [command, message] : rows) {
    SCOPED_TRACE(command);
    run(command + " >/dev/full 2>err; echo $? >status; true");
    EXPECT_EQ(read("status"), "2\n");
    EXPECT_EQ(read("err"), message);
  }
}

TEST_F(CollapseTest, OverwritesNoInput) {
  write("graph.json", kTwoNodes);
  write("scene.json", "{}");
  write("inc/a.h", "float a;\n");
  const std::string inputs = "collapse graph.json -L lib -I inc --environment scene.json ";
  for (const std::string input : {"graph.json", "scene.json", "lib/test.fraglib", "inc/a.h"}) {
    SCOPED_TRACE(input);
    const std::string before = read(input);
    const CommandRun asResult = run(inputs + "-o " + input);
    EXPECT_EQ(asResult.status, 2);
    EXPECT_EQ(asResult.err,
              input + ": error: is read by this command; write to another file [cannot-write]\n");
    EXPECT_EQ(run(inputs + "-o out.hlsl -MF " + input).status, 2);
    EXPECT_EQ(read(input), before);
  }
  const CommandRun twice = run(inputs + "-o out.hlsl -MF ./out.hlsl");
  EXPECT_EQ(twice.status, 2);
  EXPECT_EQ(twice.err, "./out.hlsl: error: is named for two results; write to two files [cannot-write]\n");
  EXPECT_FALSE(exists("out.hlsl"));
}

TEST_F(CollapseTest, MatchesTheSameBytesEveryTime) {
  const std::string arguments = "collapse " + repository("examples/materials/car_paint.json") + " -L " +
                                repository("library") + " -I " + repository("library") +
                                " --tool lightloop --environment " +
                                repository("examples/environments/studio.json") + " --format json";
  const CommandRun first = run(arguments);
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_EQ(run(arguments).out, first.out);
}

TEST_F(CollapseTest, HelpExampleWorksAsPrinted) {
  const std::string help = run("collapse --help").out;
  const std::size_t fragment = help.find("{ \"tint\"");
  const std::size_t graph = help.find("{ \"inputs\"");
  const std::size_t fragmentEnd = help.find("\n\n", fragment);
  const std::size_t graphEnd = help.find("\n\n", graph);
  ASSERT_NE(graphEnd, std::string::npos);
  write("example/lib/tint.fraglib", help.substr(fragment, fragmentEnd - fragment));
  write("example/red.json", help.substr(graph, graphEnd - graph));
  const CommandRun result = run("collapse example/red.json -L example/lib");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("tint1(\n        float3(1.0, 0.0, 0.0),\n        amount,"), std::string::npos);
}

TEST_F(CollapseTest, WritesNoColoursIntoAFile) {
  EXPECT_EQ(run("collapse nowhere.json").err, "nowhere.json: error: no such file [unreadable-file]\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
