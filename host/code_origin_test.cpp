#include "host/code_origin.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

namespace fs = std::filesystem;

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
class OriginFinderTest : public testing::Test {
protected:
  OriginFinderTest() {
    std::string pattern = (fs::temp_directory_path() / "sfg_origin_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    std::ofstream(folder_ / "test.fraglib") << kLibrary;
    std::ofstream(folder_ / "graph.json") << kGraph;
    CollapseSettings settings;
    settings.libraryFolders = {folder_.string()};
    settings.includeFolders = {folder_.string()};
    settings.graphFile = (folder_ / "graph.json").string();
    job_ = std::make_unique<CollapseJob>(settings);
    job_->run();
  }
  ~OriginFinderTest() override { fs::remove_all(folder_); }

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
    for (const OriginNote& note : OriginFinder(*job_, assembled_).find(line)) {
      const bool isInFolder = note.place.starts_with(folder_.string());
      text += (isInFolder ? note.place.substr(folder_.string().size() + 1) : note.place) + ": " + note.text +
              "\n";
    }
    return text;
  }

  /// What is said of a name in a line of the function, without the line.
  std::string findName(const WString& name) {
    add(ShaderSection::Kind::function, L"collapsed", name + L"\n");
    return find(nextLine_ - 1).substr(toUtf8(name).size() + std::string(": the line is ``\n").size());
  }

  fs::path folder_;
  std::unique_ptr<CollapseJob> job_;
  AssembledShader assembled_;
  std::size_t nextLine_ = 1;
};

constexpr const char* kCurve = "test.fraglib:2:12: ";
constexpr const char* kShape = "test.fraglib:6:12: ";

TEST_F(OriginFinderTest, ExplainsEachLineByItsSection) {
  std::ofstream(folder_ / "near.h") << "";
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
