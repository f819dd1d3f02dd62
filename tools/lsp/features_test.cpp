// What is answered about places of documents.

#include "tools/lsp/session_fixture.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

class FeaturesTest : public SessionTest {
protected:
  /// The graph with the one text in place of the other, open, with the place of "|" chosen.
  void place(const std::string& from, const std::string& to) {
    open("graph.json", text_ = marked(replaced(kGraph, from, to)));
  }
  void placeInLibrary(const std::string& from, const std::string& to) {
    open("fragments/first.fraglib", text_ = marked(replaced(kLibrary, from, to)));
  }
  std::string completed(const std::string& name = "graph.json") {
    return labels(ask("textDocument/completion", at(name)));
  }
  std::string hovered(const std::string& name = "graph.json") {
    const Json answer = ask("textDocument/hover", at(name));
    return answer.is_null() ? "-" : answer.at("contents").at("value").get<std::string>();
  }
  /// "FILE RANGE".
  std::string defined(const std::string& name = "graph.json") {
    const Json answer = ask("textDocument/definition", at(name));
    if (answer.is_null()) return "-";
    return std::filesystem::path(*pathOf(stringOf(answer, "uri"))).filename().string() + " " +
           shownRange(answer.at("range"));
  }
  Json renamed(const std::string& name) {
    Json params = at("graph.json");
    params["newName"] = name;
    return ask("textDocument/rename", params);
  }

  std::string text_;
};

TEST_F(FeaturesTest, CompletesKeysRequiredOnesFirst) {
  initialize();
  place("{ \"name\": \"tiles\", \"fragment\": \"checker\", ", "{ |");
  const Json items = ask("textDocument/completion", at("graph.json"));
  EXPECT_EQ(labels(items), "name fragment interface");
  EXPECT_EQ(items[0].dump(),
            R"({"documentation":{"kind":"markdown","value":"Is the name by which wires find the node."},)"
            R"("filterText":"\"name\"","insertTextFormat":1,"kind":10,"label":"name","sortText":"0000000",)"
            R"("textEdit":{"newText":"\"name\": ","range":{"end":{"character":6,"line":4},)"
            R"("start":{"character":6,"line":4}}}})");
  EXPECT_EQ(items[2].at("sortText"), "1000002");
}

TEST_F(FeaturesTest, CompletesKeysWithTheirValuesWhereTheEditorTakesSnippets) {
  initialize({{"textDocument", {{"completion", {{"completionItem", {{"snippetSupport", true}}}}}}}});
  place("{ \"name\": \"tiles\", \"fragment\": \"checker\", ", "{ |");
  EXPECT_EQ(ask("textDocument/completion", at("graph.json"))[0].at("textEdit").at("newText"),
            "\"name\": \"$1\",");
  place("\"a\": { \"value\": [0.1, 0.1, 0.1] }, ", "|");
  EXPECT_EQ(ask("textDocument/completion", at("graph.json"))[0].at("textEdit").at("newText"),
            "\"a\": { $1 },");
  place(", \"inputs\": { \"uv\": { \"graphInput\": \"uv\" } }", ", \"inputs\": { | }");
  EXPECT_EQ(ask("textDocument/completion", at("graph.json"))[0].at("textEdit").at("newText"),
            "\"uv\": { \"value\": ${1:[0.5, 0.5]} }");
}

TEST_F(FeaturesTest, ReplacesTheLiteralThatIsTyped) {
  initialize();
  place("\"fragment\": \"checker\"", "\"fragment\": \"ch|eck\"");
  const Json items = ask("textDocument/completion", at("graph.json"));
  EXPECT_EQ(labels(items), "blend checker");
  EXPECT_EQ(items[1].at("textEdit").at("newText"), "\"checker\"");
  EXPECT_EQ(shownRange(items[1].at("textEdit").at("range")), "5:36-5:43");
  EXPECT_EQ(items[1].at("detail"), "(float2 uv) -> float result");
  place("\"fragment\": \"checker\"", "\"frag|\": \"checker\"");
  EXPECT_EQ(ask("textDocument/completion", at("graph.json"))[0].at("textEdit").at("newText"), "\"fragment\"");
}

TEST_F(FeaturesTest, CompletesNames) {
  initialize();
  place("\"a\": { \"value\": [0.1, 0.1, 0.1] }, ", "\"|\": ");
  EXPECT_EQ(completed(), "a");
  place("\"node\": \"tiles\"", "\"node\": \"|\"");
  EXPECT_EQ(completed(), "tiles");
  place("\"node\": \"board\"", "\"node\": \"|\"");
  EXPECT_EQ(completed(), "tiles board");
  place("\"node\": \"tiles\", \"output\": \"result\"", "\"node\": \"tiles\", \"output\": |");
  EXPECT_EQ(completed(), "result");
  place("\"graphInput\": \"uv\"", "\"graphInput\": \"|\"");
  EXPECT_EQ(completed(), "uv");
  place("\"nodes\": [", "\"preprocess\": [\"|\"], \"nodes\": [");
  EXPECT_EQ(completed(), "blend checker");
}

TEST_F(FeaturesTest, CompletesTypesAndWords) {
  initialize();
  place("\"type\": \"float2\"", "\"type\": \"|\"");
  EXPECT_EQ(completed().substr(0, 19), "bool int int2 ivec2");
  place("\"type\": \"float2\"", "\"type\": \"float2\", \"kind\": |");
  EXPECT_EQ(completed(), "angle color direction distance factor normal position uv");
  place("\"type\": \"float2\"", "\"type\": \"float2\", \"constant\": |");
  EXPECT_EQ(completed(), "true false");
  place("\"type\": \"float2\"", "\"type\": \"float2\", \"label\": \"|\"");
  EXPECT_EQ(completed(), "");
}

TEST_F(FeaturesTest, CompletesInLibrariesAndEnvironments) {
  initialize();
  const std::string library = "fragments/first.fraglib";
  placeInLibrary("\"language\": [\"dx11\"],\n    \"includes\"", "|\n    \"includes\"");
  EXPECT_EQ(completed(library),
            "description source uniforms interface profiles name language lod mode predefine stateVariables");
  placeInLibrary("\"tools.h\"", "\"|\"");
  EXPECT_EQ(completed(library), "tools.h");
  placeInLibrary("\"dx11\"", "\"|\"");
  EXPECT_EQ(completed(library), "dx11");
  placeInLibrary("{ \"amount\": {", "{ | \"amount\": {");
  EXPECT_EQ(completed(library), "a b result");
  open("scene.json", marked(R"({ "lights": [ { "fragment": "|" } ] })"));
  EXPECT_EQ(completed("scene.json"), "blend checker");
  open("scene.json", marked(R"({ "lights": [ { "profile": "|" } ] })"));
  EXPECT_EQ(completed("scene.json"), "default");
}

TEST_F(FeaturesTest, CompletesInHalfDocuments) {
  initialize();
  open("graph.json", marked(R"({ "nodes": [ { "name": "x", "fragment": "blend", "inputs": { "a": { "no|)"));
  EXPECT_EQ(completed(), "node output graphInput value constant");
  open("graph.json", marked(R"({ "nodes": [ { "name": "x", "fragment": "|)"));
  EXPECT_EQ(completed(), "blend checker");
  open("graph.json", marked("{ | "));
  EXPECT_EQ(completed(), "description inputs outputs uniforms nodes preprocess postprocess $schema");
  open("graph.json", marked("|"));
  EXPECT_EQ(completed(), "");
}

TEST_F(FeaturesTest, DescribesFragments) {
  initialize();
  place("\"checker\"", "\"che|cker\"");
  EXPECT_EQ(hovered(), "**checker**\n\nSquares of 0 and 1.\n\nInputs\n\n- `float2 uv` = [0.5, 0.5], uv\n\n"
                       "Outputs\n\n- `float result`: which square");
  EXPECT_EQ(shownRange(ask("textDocument/hover", at("graph.json")).at("range")), "5:36-5:45");
}

TEST_F(FeaturesTest, DescribesPortsNodesAndKeys) {
  initialize();
  place("\"amount\"", "\"am|ount\"");
  EXPECT_EQ(hovered(), "`float amount` = 0.25, 0.0 to 1.0: how much of b");
  place("\"node\": \"tiles\"", "\"node\": \"ti|les\"");
  EXPECT_EQ(hovered().substr(0, 27), "node `tiles`: **checker**\n\n");
  place("\"node\": \"tiles\", \"output\": \"result\"", "\"node\": \"tiles\", \"output\": \"res|ult\"");
  EXPECT_EQ(hovered(), "`float result`: which square");
  place("\"graphInput\": \"uv\"", "\"graphInput\": \"u|v\"");
  EXPECT_EQ(hovered(), "`float2 uv`");
  place("\"nodes\"", "\"no|des\"");
  EXPECT_EQ(hovered(), "**nodes** Are the uses of fragments.");
  place("0.8, 0.6", "0.|8, 0.6");
  EXPECT_EQ(hovered(), "-");
}

TEST_F(FeaturesTest, FindsDefinitions) {
  initialize();
  place("\"fragment\": \"blend\"", "\"fragment\": \"bl|end\"");
  EXPECT_EQ(defined(), "first.fraglib 8:4-8:9");
  place("\"name\": \"board\"", "\"name\": \"bo|ard\"");
  EXPECT_EQ(defined(), "first.fraglib 8:4-8:9");
  place("\"node\": \"tiles\"", "\"node\": \"ti|les\"");
  EXPECT_EQ(defined(), "graph.json 5:16-5:21");
  place("\"graphInput\": \"uv\"", "\"graphInput\": \"u|v\"");
  EXPECT_EQ(defined(), "graph.json 2:26-2:28");
  place("\"amount\"", "\"am|ount\"");
  EXPECT_EQ(defined(), "first.fraglib 9:17-9:23");
  place("\"nodes\"", "\"no|des\"");
  EXPECT_EQ(defined(), "-");
  placeInLibrary("\"tools.h\"", "\"too|ls.h\"");
  EXPECT_EQ(defined("fragments/first.fraglib"), "tools.h 1:1-1:1");
}

TEST_F(FeaturesTest, ShowsWhatIsNotSaved) {
  initialize();
  open("fragments/first.fraglib", replaced(kLibrary, "\"checker\": {", "\n\"waves\": {"));
  place("\"checker\"", "\"wa|ves\"");
  EXPECT_EQ(defined(), "first.fraglib 3:2-3:7");
  EXPECT_EQ(hovered().substr(0, 9), "**waves**");
}

TEST_F(FeaturesTest, ListsSymbols) {
  initialize({{"textDocument", {{"documentSymbol", {{"hierarchicalDocumentSymbolSupport", true}}}}}});
  open("graph.json", kGraph);
  const Json symbols = ask("textDocument/documentSymbol", at("graph.json"));
  std::string shown;
  for (const Json& one : symbols)
    shown += stringOf(one, "name") + " " + one.at("kind").dump() + " " + stringOf(one, "detail") + " " +
             shownRange(one.at("range")) + " " + shownRange(one.at("selectionRange")) + "\n";
  EXPECT_EQ(shown, "uv 13 float2 2:15-2:49 2:26-2:28\n"
                   "color 8 float3 3:16-3:90 3:27-3:32\n"
                   "tiles 19 checker 5:5-5:91 5:16-5:21\n"
                   "board 19 blend 6:5-8:72 6:16-6:21\n");
  open("fragments/first.fraglib", kLibrary);
  const Json fragments = ask("textDocument/documentSymbol", at("fragments/first.fraglib"));
  EXPECT_EQ(fragments.size(), 2u);
  EXPECT_EQ(fragments[0].at("detail"), "Squares of 0 and 1.");
  EXPECT_EQ(fragments[0].at("children").size(), 2u);
}

TEST_F(FeaturesTest, ListsSymbolsForEditorsWithoutTrees) {
  initialize();
  open("scene.json", R"({ "lights": [ { "name": "sun", "fragment": "x" }, {} ] })");
  EXPECT_EQ(ask("textDocument/documentSymbol", at("scene.json")).dump(),
            R"([{"kind":24,"location":{"range":{"end":{"character":48,"line":0},)"
            R"("start":{"character":14,"line":0}},"uri":")" +
                uri("scene.json") +
                R"("},"name":"sun"},)"
                R"({"kind":24,"location":{"range":{"end":{"character":52,"line":0},)"
                R"("start":{"character":50,"line":0}},"uri":")" +
                uri("scene.json") + R"("},"name":"light"}])");
}

TEST_F(FeaturesTest, RenamesANodeWithAllWires) {
  initialize();
  place("\"node\": \"tiles\"", "\"node\": \"ti|les\"");
  EXPECT_EQ(
      ask("textDocument/prepareRename", at("graph.json")).dump(),
      R"({"placeholder":"tiles","range":{"end":{"character":44,"line":7},"start":{"character":39,"line":7}}})");
  EXPECT_EQ(edited("graph.json", text_, renamed("squ\"ares")),
            replaced(replaced(kGraph, "\"tiles\"", R"("squ\"ares")"), "\"tiles\"", R"("squ\"ares")"));
  place("\"graphInput\": \"uv\"", "\"graphInput\": \"u|v\"");
  EXPECT_EQ(edited("graph.json", text_, renamed("st")),
            replaced(replaced(kGraph, "\"name\": \"uv\"", "\"name\": \"st\""), "\"graphInput\": \"uv\"",
                     "\"graphInput\": \"st\""));
}

TEST_F(FeaturesTest, RefusesNamesThatCannotBe) {
  initialize();
  place("\"node\": \"tiles\"", "\"node\": \"ti|les\"");
  EXPECT_EQ(renamed("board"), (Json{{"error", -32602}}));
  EXPECT_EQ(renamed(""), (Json{{"error", -32602}}));
  place("\"fragment\": \"checker\"", "\"fragment\": \"ch|ecker\"");
  EXPECT_EQ(renamed("x"), (Json{{"error", -32602}}));
  EXPECT_EQ(ask("textDocument/prepareRename", at("graph.json")), Json());
}

TEST_F(FeaturesTest, EditsAVersionWhereTheEditorTakesThat) {
  initialize({{"workspace", {{"workspaceEdit", {{"documentChanges", true}}}}}});
  place("\"node\": \"tiles\"", "\"node\": \"ti|les\"");
  const Json change = renamed("x").at("documentChanges").at(0);
  EXPECT_EQ(change.at("textDocument").dump(), R"({"uri":")" + uri("graph.json") + R"(","version":1})");
  EXPECT_EQ(change.at("edits").size(), 2u);
}

TEST_F(FeaturesTest, MendsWhatWasMeant) {
  initialize();
  const std::vector<std::array<std::string, 2>> mistakes = {
      {"\"checker\"", "\"chekcer\""},     {"\"node\": \"tiles\"", "\"node\": \"tiels\""},
      {"\"nodes\"", "\"noeds\""},         {"\"graphInput\": \"uv\"", "\"graphInptu\": \"uv\""},
      {"\"amount\": {", "\"amuont\": {"}, {"\"type\": \"float3\"", "\"type\": \"flaot3\""}};
  int version = 0;
  for (const auto& [right, wrong] : mistakes) {
    SCOPED_TRACE(wrong);
    const std::string text = replaced(kGraph, right, wrong);
    if (version++ == 0) {
      open("graph.json", text);
    } else {
      change("graph.json", version, Json::array({{{"text", text}}}));
    }
    check();
    Json params = {{"textDocument", {{"uri", uri("graph.json")}}}, {"context", Json::object()}};
    params["range"] = {{"start", {{"line", 0}, {"character", 0}}}, {"end", {{"line", 99}, {"character", 0}}}};
    const Json actions = ask("textDocument/codeAction", params);
    ASSERT_GE(actions.size(), 1u);
    EXPECT_EQ(actions[0].at("kind"), "quickfix");
    EXPECT_EQ(edited("graph.json", text, actions[0].at("edit")), kGraph);
    params["range"] = {{"start", {{"line", 99}, {"character", 0}}},
                       {"end", {{"line", 99}, {"character", 0}}}};
    EXPECT_EQ(ask("textDocument/codeAction", params).size(), 0u);
  }
}

TEST_F(FeaturesTest, MendsAWordInCode) {
  initialize();
  const std::string text = replaced(kLibrary, "frac(uv.x)", "farc(uv.x)");
  open("fragments/first.fraglib", text);
  check();
  Json params = {{"textDocument", {{"uri", uri("fragments/first.fraglib")}}}, {"context", Json::object()}};
  params["range"] = {{"start", {{"line", 5}, {"character", 0}}}, {"end", {{"line", 6}, {"character", 0}}}};
  const Json actions = ask("textDocument/codeAction", params);
  if (actions.empty()) GTEST_SKIP() << "built without shader compilers";
  EXPECT_EQ(actions[0].at("title"), "Change to `frac`");
  EXPECT_EQ(edited("fragments/first.fraglib", text, actions[0].at("edit")), kLibrary);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
