#include "host/diagnostics/code_warnings.h"

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class CodeWarningsTest : public JobFixture {
protected:
  /// The warnings about a fragment `f`, used so often.
  std::string warningsOf(const std::string& members, const std::string& body, std::size_t uses = 1) const {
    writeLibrary("{ " + fragment("f", "float x, out float result", body, members) + " }");
    std::string nodes;
    for (std::size_t i = 0; i < uses; ++i) {
      const std::string source = i == 0 ? "" : "\"x\": { \"node\": \"n" + std::to_string(i - 1) + "\" }";
      nodes += std::string(i == 0 ? "" : ", ") + "{ \"name\": \"n" + std::to_string(i) +
               "\", \"fragment\": \"f\", \"inputs\": { " + source + " } }";
    }
    const auto made = collapsed(R"({ "outputs": [ { "name": "o", "type": "float", "node": "n)" +
                                std::to_string(uses - 1) + "\" } ], \"nodes\": [" + nodes + "] }");
    WarningList warnings(*made);
    warnOfCode(CollapseFacts(*made), warnings);
    return textOf(warnings.take());
  }
  std::string at(int column, const std::string& text) const {
    return path("lib.fraglib") + ":1:" + std::to_string(column) + ": fragment `f`: " + text + "\n";
  }
};

TEST_F(CodeWarningsTest, TellsUniformsAndHelpersInsideOtherNames) {
  EXPECT_EQ(
      warningsOf(R"("uniforms": [ { "name": "gain", "type": "float" } ], )",
                 "float again = gain; result = again;"),
      at(154, "the uniform name `gain` occurs inside `again`, which is changed with it when it is renamed"));
  EXPECT_EQ(
      warningsOf(R"("predefine": ["float wave(float a) { return a; }"], )",
                 "float waves = wave(x); result = waves;"),
      at(153, "the helper name `wave` occurs inside `waves`, which is changed with it when it is renamed"));
  EXPECT_EQ(warningsOf(R"("uniforms": [ { "name": "gain", "type": "float" } ], )", "result = gain;"), "");
}

TEST_F(CodeWarningsTest, TellsRawTextOfPredefinesThatAreWrittenSeveralTimes) {
  const std::string members =
      R"("predefine": ["float one() { return 1; }", "// only a comment", "typedef float f1;"], )";
  EXPECT_EQ(warningsOf(members, "result = x;", 1), "");
  EXPECT_EQ(warningsOf(members, "result = x;", 3),
            at(97, "it is used 3 times, and so often `typedef float f1;` of its predefines is written"));
  EXPECT_EQ(warningsOf(R"("predefine": ["// only a comment", "#define A 1"], )", "result = x;", 2), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
