#include "host/diagnostics/code_origin.h"

#include <algorithm>

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class CodeOriginTest : public JobFixture {
protected:
  CodeOriginTest() {
    writeLibrary("{ " +
                 fragment("tint", "float x, out float result", "result = half(x) * gain;",
                          R"("includes": ["base.h"], "predefine": ["float half(float a) { return a * 0.5; }"],
                             "uniforms": [ { "name": "gain", "type": "float" } ], )") +
                 " }");
    write("base.h", "float base;\n");
    job_ = collapsed(R"({ "outputs": [ { "name": "o", "type": "float", "node": "second" } ],
      "nodes": [ { "name": "first", "fragment": "tint" },
                 { "name": "second", "fragment": "tint", "inputs": { "x": { "node": "first" } } } ] })");
    assembled_ = assembleShader(*job_, ShaderStage::pixel);
  }
  /// What is said about the first line that holds this.
  std::string originsOf(std::wstring_view text) const {
    const WString& shader = assembled_.shader.getCompleteShader();
    const std::size_t at = shader.find(text);
    if (at == WString::npos) return "(no such line)";
    const auto line = 1 + std::count(shader.begin(), shader.begin() + static_cast<std::ptrdiff_t>(at), L'\n');
    return textOf(findOrigins(*job_, assembled_, static_cast<std::size_t>(line)));
  }
  std::string isOfTint(const std::string& what) const {
    return path("lib.fraglib") + ":1:11: " + what + " is of fragment `tint`, node `first`\n";
  }

  std::unique_ptr<CollapseJob> job_;
  AssembledShader assembled_;
};

TEST_F(CodeOriginTest, NamesIncludeFilesFunctionsHelpersAndUniforms) {
  EXPECT_EQ(originsOf(L"float base;"),
            ": the line is `float base;`\n" + path("base.h") + ": in this include file\n");
  EXPECT_EQ(originsOf(L"void tint1("), ": the line is `void tint1(`\n" + isOfTint("function `tint1`"));
  EXPECT_EQ(originsOf(L"float half("),
            ": the line is `float half(float a) { return a * 0.5; }`\n" + isOfTint("helper `half`"));
  EXPECT_EQ(originsOf(L"float result_n0_01;"),
            ": the line is `float result_n0_01;`\n" + isOfTint("value `result_n0_01`"));
}

TEST_F(CodeOriginTest, SaysNothingBehindTheLastLine) {
  EXPECT_TRUE(findOrigins(*job_, assembled_, 0).empty());
  EXPECT_TRUE(findOrigins(*job_, assembled_, 100000).empty());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
