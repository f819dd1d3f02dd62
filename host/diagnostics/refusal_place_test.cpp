#include "host/diagnostics/refusal_place.h"

#include "host/test_job_fixture.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class RefusalPlaceTest : public JobFixture {
protected:
  RefusalPlaceTest() {
    writeLibrary("{" + fragment("pass", "float x, out float result", "result = x;") + "}");
  }
  /// Where to look when the collapse of this is refused.
  std::string placeOf(const std::string& graph) const {
    const std::unique_ptr<CollapseJob> made = job(graph);
    WString message;
    try {
      made->run();
    } catch (const Exception& refusal) {
      message = refusal.getMessage();
    }
    EXPECT_EQ(made->result(), nullptr);
    const std::vector<Diagnostic> told = findRefusalPlace(*made, message);
    for (const Diagnostic& error : told) EXPECT_EQ(error.severity, Severity::error);
    return textOf(told);
  }
};

std::string withNodes(const std::string& nodes) {
  return R"({ "outputs": [ { "name": "o", "type": "float", "node": "a" } ], "nodes": [)" + nodes + " ] }";
}

TEST_F(RefusalPlaceTest, NamesWhatTheMessageIsAbout) {
  EXPECT_EQ(placeOf("{}"), "graph.json: the graph has no `outputs`\n");
  EXPECT_EQ(placeOf(R"({ "outputs": [ { "name": "o", "type": "float" } ] })"),
            "graph.json:1:16: graph output `o` has no `node`\n");
  EXPECT_EQ(placeOf(withNodes("\n{ \"name\": \"a\", \"fragment\": \"gone\" }")),
            "graph.json:2:28: node `a` uses the fragment `gone`, which no library has\n");
  EXPECT_EQ(placeOf(withNodes(
                "\n{ \"name\": \"a\", \"fragment\": \"pass\", \"inputs\": { \"x\": { \"node\": \"a\" } } }")),
            "graph.json:2:53: input `x` of node `a` closes a loop through node `a`\n");
}

TEST_F(RefusalPlaceTest, NamesTheFileAtLeast) {
  const std::unique_ptr<CollapseJob> made = collapsed(withNodes(R"({ "name": "a", "fragment": "pass" })"));
  const std::vector<Diagnostic> told = findRefusalPlace(*made, L"nobody knows this message");
  EXPECT_EQ(textOf(told), "graph.json: while this graph was collapsed\n");
  EXPECT_EQ(told.front().severity, Severity::note);
}

TEST_F(RefusalPlaceTest, NamesEachUnknownFragmentOnce) {
  EXPECT_EQ(placeOf(withNodes(R"({ "name": "a", "fragment": "pas" }, { "name": "b", "fragment": "gone" },
{ "name": "c", "fragment": "pas" })")),
            "graph.json:1:102: node `a` uses the fragment `pas`, which no library has; did you mean `pass`?\n"
            "graph.json:1:138: node `b` uses the fragment `gone`, which no library has\n");
}

TEST_F(RefusalPlaceTest, TellsTheCauseOfAFragmentThatDidNotLoadInFrontOfItsNode) {
  writeLibrary(R"({ "broken": { "language": 3, "implementation": [] } })");
  const std::unique_ptr<CollapseJob> made = job(withNodes(R"({ "name": "a", "fragment": "broken" })"));
  const std::vector<Diagnostic> told =
      findRefusalPlace(*made, L"sfgError : Failed to create fragment: broken!");
  const std::string cause = path("lib.fraglib") + ":1:27";
  EXPECT_EQ(textOf(told), cause +
                              ": fragment `broken`: `language` must be an array of strings, not a number\n" +
                              "graph.json:1:102: for node `a`, the fragment `broken` cannot be loaded: see " +
                              cause + "\n");
  EXPECT_EQ(told.front().severity, Severity::error);
  EXPECT_EQ(told.back().severity, Severity::note);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
