#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

class GraphTest : public CommandTest {
protected:
  GraphTest() {
    write("lib.fraglib",
          R"json({ "one": { "language": ["dx11"], "implementation": [ "void one(out float4 result)", "{",
      "result = 1;", "}" ] } })json");
    writeGraph("one");
  }
  void writeGraph(const std::string& fragment) const {
    write("graph.json", R"({ "outputs": [ { "name": "color", "type": "float4", "node": "a" } ],
      "nodes": [ { "name": "a", "fragment": ")" +
                            fragment + "\" } ] }");
  }
};

TEST_F(GraphTest, WritesADrawingForGraphviz) {
  const CommandRun drawn = run("graph graph.json -L . --no-standard-library");
  EXPECT_EQ(drawn.status, 0);
  EXPECT_EQ(drawn.err, "");
  EXPECT_EQ(drawn.out.find("digraph sfg {\n"), 0u);
  EXPECT_NE(drawn.out.find("label=<graph.json>"), std::string::npos);
  EXPECT_NE(drawn.out.find("n0:o0:e -> n1:i0:w"), std::string::npos) << drawn.out;
  EXPECT_EQ(run("graph graph.json -L . --no-standard-library -o a.dot").status, 0);
  EXPECT_EQ(read("a.dot"), drawn.out);
}

TEST_F(GraphTest, LaysOutByTheNameOfTheOutput) {
  EXPECT_EQ(run("graph graph.json -L . --no-standard-library -o a.svg").status, 0);
  const std::string svg = read("a.svg");
  EXPECT_NE(svg.find("<svg "), std::string::npos);
  EXPECT_NE(svg.find(">color"), std::string::npos) << svg;
  const CommandRun printed = run("graph graph.json -L . --no-standard-library --format svg");
  EXPECT_EQ(printed.out, svg);
  EXPECT_EQ(run("graph graph.json -L . --no-standard-library --format dot -o b.svg").status, 0);
  EXPECT_EQ(read("b.svg").find("digraph sfg {\n"), 0u);
}

TEST_F(GraphTest, RefusesWhatCannotBeCollapsed) {
  writeGraph("two");
  const CommandRun refused = run("graph graph.json -L . --no-standard-library -o a.svg");
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.err.find("graph.json:2:"), std::string::npos) << refused.err;
  EXPECT_FALSE(exists("a.svg"));
}

TEST_F(GraphTest, RefusesNamesOfOtherPictures) {
  EXPECT_EQ(run("graph graph.json -L . --no-standard-library -o a.png").err,
            "sfg: error: `-o a.png`: expected a name that ends in `.svg` or `.dot` (`dot -Tpng` of Graphviz "
            "draws other kinds) [wrong-usage]\n");
  EXPECT_FALSE(exists("a.png"));
  EXPECT_EQ(run("graph graph.json -L . --no-standard-library -o a.txt").status, 0);
}

TEST_F(GraphTest, RefusesToReplaceTheGraph) {
  EXPECT_EQ(run("graph graph.json -L . -o graph.json").status, 2);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
