#include "host/check/job_findings.h"

#include "host/check/check_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class JobFindingsTest : public CompilingCheckFixture {
protected:
  std::string find(const std::string& fragments, const std::string& graph) {
    write("lib.fraglib", fragments);
    CheckTools tools;
    tools.libraries = LibrarySet::load({{folder_}, {folder_}});
    tools.cache = &cache_->impl();
    std::vector<FindingGroup> groups =
        findInJob(tools, Document::fromText(graph, "graph.json"), {}, std::nullopt);
    hasErrors_ = hasErrors(groups);
    return textOf({sortedFindings(std::move(groups)), {}});
  }
  bool hasErrors_ = false;
};

constexpr const char* kGraph = R"json({"outputs": [{"name": "color", "type": "float", "node": "n"}],
 "nodes": [{"name": "n", "fragment": "f"}]})json";

TEST_F(JobFindingsTest, NothingOfARightJob) {
  EXPECT_EQ(find(R"json({"f": {"language": ["dx11"],
  "implementation": ["void f_(out float result)", "{ result = 1.0; }"]}})json",
                 kGraph),
            "");
  EXPECT_FALSE(hasErrors_);
}

TEST_F(JobFindingsTest, PlaceInGeneratedTextBecomesThatOfTheMistake) {
  EXPECT_EQ(find(R"json({"f": {"language": ["dx11"],
  "implementation": ["void f_(out float result)", "{ result = wrong; }"]}})json",
                 kGraph),
            "lib.fraglib:2:63: error: `wrong` is not declared [compile-error]\n"
            "graph.json:2:12: note: node `n` uses the fragment `f` [code-origin]\n"
            "lib.fraglib:2:63: note: the compiler says \"'wrong' : unknown variable\" of the line "
            "`result = wrong; }` [code-origin]\n");
  EXPECT_TRUE(hasErrors_);
}

TEST_F(JobFindingsTest, RefusedDocumentEndsTheJobWithWhatWasFoundBefore) {
  EXPECT_EQ(
      find("{}", R"json({"outptus": [], "nodes": [{"name": "n"}]})json"),
      "graph.json:1:2: warning: unknown key `outptus` of a graph; did you mean `outputs`? [unknown-key]\n"
      "graph.json:1:27: error: `fragment` is missing [missing-key]\n");
}

TEST_F(JobFindingsTest, PlaceOfARefusalIsTheErrorAndTheMessageItsNote) {
  EXPECT_EQ(
      find("{}", kGraph),
      "graph.json:2:38: error: node `n` uses the fragment `f`, which no library has [unknown-fragment]\n"
      "graph.json:2:38: note: the generator says \"sfgError : Failed to create fragment: f!\" [generator]\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
