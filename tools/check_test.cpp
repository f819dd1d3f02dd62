// `sfg check`: its options, formats and exit statuses.

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "sfg/host/version.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

constexpr const char* kRight =
    R"json({"right": {"language": ["dx11"], "implementation": ["void right1(float a, out float result)", "{ result = a; }"]}}
)json";
constexpr const char* kOdd =
    R"json({"odd": {"language": ["dx11"], "description": "", "description": "two",
  "implementation": ["void odd1(float a, out float result)", "{ result = a; }"]}}
)json";
constexpr const char* kWrong =
    R"json({"wrong": {"language": ["dx11"], "implementation": [
  "void wrong1(float a, out float result)",
  "{",
  "  result = a * b;",
  "}"]}}
)json";

class CheckTest : public CommandTest {
protected:
  void SetUp() override {
    if (!host::hasCompilers()) GTEST_SKIP() << "the command has no compilers";
  }
};

TEST_F(CheckTest, StandardLibraryAndExamplesAreClean) {
  const CommandRun checked =
      run("check '" + repository("library") + "' '" + repository("examples") + "' --strict");
  EXPECT_EQ(checked.status, 0) << checked.err;
  EXPECT_EQ(checked.err, "");
  EXPECT_NE(checked.out.find(" graphs, 7 environments: 0 errors, 0 warnings\n"), std::string::npos)
      << checked.out;
}

TEST_F(CheckTest, EveryNumberOfJobsFindsTheSame) {
  write("lib/wrong.fraglib", kWrong);
  write("lib/odd.fraglib", kOdd);
  write("graph.json", R"json({"nodse": []})json");
  const CommandRun one = run("check . --jobs 1");
  const CommandRun four = run("check . --jobs 4");
  EXPECT_EQ(one.status, 1);
  EXPECT_EQ(four.status, 1);
  EXPECT_NE(one.err, "");
  EXPECT_EQ(one.err, four.err);
  EXPECT_EQ(one.out, four.out);
}

/// The front end does not survive the unclosed bracket of a table, a name that two things have, nor a name
/// that nothing has behind a question mark.
TEST_F(CheckTest, OutlivesCompilersThatCrash) {
  write("lib/wrong.fraglib", kWrong);
  write("lib/crash.fraglib", R"json({"open": {"language": ["dx11"],
  "predefine": ["static const float kTable[3"],
  "implementation": ["void open1(float a, out float result)", "{ result = a; }"]},
"twice": {"language": ["dx11"],
  "predefine": ["float3 x;", "float4 x;"],
  "implementation": ["void twice1(float a, out float result)", "{ result = a; }"]},
"choice": {"language": ["dx11"],
  "implementation": ["void choice1(float a, out float result)", "{ result = a > 0 ? aa : 1; }"]}}
)json");
  const CommandRun checked = run("check lib");
  EXPECT_EQ(checked.status, 1) << checked.err;
  EXPECT_NE(checked.err.find("lib/crash.fraglib:2:43: error: `[` is not closed"), std::string::npos)
      << checked.err;
  EXPECT_NE(checked.err.find("lib/crash.fraglib:6:23: error: the compiler crashes"), std::string::npos)
      << checked.err;
  EXPECT_NE(checked.err.find("lib/crash.fraglib:8:85: error: `aa` is not declared"), std::string::npos)
      << checked.err;
  EXPECT_NE(checked.err.find("lib/wrong.fraglib:4:"), std::string::npos) << checked.err;
}

TEST_F(CheckTest, ErrorIsStatusOne) {
  write("lib/wrong.fraglib", kWrong);
  const CommandRun checked = run("check lib");
  EXPECT_EQ(checked.status, 1);
  EXPECT_EQ(checked.err,
            "lib/wrong.fraglib:4:19: error: `b` is not declared [compile-error]\n"
            "lib/wrong.fraglib:4:19: note: the compiler says \"'b' : unknown variable\" of the line "
            "`result = a * b;` [code-origin]\n");
  EXPECT_EQ(checked.out, "1 profile of 1 fragment, 0 graphs, 0 environments: 1 error, 0 warnings\n");
}

TEST_F(CheckTest, WarningIsStatusOneUnderStrictOnly) {
  write("odd.fraglib", kOdd);
  const CommandRun lax = run("check odd.fraglib");
  EXPECT_EQ(lax.status, 0);
  EXPECT_NE(lax.err.find("[repeated-key]"), std::string::npos) << lax.err;
  EXPECT_EQ(lax.out, "1 profile of 1 fragment, 0 graphs, 0 environments: 0 errors, 1 warning\n");
  EXPECT_EQ(run("check odd.fraglib --strict").status, 1);
}

TEST_F(CheckTest, WrongUsageIsStatusTwo) {
  write("right.fraglib", kRight);
  for (const char* const arguments :
       {"check", "check none", "check right.fraglib none.json", "check right.fraglib -L none",
        "check right.fraglib --format xml", "check right.fraglib --jobs 0",
        "check right.fraglib --language none", "check right.fraglib --format json -o right.fraglib",
        "check right.fraglib --tool lightlop"}) {
    const CommandRun checked = run(arguments);
    EXPECT_EQ(checked.status, 2) << arguments << "\n" << checked.err;
    EXPECT_NE(checked.err, "") << arguments;
  }
}

TEST_F(CheckTest, OnlyTheNamedFileIsChecked) {
  write("lib/right.fraglib", kRight);
  write("lib/wrong.fraglib", kWrong);
  EXPECT_EQ(run("check lib/right.fraglib").status, 0);
  EXPECT_EQ(run("check lib/wrong.fraglib").status, 1);
}

TEST_F(CheckTest, GraphsUseTheLibrariesOfPathsAndOptions) {
  write("lib/right.fraglib", kRight);
  write("graph.json",
        R"json({"outputs": [{"name": "x", "type": "float", "node": "n"}],
 "nodes": [{"name": "n", "fragment": "right", "inputs": {"a": {"value": 1}}}]})json");
  EXPECT_EQ(run("check graph.json --no-standard-library").status, 1);
  EXPECT_EQ(run("check graph.json -L lib").status, 0);
  EXPECT_EQ(run("check graph.json lib").status, 0);
  EXPECT_EQ(run("check lib -L lib/../lib graph.json").err, "");
}

TEST_F(CheckTest, EnvironmentOfAnOptionIsRead) {
  write("lib/right.fraglib", kRight);
  write("graph.json",
        R"json({"outputs": [{"name": "x", "type": "float", "node": "n"}],
 "nodes": [{"name": "n", "fragment": "right", "inputs": {"a": {"value": 1}}}]})json");
  write("scene.json", R"json({"lights": [{"fragment": "none"}]})json");
  const CommandRun checked = run("check graph.json -L lib --environment scene.json");
  EXPECT_EQ(checked.status, 1);
  EXPECT_NE(checked.err.find("scene.json:1:26: error: unknown fragment `none`"), std::string::npos)
      << checked.err;
}

TEST_F(CheckTest, WhatIsNoFileIsTold) {
  write("lib/right.fraglib", kRight);
  ASSERT_EQ(mkfifo(path("lib/pipe.fraglib").c_str(), 0600), 0);
  ASSERT_EQ(mkfifo(path("lib/pipe.json").c_str(), 0600), 0);
  std::filesystem::create_symlink("nowhere", path("lib/link.fraglib"));
  const CommandRun checked = run("check lib");
  EXPECT_EQ(checked.status, 1);
  for (const char* const name : {"lib/pipe.fraglib", "lib/pipe.json", "lib/link.fraglib"})
    EXPECT_NE(checked.err.find(name), std::string::npos) << name << "\n" << checked.err;
}

TEST_F(CheckTest, JsonGoesToAFile) {
  write("wrong.fraglib", kWrong);
  const CommandRun checked = run("check wrong.fraglib --format json -o found.json");
  EXPECT_EQ(checked.status, 1);
  EXPECT_EQ(checked.out, "");
  EXPECT_EQ(checked.err, "");
  EXPECT_NE(read("found.json").find("\"errors\": 1,"), std::string::npos) << read("found.json");
}

TEST_F(CheckTest, NoProgressButOnATerminal) {
  write("right.fraglib", kRight);
  EXPECT_EQ(run("check right.fraglib").err, "");
}

TEST_F(CheckTest, FullDiagnosticsShowTheLine) {
  write("wrong.fraglib", kWrong);
  const CommandRun checked = run("check wrong.fraglib --diagnostics full");
  EXPECT_NE(checked.err.find("\"  result = a * b;\""), std::string::npos) << checked.err;
}

/// The parts of the SARIF schema that concern what is written here.
constexpr const char* kSarifSchema = R"py(import json, sys
import jsonschema
message = {"type": "object", "required": ["text"], "properties": {"text": {"type": "string"}}}
region = {"type": "object", "additionalProperties": False, "properties": {
    "startLine": {"type": "integer", "minimum": 1}, "startColumn": {"type": "integer", "minimum": 1}}}
location = {"type": "object", "additionalProperties": False, "properties": {
    "message": message,
    "physicalLocation": {"type": "object", "additionalProperties": False, "required": ["artifactLocation"],
        "properties": {"artifactLocation": {"type": "object", "properties": {
            "uri": {"type": "string", "format": "uri-reference"}}}, "region": region}}}}
result = {"type": "object", "additionalProperties": False, "required": ["message"], "properties": {
    "ruleId": {"type": "string"}, "ruleIndex": {"type": "integer", "minimum": -1},
    "level": {"enum": ["none", "note", "warning", "error"]}, "message": message,
    "locations": {"type": "array", "items": location},
    "relatedLocations": {"type": "array", "items": location, "uniqueItems": True}}}
rule = {"type": "object", "required": ["id"], "properties": {"id": {"type": "string"}, "shortDescription": message}}
driver = {"type": "object", "required": ["name"], "properties": {
    "name": {"type": "string"}, "rules": {"type": "array", "uniqueItems": True, "items": rule}}}
run = {"type": "object", "required": ["tool"], "additionalProperties": False, "properties": {
    "tool": {"type": "object", "required": ["driver"], "properties": {"driver": driver}},
    "columnKind": {"enum": ["utf16CodeUnits", "unicodeCodePoints"]},
    "results": {"type": "array", "items": result}}}
schema = {"type": "object", "required": ["version", "runs"], "properties": {
    "version": {"const": "2.1.0"}, "runs": {"type": "array", "items": run}}}
log = json.load(open(sys.argv[1]))
jsonschema.validate(log, schema)
rules = [rule["id"] for rule in log["runs"][0]["tool"]["driver"]["rules"]]
for result in log["runs"][0]["results"]:
    assert rules[result["ruleIndex"]] == result["ruleId"]
print(len(log["runs"][0]["results"]), "results")
)py";

TEST_F(CheckTest, SarifIsOfTheStandardsShape) {
  if (std::system("/usr/bin/python3 -c 'import jsonschema' >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "the package python3-jsonschema is not installed";
  write("lib/wrong.fraglib", kWrong);
  write("lib/odd.fraglib", kOdd);
  write("validate.py", kSarifSchema);
  EXPECT_EQ(run("check lib --format sarif -o found.sarif").status, 1);
  const std::string command =
      "cd '" + path(".") + "' && /usr/bin/python3 validate.py found.sarif >answers 2>errors";
  EXPECT_EQ(std::system(command.c_str()), 0) << read("errors");
  EXPECT_EQ(read("answers"), "2 results\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
