#include "host/job/called_expressions.h"
#include "tests/support/job_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ostream>

namespace TolmSDK::Graphics::sfg::host {
namespace {

namespace fs = std::filesystem;

// "ask" fragments call `f` as a function; "half" is an expression, "wave" a function.
constexpr const char* kLibrary = R"json({
  "half": { "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} * 0.5"] },
  "wave": { "language": ["dx11"], "implementation": ["void wave(float a, out float result)", "{", "result = a;", "}"] },
  "either": { "profiles": [
    { "language": ["dx11"], "lod": 100, "implementation": ["void either(float a, out float result)", "{", "result = a;", "}"] },
    { "language": ["dx11"], "lod": 10, "mode": "inline", "implementation": ["{{a}} * 0.5"] } ] },
  "litHalf": { "profiles": [
    { "language": ["dx11"], "implementation": ["void litHalf(float a, out float result)", "{", "result = a;", "}"] },
    { "name": "Lamp", "language": ["dx11"], "mode": "inline", "implementation": ["{{a}} * 0.5"] } ] },
  "ask": { "language": ["dx11"], "implementation": [
    "void ask(float g, float f, out float result)", "{", "sfg_shader(f, result, result);", "result += g;", "}" ] },
  "askEarly": { "language": ["dx11"], "predefine": ["float early() { float r; sfg_shader(f, result, r); return r; }"],
    "implementation": ["void askEarly(float g, float f, out float result)", "{", "result = g;", "}"] },
  "askInComment": { "language": ["dx11"], "implementation": [
    "void askInComment(float g, float f, out float result)", "{", "// sfg_shader(f, result, result);", "result = g;", "}" ] },
  "askInBlockComment": { "language": ["dx11"], "predefine": ["/* sfg_shader(f, result, r); */ float one() { return 1.0; }"],
    "implementation": ["void askInBlockComment(float g, float f, out float result)", "{", "/* sfg_shader(f, result, result); */", "}"] },
  "askWithComment": { "language": ["dx11"], "implementation": [
    "void askWithComment(float g, float f, out float result)", "{", "sfg_shader(/* the field */ f, result, result);", "}" ] },
  "askCoarse": { "profiles": [
    { "language": ["dx11"], "lod": 100, "implementation": ["void askCoarse(float g, float f, out float result)", "{", "result = f;", "}"] },
    { "language": ["dx11"], "lod": 10, "implementation": [
      "void askCoarse(float g, float f, out float result)", "{", "sfg_shader(f, result, result);", "}" ] } ] },
  "askLit": { "profiles": [
    { "language": ["dx11"], "implementation": ["void askLit(float g, float f, out float result)", "{", "result = f;", "}"] },
    { "name": "Lamp", "language": ["dx11"], "implementation": [
      "void askLit(float g, float f, out float result)", "{", "sfg_shader(f, result, result);", "}" ] } ] },
  "askUnlit": { "profiles": [
    { "language": ["dx11"], "implementation": [
      "void askUnlit(float g, float f, out float result)", "{", "sfg_shader(f, result, result);", "}" ] },
    { "name": "Lamp", "language": ["dx11"], "implementation": ["void askUnlit(float g, float f, out float result)", "{", "result = f;", "}"] } ] },
  "askMsl": { "mode": "metaSL", "language": ["dx11"], "implementation": [
    "void askMsl(float g, float f, out float result)", "{", "sfg_shader(f, result, result);", "}" ] },
  "askInline": { "mode": "inline", "language": ["dx11"], "implementation": ["{{g}} + sfg_shader({{f}}, a, 1.0)"] },
  "askOther": { "profiles": [ { "name": "Neon", "language": ["dx11"], "implementation": [
    "void askOther(float g, float f, out float result)", "{", "sfg_shader(f, result, result);", "}" ] } ] },
  "otherHalf": { "profiles": [
    { "name": "Neon", "language": ["dx11"], "mode": "inline", "implementation": ["{{a}} * 0.5"] } ] },
  "lamp": { "language": ["dx11"], "implementation": ["void lamp(out float light)", "{", "light = 1;", "}"] }
})json";

/// Places in a graph of SOURCE feeding both inputs of CONSUMER.
constexpr const char* kGraph = R"({ "outputs": [ { "name": "x", "type": "float", "node": "user" } ],
  "nodes": [
    { "name": "user", "fragment": "CONSUMER", "interface": PORTS, "inputs": {
      "g": { "node": "source" },
      "f": { "node": "source" } } },
    { "name": "source", "fragment": "SOURCE", "interface": {
      "inputs": [ { "name": "a", "type": "float" } ], "outputs": [ { "name": "r", "type": "float" } ] } } ] })";
constexpr const char* kPorts =
    R"({ "inputs": [ { "name": "g", "type": "float" }, { "name": "f", "type": "float" } ],
    "outputs": [ { "name": "result", "type": "float" } ] })";

constexpr const char* kLamp = R"({ "lights": [ { "fragment": "lamp", "profile": "Lamp" } ] })";
constexpr const char* kTwoProfiles = R"({ "lights": [ { "fragment": "lamp", "profile": "Lamp" },
  { "fragment": "lamp", "profile": "Neon" } ] })";

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  return text.replace(text.find(what), what.size(), by);
}

std::string graphOf(const std::string& consumer, const std::string& source) {
  return replaced(replaced(replaced(kGraph, "CONSUMER", consumer), "SOURCE", source), "PORTS", kPorts);
}

class CalledExpressionsTest : public testing::Test {
protected:
  CalledExpressionsTest() {
    std::string pattern = (fs::temp_directory_path() / "sfg_called_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    std::ofstream(folder_ / "test.fraglib") << kLibrary;
    settings_.libraryFolders = {folder_.string()};
    settings_.graphFile = (folder_ / "graph.json").string();
  }
  ~CalledExpressionsTest() override { fs::remove_all(folder_); }

  void useLights(const std::string& environment) {
    settings_.tool = CollapseTool::lightLoop;
    settings_.environmentFile = (folder_ / "scene.json").string();
    std::ofstream(settings_.environmentFile) << environment;
  }

  /// "node input" of the wires found, one a line.
  std::string find(const std::string& graph) {
    std::ofstream(settings_.graphFile) << graph;
    const CollapseJob job = makeJob(settings_);
    std::string found;
    for (const Diagnostic& wire : findCalledExpressions(job)) {
      found += replaced(wire.place(), settings_.graphFile + ":", "") + ": " + wire.text + "\n";
    }
    return found;
  }

  JobFiles settings_;
  fs::path folder_;
};

std::string refusalOf(const std::string& place, const std::string& source) {
  return place +
         ": input `f` of node `user` calls its source through `sfg_shader`, but node `source` (fragment `" +
         source + "`) is an inline expression, which cannot be called; wire a function fragment\n";
}

/// The place of the input `f` in a graph of graphOf().
constexpr const char* kPlace = "6:12";

struct Case {
  const char* name;
  const char* consumer;
  const char* source;
  bool refused;
  float lod = 100.0f;
  const char* environment = nullptr;  ///< with it, the light loop
};

std::ostream& operator<<(std::ostream& out, const Case& c) { return out << c.name; }

class CalledExpressionsCaseTest : public CalledExpressionsTest, public testing::WithParamInterface<Case> {};

TEST_P(CalledExpressionsCaseTest, FindsTheWire) {
  const Case& c = GetParam();
  settings_.surfaceLod = c.lod;
  if (c.environment != nullptr) useLights(c.environment);
  EXPECT_EQ(find(graphOf(c.consumer, c.source)), c.refused ? refusalOf(kPlace, c.source) : "");
}

const Case kCases[] = {
    {"CallInBody", "ask", "half", true},
    {"CallInPredefinesOnly", "askEarly", "half", true},
    {"CallInComment", "askInComment", "half", false},
    {"CallInBlockComment", "askInBlockComment", "half", false},
    {"CommentInCallHidesTheInput", "askWithComment", "half", false},
    {"CallInMetaSL", "askMsl", "half", true},
    {"FunctionSource", "ask", "wave", false},
    {"NoCall", "wave", "half", false},
    {"SourceInlineAtLowerLevel", "ask", "either", true, 10.0f},
    {"SourceFunctionAtHigherLevel", "ask", "either", false, 100.0f},
    {"ConsumerCallsAtLowerLevel", "askCoarse", "half", true, 10.0f},
    {"ConsumerCallsNotAtHigherLevel", "askCoarse", "half", false, 100.0f},
    {"SourceInlineForTheLight", "ask", "litHalf", true, 100.0f, kLamp},
    {"SourceInlineForOneOfTwoLights", "ask", "litHalf", true, 100.0f, kTwoProfiles},
    {"ConsumerCallsForTheLight", "askLit", "half", true, 100.0f, kLamp},
    {"ConsumerCallsForOneOfTwoLights", "askLit", "half", true, 100.0f, kTwoProfiles},
    {"BothForTheLight", "askLit", "litHalf", true, 100.0f, kLamp},
    {"ConsumerForOneLightAndSourceForTheOther", "askLit", "otherHalf", false, 100.0f, kTwoProfiles},
    {"NameThatNeitherOffers", "ask", "half", true, 100.0f, kLamp},
    {"ConsumerCallsUnderDefaultOnly", "askUnlit", "half", false, 100.0f, kLamp},
    {"ConsumerCallsUnderDefaultForOneOfTwoLights", "askUnlit", "half", true, 100.0f, kTwoProfiles},
    {"NeitherNameIsLeftForTheDefaults", "askUnlit", "otherHalf", true, 100.0f, kTwoProfiles},
    {"ProfileOfNoLight", "askLit", "half", false, 100.0f,
     R"({ "lights": [ { "fragment": "lamp", "profile": "Neon" } ] })"},
    {"NoLights", "askLit", "half", false, 100.0f, "{}"},
    {"DefaultWithoutLights", "ask", "half", true, 100.0f, "{}"},
    {"LightThatAsksForDefault", "ask", "half", true, 100.0f, R"({ "lights": [ { "fragment": "lamp" } ] })"},
    {"ConsumerWithoutProfile", "askOther", "half", false},
    {"SourceWithoutProfile", "ask", "otherHalf", false},
    {"UnknownConsumer", "nobody", "half", false},
    {"UnknownSource", "ask", "nobody", false},
};

INSTANTIATE_TEST_SUITE_P(All, CalledExpressionsCaseTest, testing::ValuesIn(kCases),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(CalledExpressionsTest, DefaultToolAsksForDefaultWhateverTheLights) {
  useLights(kLamp);
  settings_.tool = CollapseTool::standard;
  EXPECT_EQ(find(graphOf("askLit", "half")), "");
  EXPECT_EQ(find(graphOf("ask", "half")), refusalOf(kPlace, "half"));
}

TEST_F(CalledExpressionsTest, FindsCallsInsideExpressions) {
  std::string graph = graphOf("askInline", "half");
  EXPECT_EQ(find(graph), refusalOf(kPlace, "half"));
}

TEST_F(CalledExpressionsTest, PassesOverNodesThatNoOutputReaches) {
  const std::string graph = replaced(graphOf("ask", "half"), R"("node": "user")", R"("node": "source")");
  EXPECT_EQ(find(graph), "");
}

TEST_F(CalledExpressionsTest, PassesOverPortsBeyondTheParameters) {
  const char* const ports =
      R"({ "inputs": [ { "name": "g", "type": "float" }, { "name": "e", "type": "float" },
    { "name": "f", "type": "float" } ], "outputs": [ { "name": "result", "type": "float" } ] })";
  const std::string graph =
      replaced(replaced(replaced(kGraph, "CONSUMER", "ask"), "SOURCE", "half"), "PORTS", ports);
  EXPECT_EQ(find(graph), "");
}

TEST_F(CalledExpressionsTest, NamesThePortOfTheNodeNotTheParameter) {
  const char* const ports =
      R"({ "inputs": [ { "name": "f", "type": "float" }, { "name": "g", "type": "float" } ],
    "outputs": [ { "name": "result", "type": "float" } ] })";
  const std::string graph =
      replaced(replaced(replaced(kGraph, "CONSUMER", "ask"), "SOURCE", "half"), "PORTS", ports);
  EXPECT_EQ(find(graph), replaced(refusalOf("5:12", "half"), "`f`", "`g`"));
}

TEST_F(CalledExpressionsTest, FindsEachWireOnceInTheOrderOfNodes) {
  useLights(kTwoProfiles);
  EXPECT_EQ(
      find(
          R"({ "outputs": [ { "name": "x", "type": "float", "node": "a" }, { "name": "y", "type": "float", "node": "a" } ],
  "nodes": [
    { "name": "a", "fragment": "ask", "inputs": { "f": { "node": "h" }, "g": { "node": "b" } } },
    { "name": "b", "fragment": "ask", "inputs": { "f": { "node": "h" }, "g": { "node": "h" } } },
    { "name": "h", "fragment": "half", "interface": { "outputs": [ { "name": "r", "type": "float" } ] } } ] })"),
      "3:56: input `f` of node `a` calls its source through `sfg_shader`, but node `h` (fragment `half`) is "
      "an "
      "inline expression, which cannot be called; wire a function fragment\n"
      "4:56: input `f` of node `b` calls its source through `sfg_shader`, but node `h` (fragment `half`) is "
      "an "
      "inline expression, which cannot be called; wire a function fragment\n");
}

TEST_F(CalledExpressionsTest, EndsOnALoop) {
  EXPECT_EQ(find(R"({ "outputs": [ { "name": "x", "type": "float", "node": "user" } ], "nodes": [
    { "name": "user", "fragment": "ask", "inputs": { "f": { "node": "source" } } },
    { "name": "source", "fragment": "half", "interface": { "inputs": [ { "name": "a", "type": "float" } ],
      "outputs": [ { "name": "r", "type": "float" } ] }, "inputs": { "a": { "node": "user" } } } ] })"),
            refusalOf("2:59", "half"));
}

TEST_F(CalledExpressionsTest, RefusesTheJobBeforeItIsCollapsed) {
  std::ofstream(settings_.graphFile) << graphOf("ask", "half");
  for (const CollapseTool tool : {CollapseTool::standard, CollapseTool::lightLoop}) {
    settings_.tool = tool;
    CollapseJob job = makeJob(settings_);
    try {
      job.run();
      ADD_FAILURE() << "nothing was thrown";
    } catch (const CalledExpressionError& error) {
      EXPECT_EQ(error.what() + std::string("\n"), settings_.graphFile + ":" + refusalOf(kPlace, "half"));
      EXPECT_EQ(error.wires().size(), 1u);
    }
    EXPECT_EQ(job.result(), nullptr);
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
