#include "host/diagnostics/shader_arguments.h"

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class ShaderArgumentsTest : public JobFixture {
protected:
  /// What is told of a fragment with this body, each without its end.
  std::string told(const std::string& body, const std::string& members = std::string()) const {
    writeLibrary("{" +
                 fragment("blur", "float3 image, float2 uv, out float3 result", body,
                          R"("uniforms": [ { "name": "spread", "type": "float" } ], )" + members) +
                 "}");
    const auto made = job(R"({ "nodes": [ { "name": "a", "fragment": "blur" },
      { "name": "b", "fragment": "blur" } ] })");
    std::string text = textOf(findShaderArguments(*made, Severity::error));
    const std::string end = "; assign it to a variable in front of the call";
    for (std::size_t at = text.find(end); at != text.npos; at = text.find(end)) text.erase(at, end.size());
    const std::string start = path("lib.fraglib") + ":1:";
    for (std::size_t at = text.find(start); at != text.npos; at = text.find(start))
      text.erase(at, start.size());
    return text;
  }
};

TEST_F(ShaderArgumentsTest, TakesNamesNumbersAndTextWithoutBlanks) {
  EXPECT_EQ(told("sfg_shader(image, uv, p.xy, scale, 2.0, amount, length(p), result, result);"), "");
}

TEST_F(ShaderArgumentsTest, TellsArgumentsThatAreCut) {
  EXPECT_EQ(
      told("sfg_shader(image, uv, uv + p, result, result);"),
      "194: fragment `blur`: the argument `uv + p` of `sfg_shader` is cut at its blanks and commas; it must "
      "be one name or number\n");
  EXPECT_EQ(
      told("sfg_shader(image, uv, float2(1,0), result, result);"),
      "194: fragment `blur`: the argument `float2(1,0)` of `sfg_shader` is cut at its blanks and commas; it "
      "must be one name or number\n");
}

TEST_F(ShaderArgumentsTest, TellsUniformsAndStateThatTheCodeDoesNotReadElsewhere) {
  EXPECT_EQ(told("sfg_shader(image, a, spread, b, p.spread, c, sfg_time, result, result);"),
            "193: fragment `blur`: the uniform `spread` is not known among the arguments of `sfg_shader`\n"
            "217: fragment `blur`: the state variable `sfg_time` is not known among the arguments of "
            "`sfg_shader`\n");
  EXPECT_EQ(told("sfg_shader(image, a, sfg_time, result, result); result *= sfg_time;"), "");
}

TEST_F(ShaderArgumentsTest, ReadsNoNamesOfPortsAndNoComments) {
  EXPECT_EQ(told("sfg_shader(image, spread, uv); // sfg_shader(image, uv, spread)"), "");
}

TEST_F(ShaderArgumentsTest, ReadsPredefinesToo) {
  EXPECT_EQ(told("result = 0;", R"("predefine": ["float f() { sfg_shader(image, uv, spread); }"], )"),
            "138: fragment `blur`: the uniform `spread` is not known among the arguments of `sfg_shader`\n");
}

TEST_F(ShaderArgumentsTest, EndsWithTheTextWhereACallIsNotClosed) {
  EXPECT_EQ(told("sfg_shader(image, uv, spread"),
            "194: fragment `blur`: the uniform `spread` is not known among the arguments of `sfg_shader`\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
