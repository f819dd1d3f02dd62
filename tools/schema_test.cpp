// `sfg schema`: what the schemas of a real validator accept and refuse.

#include <filesystem>
#include <string>
#include <vector>

#include "sfg/host/reflect.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

/// Says of each file whether the schema accepts it.
constexpr const char* kValidate = R"py(import json, sys
import jsonschema
schema = json.load(open(sys.argv[1]))
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
for name in sys.argv[2:]:
    document = json.load(open(name))
    print("accepted" if validator.is_valid(document) else "refused")
)py";

class SchemaTest : public CommandTest {
protected:
  void SetUp() override {
    if (std::system("/usr/bin/python3 -c 'import jsonschema' >/dev/null 2>&1") != 0)
      GTEST_SKIP() << "the package python3-jsonschema is not installed";
    write("validate.py", kValidate);
    for (const char* kind : {"library", "graph", "environment", "manifest"}) {
      const CommandRun made = run(std::string("schema ") + kind + " -o " + kind + ".json");
      ASSERT_EQ(made.status, 0) << made.err;
    }
  }

  /// The answers, a line each.
  std::string validate(const std::string& kind, const std::vector<std::string>& files) const {
    std::string command = "cd '" + path(".") + "' && /usr/bin/python3 validate.py " + kind + ".json";
    for (const std::string& file : files) command += " '" + file + "'";
    EXPECT_EQ(std::system((command + " >answers 2>errors").c_str()), 0) << read("errors");
    return read("answers");
  }
  /// The answer for one text.
  std::string answer(const std::string& kind, const std::string& json) const {
    write("document.json", json);
    return validate(kind, {"document.json"});
  }

  static std::vector<std::string> filesIn(const std::string& folder, const std::string& extension) {
    std::vector<std::string> files;
    for (const auto& file : std::filesystem::directory_iterator(repository(folder))) {
      if (file.path().extension() == extension) files.push_back(file.path().string());
    }
    return files;
  }
  static std::string accepted(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += "accepted\n";
    return text;
  }
};

TEST_F(SchemaTest, AcceptsTheStandardLibraryAndTheExamples) {
  std::vector<std::string> libraries = filesIn("library", ".fraglib");
  libraries.push_back(repository("examples/first/fragments/first.fraglib"));
  ASSERT_GT(libraries.size(), 10u);
  EXPECT_EQ(validate("library", libraries), accepted(libraries.size()));
  std::vector<std::string> graphs = filesIn("examples/materials", ".json");
  graphs.push_back(repository("examples/first/graph.json"));
  ASSERT_GT(graphs.size(), 10u);
  EXPECT_EQ(validate("graph", graphs), accepted(graphs.size()));
  const std::vector<std::string> environments = filesIn("examples/environments", ".json");
  ASSERT_GT(environments.size(), 3u);
  EXPECT_EQ(validate("environment", environments), accepted(environments.size()));
}

TEST_F(SchemaTest, RefusesMistypedKeysOfGraphs) {
  const auto node = [](const std::string& members) {
    return R"({ "nodes": [ { "name": "n", "fragment": "f")" + members + " } ] }";
  };
  EXPECT_EQ(answer("graph", node("")), "accepted\n");
  EXPECT_EQ(answer("graph", node(R"(, "//": 1, "inputs": { "a": { "value": 1 }, "//b": 2 })")), "accepted\n");
  EXPECT_EQ(answer("graph", node(R"(, "input": {})")), "refused\n");
  EXPECT_EQ(answer("graph", node(R"(, "inputs": { "a": { "valeu": 1 } })")), "refused\n");
  EXPECT_EQ(answer("graph", node(R"(, "inputs": { "a": { "value": 1, "constant": 1 } })")), "refused\n");
  EXPECT_EQ(answer("graph", node(R"(, "inputs": { "a": { "output": "r", "value": 1 } })")), "refused\n");
  EXPECT_EQ(answer("graph", R"({ "nodes": [ { "name": "n" } ] })"), "refused\n");
  EXPECT_EQ(answer("graph", R"({ "postproces": [] })"), "refused\n");
  EXPECT_EQ(answer("graph", R"({ "inputs": [ { "name": "a", "type": "vec3" } ] })"), "refused\n");
  EXPECT_EQ(answer("graph", R"({ "inputs": [ { "name": "a", "type": "struct" } ] })"), "refused\n");
  EXPECT_EQ(answer("graph", R"({ "inputs": [ { "name": "a", "type": "struct", "struct": "S" } ] })"),
            "accepted\n");
}

TEST_F(SchemaTest, RefusesMistypedKeysOfEnvironments) {
  EXPECT_EQ(answer("environment", R"({ "lights": [ { "fragment": "f" } ], "output": "o" })"), "accepted\n");
  EXPECT_EQ(answer("environment", R"({ "ligths": [] })"), "refused\n");
  EXPECT_EQ(answer("environment", R"({ "lights": [ { "fragmnet": "f" } ] })"), "refused\n");
}

TEST_F(SchemaTest, RefusesMistypedKeysAndWordsOfManifests) {
  const auto shaders = [](const std::string& members) {
    return R"({ "libraries": ["l"], "shaders": [ { "graphs": ["g"])" + members + " } ] }";
  };
  EXPECT_EQ(answer("manifest", shaders(R"(, "targets": ["spirv", "glsl330"], "surfaceLods": [1, 2.5],
    "constants": [ { "name": "c", "values": { "a.b": [1, 2] } } ])")),
            "accepted\n");
  EXPECT_EQ(answer("manifest", shaders(R"(, "target": ["spirv"])")), "refused\n");
  EXPECT_EQ(answer("manifest", shaders(R"(, "targets": ["spriv"])")), "refused\n");
  EXPECT_EQ(answer("manifest", shaders(R"(, "surfaceLods": ["high"])")), "refused\n");
  EXPECT_EQ(answer("manifest", shaders(R"(, "constants": [ { "values": {} } ])")), "refused\n");
  EXPECT_EQ(answer("manifest", R"({ "libraries": ["l"] })"), "refused\n");
}

TEST_F(SchemaTest, RefusesMistypedKeysOfLibraries) {
  const auto fragment = [](const std::string& members) {
    return R"({ "$schema": "library.json", "// later": 1, "f": { "language": ["dx11"])" + members + " } }";
  };
  EXPECT_EQ(answer("library", fragment(R"(, "implementation": [], "lod": "50", "mode": "inline")")),
            "accepted\n");
  EXPECT_EQ(answer("library", fragment(R"(, "implementatoin": [])")), "refused\n");
  EXPECT_EQ(answer("library", fragment("")), "refused\n");
  EXPECT_EQ(answer("library", fragment(R"(, "implementation": [], "include": [])")), "refused\n");
  EXPECT_EQ(answer("library", fragment(R"(, "implementation": [], "uniforms": [ { "defualt": 1 } ])")),
            "refused\n");
  EXPECT_EQ(
      answer(
          "library",
          fragment(R"(, "implementation": [], "ports": { "a": "text", "b": { "min": 0, "max": [1, 1] } })")),
      "accepted\n");
  EXPECT_EQ(answer("library", fragment(R"(, "implementation": [], "ports": { "b": { "mim": 0 } })")),
            "refused\n");
  EXPECT_EQ(
      answer("library", R"({ "f": { "profiles": [ { "language": ["dx11"], "implementation": [] } ] } })"),
      "accepted\n");
  EXPECT_EQ(answer("library", R"({ "f": { "profiles": [ { "language": ["dx11"] } ] } })"), "refused\n");
}

class SchemaCommandTest : public CommandTest {};

TEST_F(SchemaCommandTest, KnowsFiveDocuments) {
  const CommandRun near = run("schema libary");
  EXPECT_EQ(near.err, "sfg: error: DOCUMENT: `libary` is none of `library`, `graph`, `environment`, "
                      "`manifest`, `reflection`; did you mean `library`? [wrong-usage]\ntry `sfg --help`, or "
                      "`sfg COMMAND --help`\n");
  EXPECT_EQ(near.status, 2);
  EXPECT_EQ(run("schema").status, 2);
  EXPECT_EQ(run("schema graph").out.substr(0, 2), "{\n");
  EXPECT_EQ(run("schema reflection").out, host::interfaceSchemaJson());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
