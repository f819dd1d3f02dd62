#include "host/diagnostics/code_origin.h"

#include <algorithm>

#include "host/test_job_fixture.h"
#include "tolmsdk/unicode.h"

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
    return textOf(OriginFinder(*job_, assembled_).find(static_cast<std::size_t>(line)));
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
  EXPECT_TRUE(OriginFinder(*job_, assembled_).find(0).empty());
  EXPECT_TRUE(OriginFinder(*job_, assembled_).find(100000).empty());
}

constexpr const char* kLibrary = R"json({
  "curve": { "language": ["dx11"],
    "predefine": ["float shape(float x) { return x; }"],
    "uniforms": [ { "name": "tint.color", "type": "float" }, { "name": "image", "type": "sampler2D" } ],
    "implementation": ["void curve(float a, float gain, out float result)", "{", "result = shape(a) * gain * tint.color;", "}"] },
  "shape": { "language": ["dx11"],
    "predefine": ["float shape(float x) { return 2 * x; }"],
    "implementation": ["void shape(float a, out float result)", "{", "result = a;", "}"] }
})json";

constexpr const char* kGraph = R"({ "outputs": [ { "name": "x", "type": "float", "node": "last" } ],
  "nodes": [ { "name": "first", "fragment": "curve" },
             { "name": "last", "fragment": "curve", "inputs": { "a": { "node": "first" } } },
             { "name": "unused", "fragment": "shape" } ] })";

/// The origins of lines that a test writes, for the graph above.
class OriginFinderTest : public JobFixture {
protected:
  OriginFinderTest() {
    write("test.fraglib", kLibrary);
    job_ = collapsed(kGraph);
  }

  void add(ShaderSection::Kind kind, const WString& name, const WString& text) {
    WString& shader = assembled_.shader.getCompleteShader();
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), L'\n'));
    assembled_.sections.push_back({kind, name, nextLine_, nextLine_ + lines - 1});
    shader += text;
    nextLine_ += lines;
  }

  /// "place: text" of each note.
  std::string find(std::size_t line) const {
    std::string text;
    for (const Diagnostic& note : OriginFinder(*job_, assembled_).find(line)) {
      const std::string place = note.place();
      const bool isInFolder = place.starts_with(folder_.string());
      text += (isInFolder ? place.substr(folder_.string().size() + 1) : place) + ": " + note.text + "\n";
    }
    return text;
  }

  /// What is said of a name in a line of the function, without the line.
  std::string findName(const WString& name) {
    add(ShaderSection::Kind::function, L"collapsed", name + L"\n");
    return find(nextLine_ - 1).substr(toUtf8(name).size() + std::string(": the line is ``\n").size());
  }

  std::unique_ptr<CollapseJob> job_;
  AssembledShader assembled_;
  std::size_t nextLine_ = 1;
};

constexpr const char* kCurve = "test.fraglib:2:12: ";
constexpr const char* kShape = "test.fraglib:6:12: ";

TEST_F(OriginFinderTest, ExplainsEachLineByItsSection) {
  write("near.h", "");
  add(ShaderSection::Kind::declarations, L"", L"// head\n\n");
  add(ShaderSection::Kind::include, L"near.h", L"float a;\n");
  add(ShaderSection::Kind::include, L"far.h", L"float b;\n");
  add(ShaderSection::Kind::symbol, L"shape2", L"float shape2(float x)\n  { return tintcolorn0; }\n");
  add(ShaderSection::Kind::function, L"collapsed", L"\tcurve1(result_n0_01, other);\n}");
  EXPECT_EQ(find(0), "");
  EXPECT_EQ(find(1), ": the line is `// head`\n");
  EXPECT_EQ(find(2), ": the line is ``\n");
  EXPECT_EQ(find(3), ": the line is `float a;`\nnear.h: in this include file\n");
  EXPECT_EQ(find(4), ": the line is `float b;`\n: in the include file `far.h`\n");
  EXPECT_EQ(find(6), ": the line is `{ return tintcolorn0; }`\n" + std::string(kCurve) +
                         "helper `shape2` is of fragment `curve`, node `first`\n");
  EXPECT_EQ(find(7), ": the line is `curve1(result_n0_01, other);`\n" + std::string(kCurve) +
                         "function `curve1` is of fragment `curve`, node `first`\n" + kCurve +
                         "value `result_n0_01` is of fragment `curve`, node `first`\n");
  EXPECT_EQ(find(9), "");
}

TEST_F(OriginFinderTest, TellsUsesOfOneFragmentApartByTheirInstances) {
  EXPECT_EQ(findName(L"result_n1_01"),
            kCurve + std::string("value `result_n1_01` is of fragment `curve`, node `last`\n"));
  EXPECT_EQ(findName(L"accumulate_n1_0"),
            kCurve + std::string("value `accumulate_n1_0` is of fragment `curve`, node `last`\n"));
  EXPECT_EQ(findName(L"tint_colorn1"),
            kCurve + std::string("uniform `tint_colorn1` is of fragment `curve`, node `last`\n"));
  EXPECT_EQ(findName(L"sampler_imagen0"),
            kCurve + std::string("uniform `sampler_imagen0` is of fragment `curve`, node `first`\n"));
  EXPECT_EQ(findName(L"gainn1"),
            kCurve + std::string("uniform `gainn1` is of fragment `curve`, node `last`\n"));
  EXPECT_EQ(findName(L"an2"), kShape + std::string("uniform `an2` is of fragment `shape`, node `unused`\n"));
}

TEST_F(OriginFinderTest, KnowsRenamedUniformsByTheirGeneratedNames) {
  assembled_.generatedNames = {
      {L"last_gain", L"gainn1"}, {L"shape2", L"gainn0"}, {L"last_image", L"imagen1"}, {L"mix_2", L"mix"}};
  EXPECT_EQ(findName(L"last_gain"),
            kCurve + std::string("uniform `last_gain` is of fragment `curve`, node `last`\n"));
  EXPECT_EQ(findName(L"shape2"),
            kCurve + std::string("uniform `shape2` is of fragment `curve`, node `first`\n"));
  EXPECT_EQ(findName(L"sampler_last_image"),
            kCurve + std::string("uniform `sampler_last_image` is of fragment `curve`, node `last`\n"));
  // A uniform of the graph itself.
  EXPECT_EQ(findName(L"mix_2"), "");
}

TEST_F(OriginFinderTest, TheLongestPartOfANameThatIsASymbolsCounts) {
  EXPECT_EQ(findName(L"shape"),
            kCurve + std::string("helper `shape` is of fragment `curve`, node `first`\n"));
  EXPECT_EQ(findName(L"shape2"),
            kCurve + std::string("helper `shape2` is of fragment `curve`, node `first`\n"));
  EXPECT_EQ(findName(L"shape1"),
            kShape + std::string("function `shape1` is of fragment `shape`, node `unused`\n"));
  EXPECT_EQ(findName(L"shape12"),
            kShape + std::string("function `shape12` is of fragment `shape`, node `unused`\n"));
}

TEST_F(OriginFinderTest, SaysNothingOfOtherNames) {
  EXPECT_EQ(findName(L"result_n10_0 result_n1 tint.colorn1 gainn3 sampler_n1 n0 shap curv"), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
