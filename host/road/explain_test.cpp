// Mistakes in shader code, each told at its very character.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "sfg/host/compile.h"
#include "sfg/host/job.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// Lines are separated by `|`.
struct Mistake {
  const char* predefine;
  const char* body;
  const char* told;  ///< "LINE:COLUMN: TEXT"
};

std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + "\"";
}

std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line, '|');) lines.push_back(line);
  return lines;
}

constexpr const char* kGraph = R"({ "outputs": [ { "name": "color", "type": "float3", "node": "bad" } ],
  "nodes": [ { "name": "bad", "fragment": "broken" } ] })";

class ExplainTest : public testing::Test {
protected:
  ExplainTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_explain_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~ExplainTest() override { std::filesystem::remove_all(folder_); }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
  }

  /// All that is told, without the folder; "compiles" when nothing is wrong.
  std::string told(const std::string& graph = kGraph, NameStyle names = NameStyle::readable) const {
    Job job(LibrarySet::load({{folder_}, {folder_}}), Document::fromText(graph, "graph.json"));
    job.collapse();
    const Shader shader = job.assemble(ShaderStage::pixel, names);
    try {
      compileToSpirv(shader);
    } catch (const CompileError& error) {
      std::string text;
      for (const Diagnostic& diagnostic : job.explain(shader, error)) {
        std::string place = diagnostic.place();
        const std::string folder = folder_.string() + "/";
        if (place.starts_with(folder)) place.erase(0, folder.size());
        text += place + (diagnostic.severity == Severity::error ? ": error: " : ": note: ") +
                diagnostic.text + "\n";
      }
      return text;
    }
    return "compiles";
  }

  std::filesystem::path folder_;
};

/// The fragment of all mistakes: lines of its body are in line 5 and behind.
std::string library(const Mistake& mistake) {
  std::string text = "{ \"broken\": { \"language\": [\"dx11\"], \"uniforms\": [ { \"name\": \"gain\", "
                     "\"type\": \"float\" } ],\n"
                     "  \"predefine\": [";
  const std::vector<std::string> predefine = split(mistake.predefine);
  for (std::size_t i = 0; i < predefine.size(); ++i) text += (i == 0 ? "" : ",\n") + quoted(predefine[i]);
  text += "],\n  \"implementation\": [\n"
          "    \"void broken(float3 color, float2 uv, float s, out float3 result)\", \"{\",\n";
  for (const std::string& line : split(mistake.body)) text += "    " + quoted(line) + ",\n";
  return text + "    \"}\" ] } }\n";
}

constexpr Mistake kMistakes[] = {
    // clang-format off
    {"", "  result = color|  result *= 2;",
     "5:22: missing `;` behind `color`"},
    {"", "  result = colour;",
     "5:17: `colour` is not declared; did you mean `color`?"},
    {"float helper(float a, float3 b) { return a * b.x; }", "  result = helper(uv, color);",
     "5:17: `helper` takes no such arguments: (float2, float3) given, (float, float3) expected"},
    {"float helper(float a, float3 b) { return a * b.x; }", "  result = helpr(s, color);",
     "5:17: `helpr` is no function that is declared here; did you mean `helper`?"},
    {"", "  result = (color * 2;",
     "5:17: `(` is not closed"},
    {"", "  result = color * 2);",
     "5:26: `)` closes nothing"},
    {"", "  if (s > 1) {|    result = color;",
     "5:19: `{` is not closed"},
    {"", "  result = color; }",
     "6:6: `}` closes nothing"},
    {"", "  result = uv.xyz;",
     "5:20: `.xyz` names components that `uv` of type `float2` does not have"},
    {"", "  result = color.xyq;",
     "5:23: `.xyq` names components that `color` of type `float3` does not have"},
    {"", "  gain = 2;|  result = color;",
     "5:8: `gain` is a uniform: it cannot be assigned"},
    {"", "  float3 x = uv;|  result = x;",
     "5:15: a value of type `float2` does not fit into `float3`"},
    {"", "  result = float3(uv);",
     "5:17: `float3` needs more components than it is given"},
    {"", "  float s = 1;|  float s = 2;",
     "5:14: `s` is declared twice"},
    {"", "  result = color * ;",
     "5:25: an expression is missing in front of `;`"},
    {"", "  result = uv;",
     "5:8: a value of type `float2` does not fit `result` of type `float3`"},
    {"", "  const float k = 1;|  k = 2;",
     "6:8: `k` is a constant: it cannot be assigned"},
    {"float shape(float x) { x * 2; }", "  result = shape(s);",
     "2:24: the function `shape` has an end without `return`"},
    {"float3 shape(float x) { return float2(x, x); }", "  result = shape(s);",
     "2:42: the value that is returned does not fit the function's type"},
    {"", "  flaot x = 1;",
     "5:8: `flaot` is no type; did you mean `float`?"},
    {"", "  vec3 x = color;",
     "5:8: `vec3` is no type; did you mean `float3`?"},
    {"", "  result = mix(color, color, s);",
     "5:17: `mix` is no function that is declared here; did you mean `lerp`?"},
    {"", "  result = lerp(color, uv, s);",
     "5:8: the value does not fit `result` of type `float3`"},
    {"", "  for (int i = 0; i < 3; i++ {|  result = color; }",
     "5:12: `(` is not closed"},
    {"", "  if s > 1 result = color;",
     "5:11: unexpected `s`; expected `(` behind `if`"},
    {"", "  else result = color;",
     "5:8: unexpected `else`"},
    {"", "  result = saturate(color, 1);",
     "5:17: `saturate` takes no such arguments: (float3, int) given"},
    {"", "  result = color +* 2;",
     "5:24: an expression is missing in front of `*`"},
    {"", "  float x = 1.0.0;",
     "5:18: unexpected `1.0.0`; expected `;` behind `=`"},
    {"", "  result = color; /* open",
     "5:24: the comment is not closed"},
    {"", "  #endfi",
     "5:8: there is no directive `#endfi`"},
    {"", "  result = color @ 2;",
     "5:23: unexpected `@`"},
    {"", "  struct S { float x; };|  S v; v.y = 1;",
     "6:15: the structure has no member `y`"},
    {"", "  break;",
     "5:8: `break` stands outside of a loop"},
    {"", "  return result;",
     "5:8: a function of type `void` cannot return a value; assign its `out` parameter"},
    {"", "  result = color ? 1;",
     "5:26: unexpected `;`; expected `:` behind `1`"},
    {"float shape(float x) { return x; }|float shape(float x) { return 2 * x; }", "  result = shape(s);",
     "3:8: the function `shape` is defined twice"},
    {"", "  float out = 2;",
     "5:14: `out` is a reserved word; it cannot be a name"},
    {"", "  float 2x = 2;",
     "5:14: unexpected `2x`; expected `;` behind `float`"},
    {"", "  result = color.x.y;",
     "5:25: `.y` names components that the value does not have"},
    {"", "  while (s) result = color",
     "5:32: missing `;` behind `color`"},
    {"", "  result = color|    * gains;",
     "6:12: `gains` is not declared; did you mean `gain`?"},
    {"", "  result = color[5];",
     "5:23: the index `5` is out of range"},
    {"", "  result = color * \"a\";",
     "5:23: the operands of `*` do not fit each other"},
    {"", "  float x|  x = 2;",
     "5:15: missing `;` behind `x`"},
    {"", "  float3 c = color|  result = c;",
     "5:24: missing `;` behind `color`"},
    {"", "  color.x = 1|  result = color;",
     "5:19: missing `;` behind `1`"},
    {"", "  result = sfg_isConnected(color) ? colr : color;",
     "5:42: `colr` is not declared; did you mean `color`?"},
    {"", "  float3 t = s > 0.5 ? color : uv;",
     "5:15: a value of type `float2` does not fit into `float3`"},
    {"", "  result = color * foo.x;",
     "5:25: `foo` is not declared"},
    {"", "  result = dot(color);",
     "5:17: `dot` takes no such arguments: (float3) given"},
    {"", "  int i = 08;",
     "5:16: octal literal digit too large"},
    {"float shape(float x);", "  result = shape(s);",
     "2:24: the function `shape` is declared, but has no body"},
    {"", "  result = gain3;",
     "5:17: `gain3` is not declared; did you mean `gain`?"},
    {"", "  result = normalise(color);",
     "5:17: `normalise` is no function that is declared here; did you mean `normalize`?"},
    {"", "  result += texture(s);",
     "5:18: an expression is missing in front of `texture`"},
    {"", "  {|   result = color;",
     "5:8: `{` is not closed"},
    {"", "  result = color|  if (s > 1) result = 1;",
     "5:22: missing `;` behind `color`"},
    {"", "  return",
     "5:14: missing `;` behind `return`"},
    {"", "#if 1",
     "5:6: a conditional is not closed by `#endif`"},
    // clang-format on
};

TEST_F(ExplainTest, TellsEachMistakeAtItsCharacter) {
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  for (const Mistake& mistake : kMistakes) {
    write("lib.fraglib", library(mistake));
    for (const NameStyle names : {NameStyle::readable, NameStyle::generated}) {
      const std::string all = told(kGraph, names);
      const std::string first = all.substr(0, all.find('\n'));
      const std::string expected = mistake.told;
      const std::size_t place = expected.find(": ");
      EXPECT_EQ(first, "lib.fraglib:" + expected.substr(0, place) + ": error" + expected.substr(place))
          << mistake.predefine << "\n"
          << mistake.body;
      EXPECT_EQ(all.find(": error: ", first.size()), std::string::npos) << all;
    }
  }
}

TEST_F(ExplainTest, NamesTheNodesAndTheGeneratedLine) {
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  write("lib.fraglib", library({"", "  result = colour;", ""}));
  EXPECT_EQ(told(),
            "lib.fraglib:5:17: error: `colour` is not declared; did you mean `color`?\n"
            "graph.json:2:14: note: node `bad` uses the fragment `broken`\n"
            "generated:17:11: note: the compiler says \"'colour' : unknown variable\" of the line `result = "
            "colour;`\n");
}

TEST_F(ExplainTest, CountsThroughEscapesAndTabs) {
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  write("lib.fraglib", "{ \"broken\": { \"language\": [\"dx11\"], \"implementation\": [\n"
                       "\"void broken(float3 color, out float3 result)\", \"{\",\n"
                       "\"\\tresult /* \\u00e4 \xC3\xA4 \\ud83d\\ude00 \\\" */ =\\tcolour;\", \"}\" ] } }");
  EXPECT_EQ(told().substr(0, 68), "lib.fraglib:3:45: error: `colour` is not declared; did you mean `col");
}

TEST_F(ExplainTest, TellsMistakesOfIncludeFilesInTheirLines) {
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  write("other.h", "float other(float x) { return x; }\n");
  write("bad.h", "// first\n#include \"other.h\"\nfloat bad(float x)\n{\n  return othre(x);\n}\n");
  write("lib.fraglib",
        "{ \"broken\": { \"language\": [\"dx11\"], \"includes\": [\"bad.h\"], \"implementation\": [\n"
        "\"void broken(float3 color, out float3 result)\", \"{\", \"result = bad(1);\", \"}\" ] } }");
  const std::string all = told();
  EXPECT_EQ(all.substr(0, all.find('\n')),
            "bad.h:5:10: error: `othre` is no function that is declared here; did you mean `other`?");
  write("bad.h", "float bad(float x)\n{\n  return (x;\n}\n");
  const std::string open = told();
  EXPECT_EQ(open.substr(0, open.find('\n')), "bad.h:3:10: error: `(` is not closed");
}

TEST_F(ExplainTest, TellsMistakesOfExpressionsInsideCalls) {
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  write("lib.fraglib",
        "{ \"broken\": { \"language\": [\"dx11\"], \"implementation\": [\n"
        "\"void broken(float a, float b, out float3 result)\", \"{\", \"result = a + b;\", \"}\" ] },\n"
        "\"twice\": { \"language\": [\"dx11\"], \"mode\": \"inline\",\n"
        "  \"implementation\": [\"{{a}} * too + {{a}}\"] },\n"
        "\"half\": { \"language\": [\"dx11\"], \"mode\": \"inline\",\n"
        "  \"implementation\": [\"{{x}} * 0.5\"] } }");
  const std::string all = told(R"({ "outputs": [ { "name": "color", "type": "float3", "node": "bad" } ],
    "nodes": [ { "name": "bad", "fragment": "broken", "inputs": { "b": { "node": "in" } } },
      { "name": "in", "fragment": "twice", "inputs": { "a": { "node": "deep" } }, "interface": {
          "inputs": [ { "name": "a", "type": "float" } ], "outputs": [ { "name": "r", "type": "float" } ] } },
      { "name": "deep", "fragment": "half", "inputs": { "x": { "value": 2 } }, "interface": {
          "inputs": [ { "name": "x", "type": "float" } ], "outputs": [ { "name": "r", "type": "float" } ] } }
    ] })");
  EXPECT_EQ(all.substr(0, all.find('\n')), "lib.fraglib:4:31: error: `too` is not declared") << all;
}

TEST_F(ExplainTest, TellsWrongArgumentsAtTheNode) {
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  write("lib.fraglib",
        "{ \"broken\": { \"language\": [\"dx11\"], \"implementation\": [\n"
        "\"void broken(float3 color, out float3 result)\", \"{\", \"result = color;\", \"}\" ] },\n"
        "\"flat\": { \"language\": [\"dx11\"], \"implementation\": [\n"
        "\"void flat(out float2 result)\", \"{\", \"result = float2(1, 1);\", \"}\" ] } }");
  const std::string all = told(R"({ "outputs": [ { "name": "color", "type": "float3", "node": "bad" } ],
  "nodes": [ { "name": "bad", "fragment": "broken", "inputs": { "color": { "node": "f" } } },
    { "name": "f", "fragment": "flat" } ] })");
  EXPECT_EQ(
      all.substr(0, all.find("generated")),
      "graph.json:2:14: error: `broken1` takes no such arguments: (float2, float3) given, (float3, float3) "
      "expected\n"
      "lib.fraglib:1:13: note: the fragment `broken` is here\n");
}

TEST_F(ExplainTest, MapsOutliveTheJobAndTheFiles) {
  write("lib.fraglib", library({"", "  result = color;", ""}));
  std::optional<SourceMap> map;
  std::size_t line = 1;
  {
    Job job(LibrarySet::load({{folder_}, {folder_}}), Document::fromText(kGraph, "graph.json"));
    job.collapse();
    const std::string text = job.assemble().text;
    const std::size_t at = text.find("result = color");
    line += static_cast<std::size_t>(
        std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    map.emplace(job.mapSources());
  }
  write("lib.fraglib", "{}");
  const SourcePlace place = map->find(line, 11);
  EXPECT_EQ(place.kind, SourcePlace::Kind::implementation);
  EXPECT_EQ(place.place(), (folder_ / "lib.fraglib").string() + ":5:17");
  EXPECT_TRUE(place.isExact);
  EXPECT_EQ(place.token, "color");
  EXPECT_EQ(place.fragment, "broken");
  ASSERT_EQ(place.users.size(), 1u);
  EXPECT_EQ(place.users[0].name, "bad");
  EXPECT_EQ(map->find(0, 0).kind, SourcePlace::Kind::unknown);
  EXPECT_EQ(map->find(100000, 1).kind, SourcePlace::Kind::unknown);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
