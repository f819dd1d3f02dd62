#include "sfg/host/compile.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

class ImportTest : public CommandTest {
protected:
  ImportTest() {
    write("lib/lib.fraglib", R"json({
      "mtlx_constant_color3": { "language": ["dx11"], "implementation": [
        "void mtlx_constant_color3(float3 value, out float3 out_)", "{", "  out_ = value;", "}" ] } })json");
    write("lib/definitions.json",
          "[\n{\"node\": \"constant\", \"name\": \"constant_color3\", \"inputs\": [{\"name\": \"value\", "
          "\"type\": \"color3\", \"value\": \"0, 0, 0\"}], \"outputs\": [{\"name\": \"out\", \"type\": "
          "\"color3\"}]}\n]\n");
    write("two.mtlx", R"(<materialx version="1.39">
<nodegraph name="g">
<constant name="red" type="color3"><input name="value" type="color3" value="1, 0, 0" /></constant>
<constant name="dim" type="color3"><input name="value" type="color3" value="0.5, x" /></constant>
<output name="a" type="color3" nodename="red" />
<output name="b" type="color3" nodename="dim" />
</nodegraph></materialx>
)");
  }
};

constexpr const char* kRed = R"({
  "inputs": [],
  "outputs": [
    {
      "name": "out_a",
      "type": "float3",
      "node": "g/red",
      "output": "out_"
    }
  ],
  "uniforms": [],
  "nodes": [
    {
      "name": "g/red",
      "fragment": "mtlx_constant_color3",
      "inputs": {
        "value": {
          "constant": [
            1.0,
            0.0,
            0.0
          ]
        }
      }
    }
  ],
  "preprocess": [],
  "postprocess": []
}
)";

TEST_F(ImportTest, WritesAGraphForEachOutput) {
  const CommandRun imported = run("import two.mtlx -L lib --no-standard-library -o out");
  EXPECT_EQ(imported.err, "out/g.a.json: note: written [file-written]\n"
                          "two.mtlx:4:36: error: `0.5, x` is no value of the type `color3` [wrong-value]\n"
                          "out/g.b.json: note: written [file-written]\n");
  EXPECT_EQ(imported.status, 1);
  EXPECT_EQ(read("out/g.a.json"), kRed);
  EXPECT_EQ(read("out/g.a.textures.json"), "[]\n");
  EXPECT_TRUE(exists("out/g.b.json"));
}

TEST_F(ImportTest, PrintsTheMaterialThatIsNamed) {
  const CommandRun imported = run("import two.mtlx -L lib --no-standard-library --material g/a");
  EXPECT_EQ(imported.err, "");
  EXPECT_EQ(imported.status, 0);
  EXPECT_EQ(imported.out, kRed);
}

TEST_F(ImportTest, GivesOtherCommandsTheSameGraph) {
  write("red.json", kRed);
  const CommandRun direct = run("collapse two.mtlx -L lib --no-standard-library --material g/a");
  EXPECT_EQ(direct.err, "");
  EXPECT_EQ(direct.out, run("collapse red.json -L lib --no-standard-library").out);
}

TEST_F(ImportTest, AsksForANameWhereThereAreSeveral) {
  const CommandRun unnamed = run("collapse two.mtlx -L lib --no-standard-library");
  EXPECT_EQ(unnamed.err, "two.mtlx: error: there are several materials: `g/a`, `g/b` [unknown-material]\n");
  EXPECT_EQ(unnamed.status, 2);
  const CommandRun unknown = run("import two.mtlx -L lib --no-standard-library --material g/c");
  EXPECT_EQ(unknown.err,
            "two.mtlx: error: there is no material `g/c`; did you mean `g/a`? [unknown-material]\n");
  EXPECT_EQ(unknown.status, 2);
}

TEST_F(ImportTest, RefusesAMaterialOfAGraphDocument) {
  write("red.json", kRed);
  const CommandRun refused = run("collapse red.json -L lib --no-standard-library --material g/a");
  EXPECT_EQ(refused.err, "sfg: error: `--material` is for a MaterialX document (*.mtlx) [wrong-usage]\n");
  EXPECT_EQ(refused.status, 2);
}

TEST_F(ImportTest, NeedsTheDefinitions) {
  write("empty/a.fraglib", "{}");
  const CommandRun refused = run("import two.mtlx -L empty --no-standard-library");
  EXPECT_EQ(refused.err, "sfg: error: no folder of the libraries has the definitions of MaterialX nodes "
                         "(`library/materialx`) [wrong-usage]\n");
  EXPECT_EQ(refused.status, 2);
}

TEST_F(ImportTest, CheckFindsMistakesOfDocumentsInFolders) {
  write("documents/inner/one.mtlx", R"(<materialx version="1.39">
<nodegraph name="g">
<constant name="red" type="color3"><input name="value" type="color3" value="1, 0" /></constant>
<output name="a" type="color3" nodename="red" />
<output name="b" type="color3" nodename="rad" />
</nodegraph></materialx>
)");
  write("documents/broken.mtlx", "<materialx version=\"1.39\"><nodegraph");
  const CommandRun checked = run("check documents two.mtlx -L lib --no-standard-library");
  const std::string without =
      "sfg: note: this sfg was built without compilers: no code was compiled [not-compiled]\n";
  EXPECT_EQ(
      checked.err,
      (host::hasCompilers() ? "" : without) +
          "documents/broken.mtlx:1:36: error: this is no XML: error parsing start element tag "
          "[malformed-xml]\n"
          "documents/inner/one.mtlx:3:36: error: `1, 0` is no value of the type `color3` [wrong-value]\n"
          "documents/inner/one.mtlx:5:1: error: there is no node `rad`; did you mean `red`? [unknown-node]\n"
          "two.mtlx:4:36: error: `0.5, x` is no value of the type `color3` [wrong-value]\n");
  EXPECT_EQ(checked.out,
            "0 profiles of 0 fragments, 0 graphs, 0 environments, 4 materials of 3 MaterialX documents: "
            "4 errors, 0 warnings\n");
  EXPECT_EQ(checked.status, 1);
}

TEST_F(ImportTest, DependencyFilesListWhatADocumentIncludes) {
  write("parts.mtlx", R"(<materialx version="1.39"><nodegraph name="g">
<constant name="red" type="color3"/><output name="a" type="color3" nodename="red" /></nodegraph></materialx>
)");
  write("whole.mtlx", R"(<materialx version="1.39"><xi:include href="parts.mtlx" /></materialx>)");
  const CommandRun collapsed =
      run("collapse whole.mtlx -L lib --no-standard-library --material g/a -o out.hlsl --MD");
  EXPECT_EQ(collapsed.err, "");
  EXPECT_EQ(read("out.hlsl.d"),
            "out.hlsl: \\\n  whole.mtlx \\\n  parts.mtlx \\\n  lib/definitions.json \\\n  lib/lib.fraglib\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
