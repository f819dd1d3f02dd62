// What decides a key, and what does not.

#include "host/build/build_keys.h"

#include "host/build/build_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(KeyTextTest, KeepsPartsApart) {
  EXPECT_EQ(KeyText().add("ab").add("c").hash(), KeyText().add("ab").add("c").hash());
  EXPECT_NE(KeyText().add("ab").add("c").hash(), KeyText().add("a").add("bc").hash());
  EXPECT_NE(KeyText().add("").hash(), KeyText().hash());
}

TEST(BuildKeysTest, KnowWhatDecidesACollapse) {
  BuildTask task;
  const std::string plain = collapseText(task, "dx11");
  task.output = "other.spv";
  task.stage = ShaderStage::compute;
  EXPECT_EQ(collapseText(task, "dx11"), plain);
  EXPECT_NE(collapseText(task, "metasl"), plain);
  task.collapse.surfaceLod = 10;
  EXPECT_NE(collapseText(task, "dx11"), plain);
  task.collapse = {};
  task.collapse.constants = {{"a", "amount", 2.0}};
  EXPECT_NE(collapseText(task, "dx11"), plain);
}

TEST(BuildKeysTest, KnowWhatDecidesAnOutput) {
  BuildTask task;
  const std::string plain = outputText(task);
  task.output = "other.spv";
  task.collapse.surfaceLod = 10;
  task.mesh.color = !task.mesh.color;  // of the vertex stage only
  EXPECT_EQ(outputText(task), plain);
  task.stage = ShaderStage::vertex;
  const std::string vertex = outputText(task);
  EXPECT_NE(vertex, plain);
  task.mesh.color = !task.mesh.color;
  EXPECT_NE(outputText(task), vertex);
  task = {};
  task.target.reset();
  EXPECT_NE(outputText(task), plain);
  task = {};
  task.reflection = "a.json";
  EXPECT_NE(outputText(task), plain);
  task = {};
  task.compile.debug = true;
  EXPECT_NE(outputText(task), plain);
}

class LibraryKeysTest : public BuildFixture {
protected:
  Reached reachedBy(const std::string& graph) const {
    return LibraryKeys(LibrarySet::load({{path("lib")}, {path("lib")}}, "dx11")).reached(graph, "");
  }
};

TEST_F(LibraryKeysTest, ReachTheFragmentsThatAreNamedAndTheirIncludeFiles) {
  const Reached dim = reachedBy(dimGraph(1));
  EXPECT_EQ(dim.files,
            (std::vector<std::string>{path("lib/deep.h"), path("lib/half.h"), path("lib/test.fraglib")}));
  const Reached red = reachedBy(redGraph());
  EXPECT_EQ(red.files, std::vector<std::string>{path("lib/test.fraglib")});
  EXPECT_NE(dim.hash, red.hash);
  write("lib/alone.h", "#define ALONE 2\n");
  EXPECT_EQ(reachedBy(dimGraph(1)).hash, dim.hash);
  write("lib/deep.h", "#define DEEP 2.0\n");
  EXPECT_NE(reachedBy(dimGraph(1)).hash, dim.hash);
  EXPECT_EQ(reachedBy(redGraph()).hash, red.hash);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
