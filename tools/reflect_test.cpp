// What `sfg reflect` and `sfg compile --reflect` write.

#include <gmock/gmock.h>

#include <cstring>

#include "sfg/host/version.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

using testing::HasSubstr;

constexpr const char* kTinted = R"({ "inputs": [ { "name": "amount", "type": "float" } ],
  "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint", "inputs": {
    "color": { "value": [1, 0.5, 0] }, "amount": { "graphInput": "amount" } } } ] })";

class ReflectTest : public CommandTest {
protected:
  ReflectTest() {
    writeLibrary();
    write("graph.json", kTinted);
  }

  /// Without the hash, which is that of a text that other tests hold.
  std::string reflect(const std::string& arguments) const {
    const CommandRun result = run("reflect graph.json -L lib " + arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    return withoutHash(result.out);
  }
  static std::string withoutHash(std::string text) {
    const std::size_t start = text.find("\"hash\": \"") + 9;
    EXPECT_EQ(text.find('"', start), start + 40) << text;
    return text.replace(start, 40, "HASH");
  }
};

/// Of what compilers make of a shader.
class CompiledReflectTest : public ReflectTest {
protected:
  void SetUp() override {
    if (!host::hasCompilers()) GTEST_SKIP() << "built without compilers";
  }
};

TEST_F(CompiledReflectTest, TellsAttributesBuffersAndRenderTargets) {
  EXPECT_EQ(reflect(""), R"({
  "target": "spirv",
  "stage": "pixel",
  "entryPoint": "main",
  "attributes": [
    {
      "name": "sfg_in_amount",
      "type": "float",
      "location": 0,
      "used": true,
      "origin": {
        "kind": "graphInput",
        "name": "amount"
      }
    }
  ],
  "buffers": [
    {
      "name": "sfg_Uniforms",
      "kind": "constant",
      "variable": "sfg_uniforms",
      "set": 0,
      "binding": 0,
      "used": true,
      "size": 16,
      "members": [
        {
          "name": "a_color",
          "type": "float3",
          "offset": 0,
          "size": 12,
          "value": [
            1,
            0.5,
            0
          ],
          "origin": {
            "kind": "node",
            "owner": "a",
            "name": "color",
            "fragment": "tint",
            "port": {
              "value": [
                0,
                0,
                0
              ]
            }
          }
        }
      ]
    }
  ],
  "textures": [],
  "samplers": [],
  "renderTargets": [
    {
      "name": "sfg_out_color",
      "index": 0,
      "type": "float3",
      "origin": {
        "kind": "graphOutput",
        "name": "color"
      }
    }
  ],
  "includes": [],
  "files": [
    "graph.json",
    "lib/test.fraglib"
  ],
  "hash": "HASH"
}
)");
}

TEST_F(ReflectTest, TellsTheElementsOfAComputeStage) {
  EXPECT_EQ(reflect("--stage compute --target assembled"), R"({
  "target": "assembled",
  "stage": "compute",
  "entryPoint": "main",
  "groupSize": 64,
  "attributes": [],
  "buffers": [
    {
      "name": "sfg_Uniforms",
      "kind": "constant",
      "register": "b0",
      "size": 16,
      "members": [
        {
          "name": "a_color",
          "type": "float3",
          "offset": 0,
          "size": 12,
          "value": [
            1,
            0.5,
            0
          ],
          "origin": {
            "kind": "node",
            "owner": "a",
            "name": "color",
            "fragment": "tint",
            "port": {
              "value": [
                0,
                0,
                0
              ]
            }
          }
        }
      ]
    },
    {
      "name": "sfg_inputs",
      "kind": "input",
      "register": "t0",
      "stride": 16,
      "members": [
        {
          "name": "amount",
          "type": "float4",
          "offset": 0,
          "size": 16,
          "origin": {
            "kind": "graphInput",
            "name": "amount"
          }
        }
      ]
    },
    {
      "name": "sfg_outputs",
      "kind": "output",
      "register": "u0",
      "stride": 16,
      "members": [
        {
          "name": "color",
          "type": "float4",
          "offset": 0,
          "size": 16,
          "origin": {
            "kind": "graphOutput",
            "name": "color"
          }
        }
      ]
    }
  ],
  "textures": [],
  "samplers": [],
  "renderTargets": [],
  "includes": [],
  "files": [
    "graph.json",
    "lib/test.fraglib"
  ],
  "hash": "HASH"
}
)");
}

TEST_F(CompiledReflectTest, TellsTexturesWithTheirSamplers) {
  write("graph.json", R"({ "outputs": [ { "name": "color", "type": "float4", "node": "a" } ],
    "nodes": [ { "name": "a", "fragment": "pick" } ] })");
  const std::string includes = "-I " + repository("library");
  const std::string module = reflect(includes);
  EXPECT_EQ(module.substr(module.find("  \"textures\""),
                          module.find("  \"renderTargets\"") - module.find("  \"textures\"")),
            R"(  "textures": [
    {
      "name": "a_image",
      "type": "texture2D",
      "set": 0,
      "binding": 16,
      "used": true,
      "origin": {
        "kind": "node",
        "owner": "a",
        "name": "image",
        "fragment": "pick"
      }
    }
  ],
  "samplers": [
    {
      "name": "sampler_a_image",
      "texture": "a_image",
      "set": 0,
      "binding": 48,
      "used": true,
      "origin": {
        "kind": "node",
        "owner": "a",
        "name": "image",
        "fragment": "pick"
      }
    }
  ],
)");
  const std::string combined = reflect(includes + " --target glsl");
  EXPECT_THAT(combined, HasSubstr("\"type\": \"sampler2D\",\n      \"binding\": 0,"));
  EXPECT_THAT(combined, HasSubstr("\"samplers\": [],"));
  EXPECT_THAT(module, HasSubstr("\"includes\": [\n    \"sfg_samplers.h\"\n  ],"));
  EXPECT_THAT(module, HasSubstr("library/sfg_samplers.h\"\n  ],\n  \"hash\""));
}

TEST_F(CompiledReflectTest, TellsWhatTheCompilersLeftOut) {
  write("lib/more.fraglib", R"json({ "ignore": { "language": ["dx11"], "implementation": [
    "void ignore(float3 color, float2 uv, out float3 result)", "{", "result = color + 0.0 * sfg_texCoord0.x;", "}" ] } })json");
  write("graph.json", R"({ "inputs": [ { "name": "uv", "type": "float2" } ],
    "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
    "nodes": [ { "name": "a", "fragment": "ignore", "inputs": { "uv": { "graphInput": "uv" } } } ] })");
  const std::string text = reflect("");
  EXPECT_THAT(text,
              HasSubstr("\"name\": \"sfg_in_uv\",\n      \"type\": \"float2\",\n      \"location\": 1,\n"
                        "      \"used\": false,"));
}

TEST_F(CompiledReflectTest, CompileWritesTheSameBesideItsResult) {
  for (const char* target :
       {"spirv", "hlsl", "glsl", "essl", "msl", "essl300", "glsl --glsl-version 330",
        "hlsl --shader-model 6.0", "spirv --optimize none", "spirv --optimize size --debug"}) {
    const std::string arguments = std::string("--target ") + target;
    const CommandRun compiled = run("compile graph.json -L lib -o out --reflect out.json " + arguments);
    EXPECT_EQ(compiled.status, 0) << compiled.err;
    EXPECT_EQ(withoutHash(read("out.json")), reflect(arguments)) << target;
  }
}

TEST_F(CompiledReflectTest, RefusesWhatCannotBeCompiled) {
  write("lib/more.fraglib", R"json({ "broken": { "language": ["dx11"], "implementation": [
    "void broken(out float3 result)", "{", "result = nothing;", "}" ] } })json");
  write("graph.json", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
    "nodes": [ { "name": "a", "fragment": "broken" } ] })");
  const CommandRun result = run("reflect graph.json -L lib");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("nothing"));
  EXPECT_EQ(run("reflect graph.json -L lib --target assembled").status, 0);
}

TEST_F(ReflectTest, SaysThatThereAreNoCompilers) {
  if (host::hasCompilers()) GTEST_SKIP() << "built with compilers";
  for (const char* target : {"", " --target spirv", " --target hlsl", " --target glsl", " --target msl"}) {
    const CommandRun result = run(std::string("reflect graph.json -L lib -o out.json") + target);
    EXPECT_EQ(result.status, 1) << target;
    EXPECT_EQ(result.out, "") << target;
    EXPECT_EQ(result.err, "graph.json: error: this library was built without compilers [compile-error]\n")
        << target;
    EXPECT_FALSE(exists("out.json")) << target;
  }
  EXPECT_EQ(run("reflect graph.json -L lib -o out.json --target assembled").status, 0);
  EXPECT_TRUE(exists("out.json"));
}

TEST_F(CompiledReflectTest, NamesAreThoseOfTheCollapseWhereWanted) {
  EXPECT_THAT(reflect("--names generated"), HasSubstr("\"name\": \"colorn0\",\n          \"type\""));
  const std::string arguments = "compile graph.json -L lib --target glsl --names ";
  EXPECT_THAT(run(arguments + "generated").out, HasSubstr("sfg_uniforms.colorn0"));
  EXPECT_EQ(run(arguments + "readable").out, run("compile graph.json -L lib --target glsl").out);
}

TEST_F(ReflectTest, CollapseRenamesWhereWanted) {
  const CommandRun plain = run("collapse graph.json -L lib");
  EXPECT_EQ(run("collapse graph.json -L lib --names generated").out, plain.out);
  std::string renamed = plain.out;
  for (std::size_t at = 0; (at = renamed.find("colorn0", at)) != renamed.npos;)
    renamed.replace(at, 7, "a_color");
  EXPECT_NE(renamed, plain.out);
  EXPECT_EQ(run("collapse graph.json -L lib --names readable").out, renamed);
  EXPECT_EQ(run("collapse graph.json -L lib --names readable --format json").out,
            run("collapse graph.json -L lib --format json").out);
}

TEST_F(CompiledReflectTest, NotesOnLinesWithReadableNamesKnowTheirFragments) {
  write("lib/more.fraglib", R"json({ "odd": { "mode": "inline", "language": ["dx11"],
    "implementation": ["nothing({{amount}})"] } })json");
  write("graph.json", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "b" } ],
    "nodes": [ { "name": "b", "fragment": "odd", "interface": {
      "inputs": [ { "name": "amount", "type": "float", "value": 0 } ],
      "outputs": [ { "name": "r", "type": "float3" } ] } } ] })");
  const CommandRun result = run("compile graph.json -L lib");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(
      result.err,
      "lib/more.fraglib:2:25: error: `nothing` is no function that is declared here [compile-error]\n"
      "graph.json:2:16: note: node `b` uses the fragment `odd` [code-origin]\n"
      "generated:12:14: note: the compiler says \"'nothing' : no matching overloaded function found\" of the "
      "line `color = (nothing(b_amount));` [code-origin]\n");
}

TEST_F(CompiledReflectTest, NamesInTranslationsAreOurs) {
  for (const char* target : {"hlsl", "glsl", "essl", "msl", "essl300"}) {
    const std::string text = run(std::string("compile graph.json -L lib --target ") + target).out;
    EXPECT_THAT(text, HasSubstr(std::string(target) == "hlsl" ? "float3 sfg_uniforms_a_color"
                                                              : "sfg_uniforms.a_color"))
        << target;
    EXPECT_THAT(text, HasSubstr("sfg_in_amount")) << target;
    EXPECT_THAT(text, HasSubstr("sfg_out_color")) << target;
    EXPECT_THAT(text, testing::Not(HasSubstr("entryPoint"))) << target;
  }
}

TEST_F(CompiledReflectTest, NamesInTranslationsStayUnderAnotherEnvironment) {
  write("graph.json", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
    "nodes": [ { "name": "a", "fragment": "lit" } ] })");
  write("one.json", R"({ "lights": [ { "name": "key", "fragment": "lamp", "profile": "Lamp" } ] })");
  write("two.json", R"({ "lights": [ { "name": "fill", "fragment": "lamp", "profile": "Lamp" },
                                     { "name": "key", "fragment": "lamp", "profile": "Lamp" } ] })");
  for (const char* environment : {"one.json", "two.json"}) {
    const std::string text = run("compile graph.json -L lib --target hlsl --tool lightloop --environment " +
                                 std::string(environment))
                                 .out;
    EXPECT_THAT(text, HasSubstr("    float3 sfg_uniforms_a_albedo : packoffset("));
    EXPECT_THAT(text, HasSubstr("float3 sfg_out_color : SV_Target0;"));
  }
}

/// The floats of a file.
std::vector<float> floatsOf(const std::string& bytes) {
  std::vector<float> values(bytes.size() / sizeof(float));
  std::memcpy(values.data(), bytes.data(), values.size() * sizeof(float));
  return values;
}

TEST_F(ReflectTest, PacksABufferWithTheValuesOfTheGraph) {
  EXPECT_EQ(run("reflect graph.json -L lib --pack out.bin").out, "");
  EXPECT_EQ(floatsOf(read("out.bin")), (std::vector<float>{1, 0.5, 0, 0}));
}

TEST_F(ReflectTest, PacksABufferWithOtherValues) {
  for (const char* setting : {"a.color=7,8.5,-9", "a_color=7,8.5,-9"}) {
    const CommandRun result =
        run(std::string("reflect graph.json -L lib --pack out.bin --set a.color=1,1,1 --set ") + setting);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(floatsOf(read("out.bin")), (std::vector<float>{7, 8.5, -9, 0}));
  }
}

TEST_F(ReflectTest, PacksTheBufferThatIsNamed) {
  write("lib/more.fraglib", R"json({ "clockwork": { "language": ["dx11"], "implementation": [
    "void clockwork(out float3 result)", "{", "result = sfg_eyePosition * sfg_time;", "}" ] } })json");
  write("graph.json", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
    "nodes": [ { "name": "a", "fragment": "clockwork" } ] })");
  const CommandRun result =
      run("reflect graph.json -L lib --pack out.bin --buffer sfg_StateUniforms --set sfg_time=2 --set "
          "sfg_eyePosition=3,4,5");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(floatsOf(read("out.bin")), (std::vector<float>{3, 4, 5, 2}));
  EXPECT_EQ(
      run("reflect graph.json -L lib --pack out.bin").err,
      "sfg: error: the shader has no buffer `sfg_Uniforms`; did you mean `sfg_StateUniforms`? Known are "
      "`sfg_StateUniforms` [bad-setting]\n");
}

TEST_F(ReflectTest, RefusesToPackWhatIsNotThere) {
  const auto refusal = [&](const std::string& arguments) {
    const CommandRun result = run("reflect graph.json -L lib " + arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    return result.err;
  };
  EXPECT_EQ(refusal("--pack out.bin --set a.colour=1,2,3"),
            "sfg: error: no value is called `a.colour`; did you mean `a.color`? Known are `a.color` "
            "[bad-setting]\n");
  EXPECT_EQ(refusal("--pack out.bin --set a.color=1,2"),
            "sfg: error: `a.color` is of type `float3`: 3 numbers, not 2 [bad-setting]\n");
  EXPECT_EQ(refusal("--pack out.bin --set a.color"),
            "sfg: error: `a.color` is not of the form `name=value` [bad-setting]\n");
  EXPECT_THAT(refusal("--set a.color=1,2,3"), HasSubstr("--pack"));
}

TEST_F(ReflectTest, TellsWhatAVertexStageTakesAndGives) {
  EXPECT_EQ(reflect("--stage vertex --target assembled"), R"({
  "target": "assembled",
  "stage": "vertex",
  "entryPoint": "main",
  "attributes": [
    {
      "name": "sfg_position",
      "type": "float3",
      "location": 0,
      "semantic": "POSITION",
      "origin": {
        "kind": "mesh",
        "name": "position"
      },
      "meaning": "position",
      "space": "object"
    },
    {
      "name": "amount",
      "type": "float",
      "location": 1,
      "semantic": "GRAPHINPUT0",
      "origin": {
        "kind": "graphInput",
        "name": "amount"
      }
    }
  ],
  "varyings": [
    {
      "name": "amount",
      "type": "float",
      "location": 0,
      "semantic": "GRAPHINPUT0",
      "origin": {
        "kind": "graphInput",
        "name": "amount"
      }
    },
    {
      "name": "sfg_screenPosition",
      "type": "float4",
      "builtin": "position",
      "semantic": "SV_Position",
      "origin": {
        "kind": "stateVariable",
        "name": "sfg_screenPosition"
      },
      "meaning": "position of the point",
      "space": "clip"
    }
  ],
  "buffers": [
    {
      "name": "sfg_VertexUniforms",
      "kind": "constant",
      "register": "b1",
      "size": 64,
      "members": [
        {
          "name": "sfg_matWorldViewProj",
          "type": "float4x4",
          "offset": 0,
          "size": 64,
          "matrixStride": 16,
          "origin": {
            "kind": "stateVariable",
            "name": "sfg_matWorldViewProj"
          }
        }
      ]
    }
  ],
  "textures": [],
  "samplers": [],
  "renderTargets": [],
  "includes": [],
  "files": [
    "graph.json",
    "lib/test.fraglib"
  ],
  "hash": "HASH"
}
)");
}

TEST_F(CompiledReflectTest, TellsWhatAVertexStageTakesAndGivesInMetal) {
  EXPECT_EQ(reflect("--stage vertex --target msl"), R"json({
  "target": "msl",
  "stage": "vertex",
  "entryPoint": "main0",
  "attributes": [
    {
      "name": "sfg_vertex_sfg_position",
      "type": "float3",
      "location": 0,
      "semantic": "attribute(0)",
      "used": true,
      "origin": {
        "kind": "mesh",
        "name": "position"
      },
      "meaning": "position",
      "space": "object"
    },
    {
      "name": "sfg_vertex_amount",
      "type": "float",
      "location": 1,
      "semantic": "attribute(1)",
      "used": true,
      "origin": {
        "kind": "graphInput",
        "name": "amount"
      }
    }
  ],
  "varyings": [
    {
      "name": "sfg_in_amount",
      "type": "float",
      "location": 0,
      "semantic": "user(locn0)",
      "used": true,
      "origin": {
        "kind": "graphInput",
        "name": "amount"
      }
    },
    {
      "name": "sfg_in_sfg_screenPosition",
      "type": "float4",
      "builtin": "position",
      "semantic": "position",
      "used": true,
      "origin": {
        "kind": "stateVariable",
        "name": "sfg_screenPosition"
      },
      "meaning": "position of the point",
      "space": "clip"
    }
  ],
  "buffers": [
    {
      "name": "sfg_VertexUniforms",
      "kind": "constant",
      "variable": "sfg_vertexUniforms",
      "binding": 1,
      "used": true,
      "size": 64,
      "members": [
        {
          "name": "sfg_matWorldViewProj",
          "type": "float4x4",
          "offset": 0,
          "size": 64,
          "matrixStride": 16,
          "origin": {
            "kind": "stateVariable",
            "name": "sfg_matWorldViewProj"
          }
        }
      ]
    }
  ],
  "textures": [],
  "samplers": [],
  "renderTargets": [],
  "includes": [],
  "files": [
    "graph.json",
    "lib/test.fraglib"
  ],
  "hash": "HASH"
}
)json");
}

TEST_F(ReflectTest, PacksTheMatricesOfAVertexStage) {
  const CommandRun result =
      run("reflect graph.json -L lib --stage vertex --pack out.bin --buffer sfg_VertexUniforms --set "
          "sfg_matWorldViewProj=1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(floatsOf(read("out.bin")),
            (std::vector<float>{1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16}));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
