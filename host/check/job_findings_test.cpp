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
  EXPECT_EQ(
      find(
          R"json({"f": {"language": ["dx11"], "implementation": ["void f_(out float result)", "{ result = 1.0; }"]
}
})json",
          kGraph),
      "");
  EXPECT_FALSE(hasErrors_);
}

TEST_F(JobFindingsTest, PlaceInGeneratedTextBecomesThatOfTheMistake) {
  EXPECT_EQ(
      find(
          R"json({"f": {"language": ["dx11"], "implementation": ["void f_(out float result)", "{ result = wrong; }"]
}
})json",
          kGraph),
      "lib.fraglib:1:93: error: undefined name `wrong` [compile-error]\n"
      "graph.json:2:12: note: node `n` uses the fragment `f` [code-origin]\n"
      "lib.fraglib:1:93: note: the compiler says \"'wrong' : unknown variable\" of the line `{ result = "
      "wrong; }` "
      "[code-origin]\n");
  EXPECT_TRUE(hasErrors_);
}

TEST_F(JobFindingsTest, RefusedDocumentEndsTheJobWithWhatWasFoundBefore) {
  EXPECT_EQ(find("{}", R"json({"outptus": [], "nodes": [{"name": "n"}]})json"), "");
}

TEST_F(JobFindingsTest, MessageOfTheGeneratorIsToldAtItsPlace) { EXPECT_EQ(find("{}", kGraph), ""); }

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
