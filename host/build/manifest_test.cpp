#include "host/build/build_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class Manifest : public BuildFixture {
protected:
  Manifest() {
    write("graphs/a.json", redGraph());
    write("graphs/deep/b.json", redGraph());
    write("graphs/sun.json", R"({"lights": []})");
    write("sun.json", R"({"lights": []})");
    write("moon.json", R"({"lights": []})");
  }
  /// Outputs below the output folder, a line each.
  std::string outputs(const std::string& set) const {
    std::string text;
    for (const BuildTask& task : plan(set).tasks)
      text += task.output.substr(path("out/").size()) + (task.reflection.empty() ? "\n" : " +\n");
    return text;
  }
  std::string refused(const std::string& set) const {
    return refusal([&] { plan(set); });
  }
  std::string refusedManifest(const std::string& text) const {
    write("build.json", text);
    return refusal([&] { readManifest(Document::fromFile(path("build.json"))); });
  }
};

TEST_F(Manifest, FoldersPatternsAndFilesNameGraphs) {
  EXPECT_EQ(outputs(R"("graphs": ["graphs"])"), "a.spv\ndeep/b.spv\n");
  EXPECT_EQ(outputs(R"("graphs": ["graphs/*.json"])"), "a.spv\n");
  EXPECT_EQ(outputs(R"("graphs": ["graphs/**/?.json"])"), "a.spv\ndeep/b.spv\n");
  EXPECT_EQ(outputs(R"("graphs": ["graphs/deep/b.json"])"), "b.spv\n");
}

TEST_F(Manifest, NamesTellVariantsApart) {
  EXPECT_EQ(outputs(R"("graphs": ["graphs/a.json"], "environments": ["", "sun.json"],
    "surfaceLods": [100, 0.5], "stages": ["pixel"], "targets": ["glsl", "hlsl60"])"),
            "a.none.100.glsl.glsl\na.none.100.hlsl60.hlsl\na.none.0.5.glsl.glsl\na.none.0.5.hlsl60.hlsl\n"
            "a.sun.100.glsl.glsl\na.sun.100.hlsl60.hlsl\na.sun.0.5.glsl.glsl\na.sun.0.5.hlsl60.hlsl\n");
  EXPECT_EQ(outputs(R"("graphs": ["graphs/a.json"], "stages": ["pixel", "vertex"], "lightLods": [1, 2],
    "constants": [{"name": "x", "values": {"a.b": 1}}], "reflection": true,
    "name": "{stage}/{constants}-{graph}{lightLod}.{extension}")"),
            "pixel/x-a1.spv +\nvertex/x-a1.spv +\npixel/x-a2.spv +\nvertex/x-a2.spv +\n");
}

TEST_F(Manifest, FaultsAreToldAtTheirPlace) {
  EXPECT_EQ(refused(R"("graphs": ["nothing/*.json"])"),
            "build.json:1:65: the folder `nothing` cannot be read: No such file or directory "
            "[unreadable-file]");
  EXPECT_EQ(refused(R"("graphs": ["graphs/x*"])"),
            "build.json:1:65: no graph matches `graphs/x*` [unreadable-file]");
  EXPECT_EQ(refused(R"("graphs": ["graphs/x.json"])"),
            "build.json:1:65: `graphs/x.json` does not exist [unreadable-file]");
  EXPECT_EQ(refused(R"("graphs": ["graphs"], "environments": ["sum.json"])"),
            "build.json:1:93: `sum.json` does not exist [unreadable-file]");
  EXPECT_EQ(refused(R"("graphs": ["graphs"], "stages": ["compute"], "targets": ["essl300"])").substr(0, 33),
            "build.json:1:110: GLSL ES 3.00 ha");
  EXPECT_EQ(refused(R"("graphs": ["graphs"], "constants": [{"name": "x", "values": {"a": 1}}])"),
            "build.json:1:115: `a` names no input of a node; expected `node.input` [bad-name]");
  EXPECT_EQ(
      refused(R"("grahps": ["graphs"])"),
      "build.json:1:54: unknown key `grahps` of a set of shaders; did you mean `graphs`? [unknown-key]");
  EXPECT_EQ(refusedManifest(R"({"shaders": [],})").substr(0, 16), "build.json:1:16:");
  EXPECT_EQ(refusedManifest(R"({"libraries": ["lib"]})"),
            "build.json:1:1: `shaders` is missing [missing-key]");
  EXPECT_EQ(refusedManifest(R"({"shaders": []})"), "build.json:1:13: no shaders are asked for [wrong-value]");
  EXPECT_EQ(refusedManifest(R"({"libraries": ["lob"], "shaders": []})"),
            "build.json:1:16: there is no folder `lob` [unknown-folder]");
}

TEST_F(Manifest, MistypedWordsAreToldWithWhatWasMeant) {
  EXPECT_EQ(
      refused(R"("graphs": ["graphs"], "targets": ["spriv"])"),
      "build.json:1:88: `spriv` is not known here; did you mean `spirv`? Known are `assembled`, `spirv`, "
      "`hlsl`, `hlsl60`, `glsl`, `glsl330`, `essl`, `essl300`, `msl` [unknown-word]");
  EXPECT_EQ(
      refused(R"("graphs": ["graphs"], "name": "{grpah}.spv")"),
      "build.json:1:84: `grpah` stands for nothing in a name; did you mean `graph`? Known are `graph`, "
      "`environment`, `constants`, `surfaceLod`, `lightLod`, `stage`, `target`, `extension` [unknown-word]");
}

TEST_F(Manifest, TwoShadersOfOneOutputAreRefused) {
  EXPECT_EQ(refused(R"("graphs": ["graphs/a.json", "graphs"])"),
            "build.json:1:53: two shaders of `graphs/a.json` have the output `out/a.spv`; `name` tells them "
            "apart [repeated-name]");
  EXPECT_EQ(refused(R"("graphs": ["graphs"], "name": "x")"),
            "build.json:1:84: a shader of `graphs/a.json` and one of `graphs/deep/b.json` have the output "
            "`out/x`; `name` tells them apart [repeated-name]");
  EXPECT_EQ(refused(R"("graphs": ["graphs"], "name": "../{graph}")"),
            "build.json:1:84: the output name `../a` leads out of the output folder [bad-name]");
  EXPECT_EQ(refused(R"("graphs": ["graphs"], "name": ".sfg-build/{graph}")"),
            "build.json:1:84: the output name `.sfg-build/a` lies in a folder that builds keep for "
            "themselves [bad-name]");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
