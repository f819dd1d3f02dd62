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
    const Diagnostic place = findRefusalPlace(*made, message);
    EXPECT_EQ(place.severity, Severity::note);
    return textOf({place});
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
            "graph.json:2:1: node `a` uses the fragment `gone`, which no library has\n");
  EXPECT_EQ(placeOf(withNodes(
                "\n{ \"name\": \"a\", \"fragment\": \"pass\", \"inputs\": { \"x\": { \"node\": \"a\" } } }")),
            "graph.json:2:53: input `x` of node `a` closes a loop through node `a`\n");
}

TEST_F(RefusalPlaceTest, NamesTheFileAtLeast) {
  const std::unique_ptr<CollapseJob> made = collapsed(withNodes(R"({ "name": "a", "fragment": "pass" })"));
  EXPECT_EQ(textOf({findRefusalPlace(*made, L"nobody knows this message")}),
            "graph.json: while this graph was collapsed\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
