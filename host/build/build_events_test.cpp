// What other programs read of a build.

#include <gtest/gtest.h>

#include "sfg/host/build.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

BuildPlan planOfOne() {
  BuildPlan plan;
  plan.tasks.resize(1);
  plan.tasks[0].graph = "a.json";
  plan.tasks[0].output = "a.spv";
  return plan;
}

TEST(BuildEventsTest, TellAShaderInALine) {
  BuildResult result;
  result.outcome = BuildOutcome::failed;
  result.seconds = 0.5;
  result.files = {"a.json", "lib/\"b\".fraglib"};
  EXPECT_EQ(eventJson(planOfOne(), result, 3, 7),
            R"({"event":"shader","output":"a.spv","graph":"a.json","outcome":"failed","seconds":0.5,)"
            R"("done":3,"all":7,"files":["a.json","lib/\"b\".fraglib"],"diagnostics":[]})"
            "\n");
}

TEST(BuildEventsTest, TellTheReportInALine) {
  BuildReport report;
  report.tasks = 4;
  report.built = 1;
  report.unchanged = 3;
  report.steps = {{"collapse", 0.25}};
  report.slowest = {{0, 0.5}};
  EXPECT_EQ(reportJson(planOfOne(), report),
            R"({"event":"end","version":1,"shaders":4,"built":1,"reused":0,"unchanged":3,"failed":0,)"
            R"("stopped":false,"seconds":0.0,"collapses":0,"compiledTexts":0,"steps":{"collapse":0.25},)"
            R"("slowest":[{"output":"a.spv","seconds":0.5}]})"
            "\n");
}

TEST(BuildEventsTest, ReplaceIllFormedText) {
  BuildPlan plan = planOfOne();
  plan.tasks[0].graph = "\xFF";
  EXPECT_NE(eventJson(plan, BuildResult(), 1, 1).find("\"graph\":\"\xEF\xBF\xBD\""), std::string::npos);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
