#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "sfg/host/check.h"
#include "sfg/host/version.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

CheckResult sample() {
  CheckResult result;
  result.diagnostics = {{Severity::error, "lib dir/x.fraglib", 3, 7, "undefined name `a`", "compile-error"},
                        {Severity::note, "graph.json", 2, 1, "node `n` uses it", "code-origin"},
                        {Severity::warning, "/abs/g.json", 0, 0, "odd", "unused-node"},
                        {Severity::note, "", 0, 0, "nothing was compiled", "not-compiled"}};
  result.counts = {2, 3, 1, 0};
  return result;
}

TEST(CheckReportTest, Json) {
  EXPECT_EQ(toJson(sample()), R"({
  "version": 1,
  "findings": [
    {
      "file": "lib dir/x.fraglib",
      "line": 3,
      "column": 7,
      "severity": "error",
      "identifier": "compile-error",
      "text": "undefined name `a`",
      "notes": [
        {
          "file": "graph.json",
          "line": 2,
          "column": 1,
          "severity": "note",
          "identifier": "code-origin",
          "text": "node `n` uses it"
        }
      ]
    },
    {
      "file": "/abs/g.json",
      "line": 0,
      "column": 0,
      "severity": "warning",
      "identifier": "unused-node",
      "text": "odd",
      "notes": [
        {
          "file": "",
          "line": 0,
          "column": 0,
          "severity": "note",
          "identifier": "not-compiled",
          "text": "nothing was compiled"
        }
      ]
    }
  ],
  "errors": 1,
  "warnings": 1,
  "fragments": 2,
  "profiles": 3,
  "graphs": 1,
  "environments": 0
}
)");
}

TEST(CheckReportTest, SarifHoldsAllKindsAsRules) {
  const auto log = nlohmann::json::parse(toSarif(sample()));
  EXPECT_EQ(log["version"], "2.1.0");
  ASSERT_EQ(log["runs"].size(), 1u);
  const auto& driver = log["runs"][0]["tool"]["driver"];
  EXPECT_EQ(driver["name"], "sfg");
  EXPECT_EQ(driver["version"], hostVersion());
  ASSERT_EQ(driver["rules"].size(), diagnosticKinds().size());
  for (std::size_t i = 0; i < diagnosticKinds().size(); ++i) {
    EXPECT_EQ(driver["rules"][i]["id"], diagnosticKinds()[i].identifier);
    EXPECT_EQ(driver["rules"][i]["shortDescription"]["text"], diagnosticKinds()[i].meaning);
  }
}

TEST(CheckReportTest, SarifResults) {
  const auto log = nlohmann::json::parse(toSarif(sample()));
  auto results = log["runs"][0]["results"];
  ASSERT_EQ(results.size(), 2u);
  for (auto& result : results) {
    const std::size_t index = result["ruleIndex"];
    EXPECT_EQ(log["runs"][0]["tool"]["driver"]["rules"][index]["id"], result["ruleId"]);
    result.erase("ruleIndex");
  }
  EXPECT_EQ(results[0], nlohmann::json::parse(R"({
    "ruleId": "compile-error", "level": "error", "message": {"text": "undefined name `a`"},
    "locations": [{"physicalLocation": {"artifactLocation": {"uri": "lib%20dir/x.fraglib"},
                                        "region": {"startLine": 3, "startColumn": 7}}}],
    "relatedLocations": [{"physicalLocation": {"artifactLocation": {"uri": "graph.json"},
                                               "region": {"startLine": 2, "startColumn": 1}},
                          "message": {"text": "node `n` uses it"}}]})"));
  EXPECT_EQ(results[1], nlohmann::json::parse(R"({
    "ruleId": "unused-node", "level": "warning", "message": {"text": "odd"},
    "locations": [{"physicalLocation": {"artifactLocation": {"uri": "file:///abs/g.json"}}}],
    "relatedLocations": [{"message": {"text": "nothing was compiled"}}]})"));
}

TEST(CheckReportTest, IllFormedTextBecomesReplacementCharacters) {
  CheckResult result;
  result.diagnostics = {{Severity::error, "\xFF.json", 1, 1, "\xC3", "failure"}};
  EXPECT_NE(toJson(result).find("\"text\": \"\xEF\xBF\xBD\""), std::string::npos);
  EXPECT_NE(toSarif(result).find("\"uri\": \"%FF.json\""), std::string::npos);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
