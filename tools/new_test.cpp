#include <gtest/gtest.h>

#include "sfg/host/compile.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

class NewTest : public CommandTest {
protected:
  static std::string standard() { return " -L " + repository("library") + " -I " + repository("library"); }
};

TEST_F(NewTest, WritesAFragmentThatIsListedAndUsed) {
  const CommandRun made = run("new fragment tint");
  EXPECT_EQ(made.status, 0);
  EXPECT_EQ(made.err, "tint.fraglib: note: written [file-written]\n");
  const CommandRun listed = run("list -L .");
  EXPECT_EQ(listed.err, "");
  EXPECT_EQ(listed.out, "tint  ./tint.fraglib:2:11  What it computes, in a sentence.\n");
  write("graph.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "t" } ],
    "nodes": [ { "name": "t", "fragment": "tint" } ] })json");
  const CommandRun used = run("collapse graph.json -L . --names readable");
  EXPECT_EQ(used.status, 0) << used.err;
  EXPECT_NE(used.out.find("t_amount"), std::string::npos) << used.out;
}

TEST_F(NewTest, WritesAGraphThatCompiles) {
  EXPECT_EQ(run("new graph wall").status, 0);
  const CommandRun collapsed = run("collapse wall.json --names readable" + standard());
  EXPECT_EQ(collapsed.status, 0);
  EXPECT_EQ(collapsed.err, "");
  EXPECT_NE(collapsed.out.find("wall_b"), std::string::npos) << collapsed.out;
  if (!host::hasCompilers()) return;
  EXPECT_EQ(run("compile wall.json --target glsl" + standard()).status, 0);
}

TEST_F(NewTest, WritesAnEnvironmentThatLightsAMaterial) {
  EXPECT_EQ(run("new environment key -o lamps.json").status, 0);
  const CommandRun lit = run("collapse " + repository("examples/materials/brick.json") +
                             " --tool lightloop --environment lamps.json" + standard());
  EXPECT_EQ(lit.status, 0);
  EXPECT_EQ(lit.err, "");
  EXPECT_NE(lit.out.find("result_key_01"), std::string::npos) << lit.out;
}

TEST_F(NewTest, OverwritesNothing) {
  write("wall.json", "kept");
  const CommandRun again = run("new graph wall");
  EXPECT_EQ(again.status, 2);
  EXPECT_EQ(again.err, "wall.json: error: exists already [cannot-write]\n");
  EXPECT_EQ(read("wall.json"), "kept");
}

TEST_F(NewTest, RefusesWhatIsNoName) {
  for (const std::string name : {"9lives", "a-b", "a.b", "\"a b\""}) {
    SCOPED_TRACE(name);
    const CommandRun refused = run("new fragment " + name);
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(
        refused.err.find("is no name: expected letters, digits and `_`, a letter first [wrong-usage]\n"),
        std::string::npos)
        << refused.err;
  }
}

TEST_F(NewTest, RefusesAnUnknownKind) {
  const CommandRun refused = run("new shader x");
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.err,
            "sfg: error: KIND: `shader` is none of `fragment`, `graph`, `environment` [wrong-usage]\n"
            "try `sfg --help`, or `sfg COMMAND --help`\n");
}

}  // namespace

}  // namespace TolmSDK::Graphics::sfg::tools
