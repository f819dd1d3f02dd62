#include "host/diagnostics/compile_explanation.h"

#include <algorithm>
#include <utility>

#include "host/test_job_fixture.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class CompileExplanationTest : public JobFixture {
protected:
  /// What is told when a compiler says this of the first place where the generated text holds `token`;
  /// without a token, of no place.
  std::string explained(const std::string& graph, const std::string& token,
                        const std::string& message) const {
    const std::unique_ptr<CollapseJob> made = collapsed(graph);
    const AssembledShader assembled = assembleShader(*made, ShaderStage::pixel, NameStyle::readable);
    CompilerMessage said{0, message, 0};
    if (!token.empty()) {
      const std::string text = toUtf8(std::as_const(assembled.shader).getCompleteShader());
      const std::size_t place = text.find(token);
      if (place == std::string::npos) return "not in " + text;
      said.line = 1 + static_cast<std::size_t>(
                          std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
      said.column = place - text.rfind('\n', place);
    }
    const CompileError error("the shader does not compile", {said}, true);
    std::string text;
    for (const Diagnostic& diagnostic : explainCompileError(*made, assembled, error)) {
      std::string line = (diagnostic.severity == Severity::error ? "error " : "note ") + diagnostic.place() +
                         ": " + diagnostic.text + "\n";
      const std::size_t folder = line.find(folder_.string());
      if (folder != line.npos) line.erase(folder, folder_.string().size() + 1);
      text += line;
    }
    return text;
  }
};

constexpr const char* kOne = R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint" } ] })";

TEST_F(CompileExplanationTest, TellsTheCauseItsUserAndTheGeneratedLine) {
  writeLibrary("{" + fragment("tint", "float3 color, out float3 result", "  result = colour;") + "}");
  EXPECT_EQ(explained(kOne, "colour", "'colour' : unknown variable"),
            R"(error lib.fraglib:1:117: `colour` is not declared; did you mean `color`?
note graph.json:2:14: node `a` uses the fragment `tint`
note generated:12:11: the compiler says "'colour' : unknown variable" of the line `result = colour;`
)");
}

TEST_F(CompileExplanationTest, NamesAFewOfManyUsers) {
  writeLibrary("{" + fragment("tint", "float3 color, out float3 result", "result = colour;") + "}");
  EXPECT_EQ(explained(R"({ "outputs": [ { "name": "color", "type": "float3", "node": "e" } ],
  "nodes": [ { "name": "a", "fragment": "tint" },
    { "name": "b", "fragment": "tint", "inputs": { "color": { "node": "a" } } },
    { "name": "c", "fragment": "tint", "inputs": { "color": { "node": "b" } } },
    { "name": "d", "fragment": "tint", "inputs": { "color": { "node": "c" } } },
    { "name": "e", "fragment": "tint", "inputs": { "color": { "node": "d" } } } ] })",
                      "colour", "'colour' : unknown variable"),
            R"(error lib.fraglib:1:115: `colour` is not declared; did you mean `color`?
note graph.json:2:14: node `a` uses the fragment `tint`
note graph.json:3:5: node `b` uses the fragment `tint`
note graph.json:4:5: node `c` uses the fragment `tint`, as 2 more do
note generated:12:11: the compiler says "'colour' : unknown variable" of the line `result = colour;`
)");
}

TEST_F(CompileExplanationTest, SpellsUniformsAsTheSourceDoes) {
  writeLibrary("{" +
               fragment("tint", "float3 color, out float3 result", "result = color * gain;",
                        R"("uniforms": [ { "name": "gain", "type": "float" } ], )") +
               "}");
  const std::string unknown = explained(kOne, "a_gain;\n}", "'a_gain' : unknown variable");
  EXPECT_EQ(unknown.substr(0, unknown.find('\n')), "error lib.fraglib:1:176: `gain` is not declared");
  EXPECT_EQ(explained(kOne, "a_gain;\n}", "'a_gain' : is odd"), R"(error lib.fraglib:1:176: `gain`: is odd
note graph.json:2:14: node `a` uses the fragment `tint`
note generated:13:19: the compiler says "'a_gain' : is odd" of the line `result = color * a_gain;`
)");
}

TEST_F(CompileExplanationTest, NamesEachOfThreeUsers) {
  writeLibrary("{" + fragment("tint", "float3 color, out float3 result", "result = colour;") + "}");
  EXPECT_EQ(explained(R"({ "outputs": [ { "name": "color", "type": "float3", "node": "c" } ],
  "nodes": [ { "name": "a", "fragment": "tint" },
    { "name": "b", "fragment": "tint", "inputs": { "color": { "node": "a" } } },
    { "name": "c", "fragment": "tint", "inputs": { "color": { "node": "b" } } } ] })",
                      "colour", "'colour' : unknown variable"),
            R"(error lib.fraglib:1:115: `colour` is not declared; did you mean `color`?
note graph.json:2:14: node `a` uses the fragment `tint`
note graph.json:3:5: node `b` uses the fragment `tint`
note graph.json:4:5: node `c` uses the fragment `tint`
note generated:12:11: the compiler says "'colour' : unknown variable" of the line `result = colour;`
)");
}

TEST_F(CompileExplanationTest, PutsSyntaxErrorsDownToWhatIsNotClosed) {
  writeLibrary("{" + fragment("tint", "float3 color, out float3 result", "result = (color * 2;") + "}");
  EXPECT_EQ(explained(kOne, "2;", "';' : Expected"), R"(error lib.fraglib:1:115: `(` is not closed
note graph.json:2:14: node `a` uses the fragment `tint`
note generated:12:20: the compiler says "';' : Expected" of the line `result = (color * 2;`
)");
}

TEST_F(CompileExplanationTest, TellsMistakesOfCallsAtTheNode) {
  writeLibrary("{" + fragment("tint", "float3 color, out float3 result", "result = color;") + ",\n" +
               fragment("flat", "out float2 result", "result = float2(1, 1);") + "}");
  EXPECT_EQ(
      explained(R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint", "inputs": { "color": { "node": "f" } } },
    { "name": "f", "fragment": "flat" } ] })",
                "tint1(\n        result", "'tint1' : no matching overloaded function found"),
      R"(error graph.json:2:14: `tint1` takes no such arguments: (float2, float3) given, (float3, float3) expected
note lib.fraglib:1:10: the fragment `tint` is here
note generated:21:5: the compiler says "'tint1' : no matching overloaded function found" of the line `tint1(`
)");
}

TEST_F(CompileExplanationTest, LooksForNamesInIncludes) {
  writeLibrary("{" +
               fragment("tint", "float3 color, out float3 result", "result = color * shaep(1);",
                        R"("includes": ["b.h"], )") +
               "}");
  write("b.h", "#include \"a.h\"\nfloat b;\n");
  write("a.h", "float shape(float x) { return x; }\n");
  EXPECT_EQ(explained(kOne, "shaep", "'shaep' : unknown variable"),
            R"(error lib.fraglib:1:144: `shaep` is not declared; did you mean `shape`?
note graph.json:2:14: node `a` uses the fragment `tint`
note generated:16:19: the compiler says "'shaep' : unknown variable" of the line `result = color * shaep(1);`
)");
}

TEST_F(CompileExplanationTest, TellsWhatTheHostWroteAtItsOwnLine) {
  writeLibrary("{" + fragment("tint", "float3 color, out float3 result", "result = color;") + "}");
  EXPECT_EQ(explained(kOne, "sfg_PixelOutput", "'sfg_PixelOutput' : is odd"),
            R"(error generated:23: `sfg_PixelOutput`: is odd
note generated:23:8: the compiler says "'sfg_PixelOutput' : is odd" of the line `struct sfg_PixelOutput`
)");
}

TEST_F(CompileExplanationTest, TellsMessagesWithoutAPlaceAtTheDocument) {
  writeLibrary("{" + fragment("tint", "float3 color, out float3 result", "result = color;") + "}");
  EXPECT_EQ(explained(kOne, "", "the disk is on fire"),
            "error graph.json: the shader does not compile: the disk is on fire\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
