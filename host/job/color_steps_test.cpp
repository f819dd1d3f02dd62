#include "host/job/color_steps.h"

#include "host/test_job_fixture.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string spaces(const std::string& taken, const std::string& given) {
  const auto port = [](const std::string& name, const std::string& space) {
    return "\"" + name + "\": { \"kind\": \"color\", \"space\": \"" + space + "\" }";
  };
  return "\"ports\": { " + (taken.empty() ? "" : port("color", taken) + ", ") + port("result", given) +
         " }, ";
}

class ColorStepsTest : public JobFixture {
protected:
  ColorStepsTest() {
    const auto filter = [](const std::string& name, const std::string& words) {
      return fragment(name, "float3 color, out float3 result", "result = color;", words);
    };
    writeLibrary("{" + fragment("red", "out float3 result", "result = float3(1, 0, 0);") + "," +
                 fragment("print", "out float3 result", "result = float3(1, 0, 0);", spaces("", "srgb")) +
                 "," + filter("encode", spaces("linear", "srgb")) + "," +
                 filter("tone", spaces("linear", "linear")) + "," + filter("pass", "") + "}");
  }
  std::unique_ptr<CollapseJob> made(const std::string& node, const std::string& chain,
                                    CollapseTool tool = CollapseTool::lightLoop,
                                    const std::string& environment = "{}") const {
    return job(R"({ "outputs": [ { "name": "o", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": ")" +
                   node + "\" } ],\n  \"postprocess\": [" + chain + "] }",
               tool, environment);
  }
  static std::string textOf(const std::vector<ColorStep>& steps) {
    std::string text;
    for (const ColorStep& step : steps) {
      text += std::to_string(static_cast<int>(step.kind)) + " " + toUtf8(step.name) + " " +
              std::to_string(step.position.line) + ":" + std::to_string(step.position.column) + " " +
              step.taken + "->" + step.given + "\n";
    }
    return text;
  }
};

TEST_F(ColorStepsTest, AreTheNodeTheChainAndTheOutputFragment) {
  const auto job = made("print", R"("tone", "pass")", CollapseTool::lightLoop, R"({ "output": "encode" })");
  EXPECT_EQ(textOf(colorSteps(*job)), "0 a 2:14 ->srgb\n"
                                      "1 tone 3:19 linear->linear\n"
                                      "1 pass 3:27 ->\n"
                                      "2 encode 1:13 linear->srgb\n");
}

TEST_F(ColorStepsTest, LeaveOutWhatTheToolDoesNotEvaluate) {
  EXPECT_EQ(textOf(colorSteps(*made("red", R"("encode")", CollapseTool::standard))), "0 a 2:14 ->\n");
  EXPECT_TRUE(colorSteps(*job("{}")).empty());
}

TEST_F(ColorStepsTest, LastOfTheFunctionThatSaysASpaceDecides) {
  EXPECT_EQ(colorSpaceOf(*made("red", "")), "");
  EXPECT_EQ(colorSpaceOf(*made("print", "")), "srgb");
  EXPECT_EQ(colorSpaceOf(*made("red", R"("encode", "pass")")), "srgb");
  EXPECT_EQ(colorSpaceOf(*made("print", R"("tone")")), "linear");
  // Whoever shows the pixel evaluates it.
  EXPECT_EQ(colorSpaceOf(*made("red", "", CollapseTool::lightLoop, R"({ "output": "encode" })")), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
