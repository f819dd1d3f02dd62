#include "host/build/build_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(BuildEvents, ResultIsAnObjectInALine) {
  BuildPlan plan;
  plan.tasks.resize(1);
  plan.tasks[0].graph = "a.json";
  plan.tasks[0].output = "out/a.spv";
  BuildResult result;
  result.outcome = BuildOutcome::failed;
  result.seconds = 0.5;
  result.files = {"a.json", "l.fraglib"};
  result.diagnostics = {{Severity::warning, "a.json", 1, 2, "line\nfeed", "unused-node"}};
  EXPECT_EQ(eventJson(plan, result, 3, 7),
            R"({"event":"shader","output":"out/a.spv","graph":"a.json","outcome":"failed","seconds":0.5,)"
            R"("done":3,"all":7,"files":["a.json","l.fraglib"],"diagnostics":[{"file":"a.json","line":1,)"
            R"("column":2,"severity":"warning","identifier":"unused-node","text":"line\nfeed"}]})"
            "\n");
}

TEST(BuildEvents, ReportIsTheLastLine) {
  BuildPlan plan;
  plan.tasks.resize(1);
  plan.tasks[0].output = "a.spv";
  BuildReport report;
  report.tasks = 4;
  report.built = 1;
  report.reused = 2;
  report.failed = 1;
  report.steps = {{"key", 0.5}};
  report.slowest = {{0, 0.25}};
  EXPECT_EQ(reportJson(plan, report),
            R"({"event":"end","version":1,"shaders":4,"built":1,"reused":2,"unchanged":0,"failed":1,)"
            R"("stopped":false,"seconds":0.0,"collapses":0,"compiledTexts":0,"steps":{"key":0.5},)"
            R"("slowest":[{"output":"a.spv","seconds":0.25}]})"
            "\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
