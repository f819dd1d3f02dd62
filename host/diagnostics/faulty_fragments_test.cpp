#include "host/diagnostics/faulty_fragments.h"

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class FaultyFragmentsTest : public JobFixture {
protected:
  static std::string graph(const std::string& nodes) {
    return R"({ "outputs": [ { "name": "o", "type": "float", "node": "a" } ],
"nodes": [
)" + nodes +
           " ] }";
  }
};

TEST_F(FaultyFragmentsTest, AreNothingWhereAllCanBeRead) {
  writeLibrary("{" + fragment("pass", "float x, out float result", "result = x;") + "}");
  EXPECT_EQ(textOf(findFaultyFragments(*job(graph(R"({ "name": "a", "fragment": "pass" })")))), "");
}

TEST_F(FaultyFragmentsTest, AreToldAtTheFirstNodeThatUsesEach) {
  writeLibrary(R"json({ "open": { "language": ["dx11"], "implementation": [
"void open(float x, out float r)",
"{", "r = x;"] },)json" +
               fragment("pass", "float x, out float result", "result = x;") + "}");
  const std::vector<Diagnostic> told = findFaultyFragments(*job(graph(R"({ "name": "p", "fragment": "pass" },
{ "name": "a", "fragment": "open" }, { "name": "b", "fragment": "open" })")));
  EXPECT_EQ(textOf(told),
            "graph.json:4:28: node `a` uses the fragment `open`, of which no shader can be made: see " +
                path("lib.fraglib") + ":3:2\n");
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told.front().severity, Severity::error);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
