// A second table of mistakes: each in documents of its own, beside or without the standard library.

#include <ostream>
#include <regex>
#include <utility>
#include <vector>

#include "sfg/host/compile.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

struct WrittenMistake {
  const char* name;
  std::vector<std::pair<const char*, const char*>> files;
  const char* command;  ///< with LIBRARY for the folder of the standard library
  int status;
  const char* told;
};

std::ostream& operator<<(std::ostream& out, const WrittenMistake& mistake) { return out << mistake.name; }

std::string withReplaced(std::string text, const std::string& old, const std::string& now) {
  for (std::size_t at = text.find(old); at != std::string::npos; at = text.find(old, at + now.size()))
    text.replace(at, old.size(), now);
  return text;
}

class WrittenMistakeTest : public CommandTest, public testing::WithParamInterface<WrittenMistake> {};

TEST_P(WrittenMistakeTest, IsToldWhereItWasMade) {
  const WrittenMistake& mistake = GetParam();
  const std::string command = mistake.command;
  if (!command.starts_with("collapse") && !host::hasCompilers()) GTEST_SKIP() << "built without compilers";
  for (const auto& [file, text] : mistake.files) write(file, text);
  const std::string library = repository("library");
  const CommandRun result = run(withReplaced(command, "LIBRARY", "'" + library + "'"));
  // The lines of the shader change with the include files in front of them.
  const std::string told = std::regex_replace(result.err, std::regex("generated:[0-9]+:"), "generated:LINE:");
  EXPECT_EQ(withReplaced(told, library, "LIBRARY"), mistake.told);
  EXPECT_EQ(result.status, mistake.status);
}

const WrittenMistake kMistakes[] = {
    {"FunctionWithoutOutputs",
     {{"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f(float x)",
    "{",
    "  clip(x - y);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:5:17: error: `y` is not declared [compile-error]\n"
     "./l.fraglib:5:17: note: the compiler says \"'y' : unknown variable\" of the line `clip(x - y);` "
     "[code-origin]\n"},
    {"FunctionWithoutParameters",
     {{"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f()",
    "{",
    "  clip(y);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:5:13: error: `y` is not declared [compile-error]\n"
     "./l.fraglib:5:13: note: the compiler says \"'y' : unknown variable\" of the line `clip(y);` "
     "[code-origin]\n"},
    {"FunctionThatOnlyChangesAnInput",
     {{"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f(inout float x)",
    "{",
    "  x += y;",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:5:13: error: `y` is not declared [compile-error]\n"
     "./l.fraglib:5:13: note: the compiler says \"'y' : unknown variable\" of the line `x += y;` "
     "[code-origin]\n"},
    {"IncludeLineWithoutQuotes",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], "includes": ["a.h"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = twice(1.0);",
    "}" ] } }
)json"},
      {"a.h", R"json(#include b.h  // halves
float3 twice(float x) { return x + x; }
)json"}},
     "collapse g.json -L . -I . -o o",
     0,
     "./a.h:1:1: warning: `#include b.h` names no file: write `#include \"b.h\"` [missing-include]\n"},
    {"IncludeLineWithAngles",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], "includes": ["a.h"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = twice(1.0);",
    "}" ] } }
)json"},
      {"a.h", R"json(float3 twice(float x) { return x + x; }
  #include <b.h>
)json"}},
     "check . -I .",
     0,
     "./a.h:2:3: warning: `#include <b.h>` names no file: write `#include \"b.h\"` [missing-include]\n"},
    {"IncludeLineWithoutName",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], "includes": ["a.h"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = twice(1.0);",
    "}" ] } }
)json"},
      {"a.h", R"json(#include ""
float3 twice(float x) { return x + x; }
)json"}},
     "compile g.json -L . -I . -o o",
     0,
     "./a.h:1:1: warning: `#include` names no file [missing-include]\n"},
    {"IncludeInAComment",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], "includes": ["a.h"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = twice(1.0);",
    "}" ] } }
)json"},
      {"a.h", R"json(// #include "b.h"
float3 twice(float x) { return x + x; }
)json"},
      {"b.h", R"json(float b;
)json"}},
     "compile g.json -L . -I . -o o",
     1,
     "./a.h:1:4: error: `#include` counts in comments, too, and takes the line's end with it: what stands "
     "below becomes a part of this comment [missing-include]\n"},
    {"IncludeNamedWithAngles",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], "includes": ["<a.h>"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = 1.0;",
    "}" ] } }
)json"},
      {"a.h", R"json(float3 twice(float x) { return x + x; }
)json"}},
     "check . -I .",
     0,
     "./l.fraglib:1:45: warning: fragment `f` includes `<a.h>`, which is in no include folder; did you mean "
     "`a.h`? [missing-include]\n"},
    {"IncludeWithoutName",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], "includes": ["a.h", ""],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = twice(1.0);",
    "}" ] } }
)json"},
      {"a.h", R"json(float3 twice(float x) { return x + x; }
)json"}},
     "collapse g.json -L . -I . -o o",
     0,
     "./l.fraglib:1:52: warning: fragment `f` includes a file without a name [missing-include]\n"},
    {"IncludeInPredefine",
     {{"l.fraglib", R"json({ "f": { "language": ["dx11"], "predefine": ["#include b.h"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = 1.0;",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:47: error: `#include` cannot stand in a fragment's code; name the file in `includes` "
     "[compile-error]\n"
     "./l.fraglib:1:47: note: the compiler says \"'#include' : must be followed by a header name\" of the "
     "line `#include b.h` [code-origin]\n"},
    {"LastBraceMissing",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = 1.0;" ] } }
)json"}},
     "check .",
     1,
     "./g.json:2:41: error: node `a` uses the fragment `f`, of which no shader can be made: see "
     "./l.fraglib:4:6 [not-loaded]\n"
     "./l.fraglib:4:6: error: fragment `f`: `{` is not closed [not-loaded]\n"},
    {"LastBraceMissingInAGraph",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = 1.0;" ] } }
)json"}},
     "compile g.json -L . -o o",
     1,
     "./l.fraglib:4:6: error: fragment `f`: `{` is not closed [not-loaded]\n"
     "g.json:2:41: error: node `a` uses the fragment `f`, of which no shader can be made: see "
     "./l.fraglib:4:6 [not-loaded]\n"},
    {"LastBraceOnlyInAComment",
     {{"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = 1.0;",
    "// }" ] } }
)json"}},
     "check .",
     1,
     "./l.fraglib:4:6: error: fragment `f`: `{` is not closed [not-loaded]\n"},
    {"PrototypeAlone",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f(out float3 r);" ] } }
)json"}},
     "check .",
     1,
     "./g.json:2:41: error: node `a` uses the fragment `f`, of which no shader can be made: see "
     "./l.fraglib:3:26 [not-loaded]\n"
     "./l.fraglib:3:26: error: fragment `f`: the function has no body: `{` is missing [not-loaded]\n"},
    {"PrototypeAloneInAGraph",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f(out float3 r)" ] } }
)json"}},
     "collapse g.json -L . -o o",
     1,
     "./l.fraglib:3:25: error: fragment `f`: the function has no body: `{` is missing [not-loaded]\n"
     "g.json:2:41: error: node `a` uses the fragment `f`, of which no shader can be made: see "
     "./l.fraglib:3:25 [not-loaded]\n"},
    {"TextBehindTheFunction",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = gain;",
    "} static const float gain = 2.0;" ] } }
)json"}},
     "check .",
     1,
     "./g.json:2:41: error: node `a` uses the fragment `f`, of which no shader can be made: see "
     "./l.fraglib:6:8 [not-loaded]\n"
     "./l.fraglib:6:8: error: fragment `f`: what stands behind the function's last `}` is left out; "
     "functions and declarations beside it belong into `predefine` [not-loaded]\n"},
    {"CommentInFrontOfTheFunction",
     {{"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "// red",
    "void f(out float3 r)",
    "{",
    "  r = 1.0;",
    "}" ] } }
)json"}},
     "check .",
     1,
     "./l.fraglib:3:5: error: fragment `f`: the code must begin with `void`, without blanks or comments in "
     "front [not-loaded]\n"},
    {"IncludedFileIsNamedByAnother",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], "includes": ["a.h"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = twice(1.0);",
    "}" ] } }
)json"},
      {"a.h", R"json(#include "b.h"
float3 twice(float x) { return thrice(x); }
)json"},
      {"b.h", R"json(float thrice(float x) { return y; }
)json"}},
     "check . -I .",
     1,
     "./b.h:1:32: error: `y` is not declared [compile-error]\n"
     "./a.h:1:10: note: it is included here [code-origin]\n"
     "./l.fraglib:1:45: note: fragment `f` includes it [code-origin]\n"
     "./b.h:1:32: note: the compiler says \"'y' : unknown variable\" of the line `float thrice(float x) { "
     "return y; }` [code-origin]\n"},
    {"DefineOfNothing",
     {{"l.fraglib",
       R"json({ "f": { "language": ["dx11"], "predefine": ["// one", "#define", "// three", "// four"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = A(1.0);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:57: error: a name is missing behind `#define` [compile-error]\n"
     "./l.fraglib:1:57: note: the compiler says \"'#define' : must be followed by macro name\" of the line "
     "`void f1(` [code-origin]\n"},
    {"DefineNotClosed",
     {{"l.fraglib",
       R"json({ "f": { "language": ["dx11"], "predefine": ["// one", "#define A(x 2", "// three", "// four"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = A(1.0);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:57: error: `(` is not closed behind `#define` [compile-error]\n"
     "./l.fraglib:1:57: note: the compiler says \"'#define' : missing parenthesis\" of the line `#define A(x "
     "2` [code-origin]\n"},
    {"DirectiveMistyped",
     {{"l.fraglib",
       R"json({ "f": { "language": ["dx11"], "predefine": ["// one", "#defin A 2", "// three", "// four"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = A(1.0);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:57: error: there is no directive `#defin` [compile-error]\n"
     "./l.fraglib:1:57: note: the compiler says \"'#' : invalid directive: defin\" of the line `#defin A 2` "
     "[code-origin]\n"},
    {"JoinOfNothing",
     {{"l.fraglib",
       R"json({ "f": { "language": ["dx11"], "predefine": ["// one", "#define A(x) x##", "// three", "// four"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = A(1.0);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:57: error: `##` joins two words of a macro; one is missing [compile-error]\n"
     "./l.fraglib:1:57: note: the compiler says \"'##' : unexpected location; end of replacement list\" of "
     "the line `r = A(1.0);` [code-origin]\n"},
    {"ConditionMissing",
     {{"l.fraglib",
       R"json({ "f": { "language": ["dx11"], "predefine": ["// one", "#if", "// three", "// four"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = A(1.0);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:57: error: the condition of `#if` is missing or no number [compile-error]\n"
     "./l.fraglib:1:57: note: the compiler says \"'preprocessor evaluation' : bad expression\" of the line "
     "`void f1(` [code-origin]\n"},
    {"ElseWithoutIf",
     {{"l.fraglib",
       R"json({ "f": { "language": ["dx11"], "predefine": ["// one", "#else", "// three", "// four"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = A(1.0);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:57: error: `#else` stands behind no `#if` [compile-error]\n"
     "./l.fraglib:1:57: note: the compiler says \"'#else' : mismatched statements\" of the line `#else` "
     "[code-origin]\n"},
    {"UndefOfNothing",
     {{"l.fraglib",
       R"json({ "f": { "language": ["dx11"], "predefine": ["// one", "#undef", "// three", "// four"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = A(1.0);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:57: error: a name is missing behind `#undef` [compile-error]\n"
     "./l.fraglib:1:57: note: the compiler says \"'#undef' : must be followed by macro name\" of the line "
     "`void f1(` [code-origin]\n"},
    {"DirectiveUnknown",
     {{"l.fraglib",
       R"json({ "f": { "language": ["dx11"], "predefine": ["// one", "#version 3", "// three", "// four"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = A(1.0);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:57: error: there is no directive `#version` [compile-error]\n"
     "./l.fraglib:1:57: note: the compiler says \"'#version' : invalid preprocessor command\" of the line "
     "`#version 3` [code-origin]\n"},
    {"PlaceholderWithoutName",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} * {{}}"] } }
)json"}},
     "check .",
     1,
     "./l.fraglib:1:78: error: fragment `f`: a placeholder names an input: `{{color}}` [bad-name]\n"},
    {"PlaceholderWithABlank",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} * {{ b c }}"] } }
)json"}},
     "check .",
     1,
     "./l.fraglib:1:78: error: fragment `f`: `b c` is no name of an input [bad-name]\n"},
    {"PlaceholderNotClosed",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} * {{b} + 1.0"] } }
)json"}},
     "check .",
     1,
     "./l.fraglib:1:78: error: fragment `f`: `{{` is not closed by `}}` [not-loaded]\n"},
    {"FragmentIsNull",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": null }
)json"}},
     "check .",
     1,
     "./l.fraglib:1:8: error: fragment `f`: `fragment` must be an object, not null [wrong-kind]\n"},
    {"KindMistyped",
     {{"l.fraglib",
       R"json({ "f": { "ports": { "a": { "kind": "colr", "value": [1, 1, 1] } }, "language": ["dx11"], 
  "implementation": [
    "void f(float3 a, out float3 r)",
    "{",
    "  r = a;",
    "}" ] } }
)json"}},
     "check .",
     0,
     "./l.fraglib:1:36: warning: port `a` of fragment `f`: unknown kind `colr`; did you mean `color`? Known "
     "are `angle`, `color`, `direction`, `distance`, `factor`, `normal`, `position`, `uv` [unknown-word]\n"},
    {"SpaceMistyped",
     {{"l.fraglib",
       R"json({ "f": { "ports": { "a": { "kind": "normal", "space": "wrold" } }, "language": ["dx11"], 
  "implementation": [
    "void f(float3 a, out float3 r)",
    "{",
    "  r = a;",
    "}" ] } }
)json"}},
     "check .",
     0,
     "./l.fraglib:1:55: warning: port `a` of fragment `f`: unknown space `wrold`; did you mean `world`? "
     "Known are `object`, `tangent`, `view`, `world`, `data`, `linear`, `srgb` [unknown-word]\n"},
    {"SpaceOfAnotherProgram",
     {{"l.fraglib",
       R"json({ "f": { "ports": { "a": { "kind": "normal", "space": "eye" } }, "language": ["dx11"], 
  "implementation": [
    "void f(float3 a, out float3 r)",
    "{",
    "  r = a;",
    "}" ] } }
)json"}},
     "check .",
     0,
     "./l.fraglib:1:55: warning: port `a` of fragment `f`: unknown space `eye`; known are `object`, "
     "`tangent`, `view`, `world`, `data`, `linear`, `srgb` [unknown-word]\n"},
    {"NodeNameTwice",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" },
    { "fragment": "f", "name": "a" } ] }
)json"}},
     "collapse g.json -L . -o o",
     2,
     "g.json:3:32: error: the node name `a` is used twice [repeated-name]\n"},
    {"PortNameOfANodeTwice",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} * {{b}}"] } }
)json"},
      {"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f", "interface": { "inputs": [ { "type": "float3", "name": "a" }, { "type": "float3", "name": "a" } ],
    "outputs": [ { "name": "r", "type": "float3" } ] } } ] }
)json"}},
     "collapse g.json -L . -o o",
     2,
     "g.json:2:136: error: the port name `a` is used twice [repeated-name]\n"},
    {"GraphOutputTwice",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" },
  { "type": "float3", "name": "color", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"},
      {"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f(float3 a, out float3 r)",
    "{",
    "  r = a;",
    "}" ] } }
)json"}},
     "collapse g.json -L . -o o",
     2,
     "g.json:2:31: error: the name `color` is used twice among graph inputs and outputs [repeated-name]\n"},
    {"CommaAtTheEndOfAList",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" },
  ] }
)json"}},
     "collapse g.json -L . -o o",
     2,
     "g.json:3:3: error: expected a value behind the comma in front of this bracket, found `]` "
     "[malformed-json]\n"},
    {"CommaAtTheEndOfAnObject",
     {{"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f", } ] }
)json"}},
     "collapse g.json -L . -o o",
     2,
     "g.json:2:46: error: expected a member name behind the comma in front of this bracket, found `}` "
     "[malformed-json]\n"},
    {"CommaAtTheEndOfALibrary",
     {{"l.fraglib", R"json({ "f": { "language": ["dx11"], 
  "implementation": [
    "void f(float3 a, out float3 r)",
    "{",
    "  r = a;",
    "}" ] },
}
)json"}},
     "check .",
     1,
     "./l.fraglib:7:1: error: expected a member name behind the comma in front of this bracket, found `}` "
     "[malformed-json]\n"},
    {"ConnectedNamesNoInput",
     {{"l.fraglib", R"json({ "f": { "ports": { "a": { "value": [1, 1, 1] } }, "language": ["dx11"], 
  "implementation": [
    "void f(float3 a, out float3 r)",
    "{",
    "  r = sfg_isConnected(b) ? a : a * 2.0;",
    "}" ] } }
)json"},
      {"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"}},
     "compile g.json -L . -o o",
     0,
     "./l.fraglib:5:28: warning: fragment `f`: `sfg_isConnected` names an input, and there is none of the "
     "name `b` [unknown-port]\n"},
    {"UniformNamedAsAnOutput",
     {{"l.fraglib", R"json({ "f": { "uniforms": [ { "name": "r", "type": "float3" } ], "language": ["dx11"], 
  "implementation": [
    "void f(float3 a, out float3 r)",
    "{",
    "  r = a;",
    "}" ] } }
)json"},
      {"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"}},
     "check .",
     1,
     "./g.json:2:41: error: node `a` uses the fragment `f`, of which no shader can be made: see "
     "./l.fraglib:1:34 [not-loaded]\n"
     "./l.fraglib:1:34: error: fragment `f`: the uniform name `r` is the name of a port, too "
     "[repeated-name]\n"},
    {"UniformNamedAsAnOutputInAGraph",
     {{"l.fraglib", R"json({ "f": { "uniforms": [ { "name": "r", "type": "float3" } ], "language": ["dx11"], 
  "implementation": [
    "void f(float3 a, out float3 r)",
    "{",
    "  r = a;",
    "}" ] } }
)json"},
      {"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"}},
     "compile g.json -L . -o o",
     1,
     "./l.fraglib:1:34: error: fragment `f`: the uniform name `r` is the name of a port, too "
     "[repeated-name]\n"
     "g.json:2:41: error: node `a` uses the fragment `f`, of which no shader can be made: see "
     "./l.fraglib:1:34 [not-loaded]\n"},
    {"LightOfAnotherType",
     {{"l.fraglib", R"json({ "glow": { "name": "sfg_Light", "language": ["dx11"],
  "implementation": [
    "void glow(out float3 light)",
    "{",
    "  light = float3(1.0, 0.8, 0.5);",
    "}" ] } }
)json"},
      {"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "glow", "profile": "sfg_Light" }
  ] }
)json"},
      {"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "wall", "output": "result" } ],
  "nodes": [
    { "name": "bricks", "fragment": "brickColor", "inputs": { "uv": { "value": [0.5, 0.5] } } },
    { "name": "wall", "fragment": "lambertSurface", "inputs": { "albedo": { "node": "bricks", "output": "color" } } }
  ] }
)json"}},
     "compile g.json --tool lightloop --environment e.json -L LIBRARY -I LIBRARY -L . -o o",
     1,
     "e.json:3:5: error: light `fill` gives `light` of type `float3` in the profile `sfg_Light` of fragment "
     "`glow`, but node `wall` (fragment `lambertSurface`) reads `sfg_currentLight` of type `sfg_Light` "
     "[light-type]\n"},
    {"LightOfAnotherTypeInACollapse",
     {{"l.fraglib", R"json({ "glow": { "name": "sfg_Light", "language": ["dx11"],
  "implementation": [
    "void glow(out float3 light)",
    "{",
    "  light = float3(1.0, 0.8, 0.5);",
    "}" ] } }
)json"},
      {"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "glow", "profile": "sfg_Light" }
  ] }
)json"},
      {"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "wall", "output": "result" } ],
  "nodes": [
    { "name": "bricks", "fragment": "brickColor", "inputs": { "uv": { "value": [0.5, 0.5] } } },
    { "name": "wall", "fragment": "lambertSurface", "inputs": { "albedo": { "node": "bricks", "output": "color" } } }
  ] }
)json"}},
     "collapse g.json --format json --tool lightloop --environment e.json -L LIBRARY -I LIBRARY -L . -o o",
     0,
     "e.json:3:5: warning: light `fill` gives `light` of type `float3` in the profile `sfg_Light` of "
     "fragment `glow`, but node `wall` (fragment `lambertSurface`) reads `sfg_currentLight` of type "
     "`sfg_Light` [light-type]\n"},
    {"LightOfAnotherTypeInACheckOfTheLights",
     {{"l.fraglib", R"json({ "glow": { "name": "sfg_Light", "language": ["dx11"],
  "implementation": [
    "void glow(out float3 light)",
    "{",
    "  light = float3(1.0, 0.8, 0.5);",
    "}" ] } }
)json"},
      {"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "glow", "profile": "sfg_Light" }
  ] }
)json"}},
     "check e.json -L LIBRARY -I LIBRARY -L .",
     1,
     "e.json:3:5: error: light `fill` gives `light` of type `float3` in the profile `sfg_Light` of fragment "
     "`glow`, but a surface reads `sfg_currentLight` of type `sfg_Light` [light-type]\n"},
    {"LightThatLacksTheProfile",
     {{"l.fraglib", R"json({ "glow": { "language": ["dx11"],
  "implementation": [
    "void glow(out float3 light)",
    "{",
    "  light = float3(1.0, 0.8, 0.5);",
    "}" ] } }
)json"},
      {"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "glow", "profile": "sfg_Light" }
  ] }
)json"},
      {"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "wall", "output": "result" } ],
  "nodes": [
    { "name": "bricks", "fragment": "brickColor", "inputs": { "uv": { "value": [0.5, 0.5] } } },
    { "name": "wall", "fragment": "lambertSurface", "inputs": { "albedo": { "node": "bricks", "output": "color" } } }
  ] }
)json"}},
     "collapse g.json --tool lightloop --environment e.json -L LIBRARY -I LIBRARY -L . -o o",
     1,
     "e.json:3:5: error: light `fill` gives `light` of type `float3` in the profile `default` of fragment "
     "`glow`, but node `wall` (fragment `lambertSurface`) reads `sfg_currentLight` of type `sfg_Light` "
     "[light-type]\n"},
    {"SurfaceAsALight",
     {{"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "lambertSurface", "profile": "sfg_Light" }
  ] }
)json"},
      {"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "wall", "output": "result" } ],
  "nodes": [
    { "name": "bricks", "fragment": "brickColor", "inputs": { "uv": { "value": [0.5, 0.5] } } },
    { "name": "wall", "fragment": "lambertSurface", "inputs": { "albedo": { "node": "bricks", "output": "color" } } }
  ] }
)json"}},
     "compile g.json --tool lightloop --environment e.json -L LIBRARY -I LIBRARY -o o",
     1,
     "e.json:3:5: error: light `fill` gives `result` of type `float3` in the profile `sfg_Light` of fragment "
     "`lambertSurface`, but node `wall` (fragment `lambertSurface`) reads `sfg_currentLight` of type "
     "`sfg_Light` [light-type]\n"},
    {"LightBlockWithoutEnd",
     {{"l.fraglib", R"json({ "rim": { "mode": "metaSL", "language": ["dx11"],
  "implementation": [
    "void rim(float3 tint, out float3 result)",
    "{",
    "  result = float3(0.0, 0.0, 0.0);",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN",
    "  Light_iterator light;",
    "  TOLM_SCENE_LIGHTING(state.position, state.normal, light);",
    "  result += tint * light.msl_contribution;",
    "}" ] } }
)json"},
      {"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "pointLight", "profile": "sfg_Light" }
  ] }
)json"},
      {"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "edge", "output": "result" } ],
  "nodes": [ { "name": "edge", "fragment": "rim", "inputs": { "tint": { "value": [1, 1, 1] } } } ] }
)json"}},
     "compile g.json --tool lightloop --environment e.json -L LIBRARY -I LIBRARY -L . -o o",
     1,
     "./l.fraglib:6:8: error: fragment `rim`: `TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN` has no "
     "`TOLM_VESSOR_LIGHT_AND_SHADOW_END` behind it [compile-error]\n"
     "./l.fraglib:6:8: note: the generator says \"sfgError : light and shadow block is not closed!\" "
     "[generator]\n"},
    {"LightBlockWithoutEndInACheck",
     {{"l.fraglib", R"json({ "rim": { "mode": "metaSL", "language": ["dx11"],
  "implementation": [
    "void rim(float3 tint, out float3 result)",
    "{",
    "  result = float3(0.0, 0.0, 0.0);",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN",
    "  Light_iterator light;",
    "  TOLM_SCENE_LIGHTING(state.position, state.normal, light);",
    "  result += tint * light.msl_contribution;",
    "}" ] } }
)json"}},
     "check l.fraglib -L LIBRARY -I LIBRARY",
     1,
     "./l.fraglib:6:8: error: fragment `rim`: `TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN` has no "
     "`TOLM_VESSOR_LIGHT_AND_SHADOW_END` behind it [compile-error]\n"
     "./l.fraglib:6:8: note: the generator says \"sfgError : light and shadow block is not closed!\" "
     "[generator]\n"},
    {"LightBlockThatEndsFirst",
     {{"l.fraglib", R"json({ "rim": { "mode": "metaSL", "language": ["dx11"],
  "implementation": [
    "void rim(float3 tint, out float3 result)",
    "{",
    "  result = float3(0.0, 0.0, 0.0);",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_END",
    "\tTOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN",
    "  Light_iterator light;",
    "  TOLM_SCENE_LIGHTING(state.position, state.normal, light);",
    "  result += tint * light.msl_contribution;",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_END",
    "}" ] } }
)json"},
      {"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "pointLight", "profile": "sfg_Light" }
  ] }
)json"},
      {"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "edge", "output": "result" } ],
  "nodes": [ { "name": "edge", "fragment": "rim", "inputs": { "tint": { "value": [1, 1, 1] } } } ] }
)json"}},
     "compile g.json --tool lightloop --environment e.json -L LIBRARY -I LIBRARY -L . -o o",
     1,
     "./l.fraglib:6:8: error: fragment `rim`: `TOLM_VESSOR_LIGHT_AND_SHADOW_END` closes no light and shadow "
     "block [compile-error]\n"
     "./l.fraglib:6:8: note: the generator says \"sfgError : light and shadow block is not closed!\" "
     "[generator]\n"},
    {"LightBlockInsideAnother",
     {{"l.fraglib", R"json({ "rim": { "mode": "metaSL", "language": ["dx11"],
  "implementation": [
    "void rim(float3 tint, out float3 result)",
    "{",
    "  result = float3(0.0, 0.0, 0.0);",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN",
    "  Light_iterator light; TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN",
    "  TOLM_SCENE_LIGHTING(state.position, state.normal, light);",
    "  result += tint * light.msl_contribution;",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_END",
    "}" ] } }
)json"},
      {"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "pointLight", "profile": "sfg_Light" }
  ] }
)json"},
      {"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "edge", "output": "result" } ],
  "nodes": [ { "name": "edge", "fragment": "rim", "inputs": { "tint": { "value": [1, 1, 1] } } } ] }
)json"}},
     "compile g.json --tool lightloop --environment e.json -L LIBRARY -I LIBRARY -L . -o o",
     1,
     "./l.fraglib:7:30: error: fragment `rim`: `TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN` stands inside another "
     "light and shadow block, which only one light allows [compile-error]\n"
     "./l.fraglib:7:30: note: the generator says \"sfgError : light and shadow block is not closed!\" "
     "[generator]\n"},
    {"MisspeltBeginOfALightBlock",
     {{"l.fraglib", R"json({ "rim": { "mode": "metaSL", "language": ["dx11"],
  "implementation": [
    "void rim(float3 tint, out float3 result)",
    "{",
    "  result = float3(0.0, 0.0, 0.0);",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_BEGN",
    "  Light_iterator light;",
    "  TOLM_SCENE_LIGHTING(state.position, state.normal, light);",
    "  result += tint * light.msl_contribution;",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_END",
    "}" ] } }
)json"},
      {"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "pointLight", "profile": "sfg_Light" }
  ] }
)json"},
      {"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "edge", "output": "result" } ],
  "nodes": [ { "name": "edge", "fragment": "rim", "inputs": { "tint": { "value": [1, 1, 1] } } } ] }
)json"}},
     "check l.fraglib -L LIBRARY -I LIBRARY",
     1,
     "./l.fraglib:6:8: error: `TOLM_VESSOR_LIGHT_AND_SHADOW_BEGN` is no type; did you mean "
     "`TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN`? [compile-error]\n"
     "./l.fraglib:6:8: note: the compiler says \"'TOLM_VESSOR_LIGHT_AND_SHADOW_BEGN' : unknown variable\" of "
     "the line `TOLM_VESSOR_LIGHT_AND_SHADOW_BEGN` [code-origin]\n"},
    {"MisspeltSceneLighting",
     {{"l.fraglib", R"json({ "rim": { "mode": "metaSL", "language": ["dx11"],
  "implementation": [
    "void rim(float3 tint, out float3 result)",
    "{",
    "  result = float3(0.0, 0.0, 0.0);",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN",
    "  Light_iterator light;",
    "  TOLM_SCENE_LIGHTNING(state.position, state.normal, light);",
    "  result += tint * light.msl_contribution;",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_END",
    "}" ] } }
)json"},
      {"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "pointLight", "profile": "sfg_Light" }
  ] }
)json"},
      {"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "edge", "output": "result" } ],
  "nodes": [ { "name": "edge", "fragment": "rim", "inputs": { "tint": { "value": [1, 1, 1] } } } ] }
)json"}},
     "compile g.json --tool lightloop --environment e.json -L LIBRARY -I LIBRARY -L . -o o",
     1,
     "./l.fraglib:8:8: error: `TOLM_SCENE_LIGHTNING` is no function that is declared here; did you mean "
     "`TOLM_SCENE_LIGHTING`? [compile-error]\n"
     "g.json:2:14: note: node `edge` uses the fragment `rim` [code-origin]\n"
     "generated:LINE:2: note: the compiler says \"'TOLM_SCENE_LIGHTNING' : no matching overloaded function "
     "found\" of the line `TOLM_SCENE_LIGHTNING(state.position, state.normal, light);` [code-origin]\n"},
    {"LightsWithoutTheLightLoop",
     {{"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "pointLight", "profile": "sfg_Light" }
  ] }
)json"},
      {"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "wall", "output": "result" } ],
  "nodes": [
    { "name": "bricks", "fragment": "brickColor", "inputs": { "uv": { "value": [0.5, 0.5] } } },
    { "name": "wall", "fragment": "lambertSurface", "inputs": { "albedo": { "node": "bricks", "output": "color" } } }
  ] }
)json"}},
     "compile g.json --environment e.json -L LIBRARY -I LIBRARY -o o",
     0,
     "g.json:4:5: warning: node `wall` is not lit: only the light loop (`--tool lightloop`) uses the lights "
     "of the environment [lit-without-light]\n"},
    {"ShaderNamesNoInput",
     {{"l.fraglib", R"json({ "bump": { "language": ["dx11"],
  "implementation": [
    "void bump(float3 height, out float3 result)",
    "{",
    "  result = 0.0;",
    "  sfg_shader(hieght, height, result);",
    "}" ] } }
)json"},
      {"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "bump", "inputs": { "height": { "value": [1, 1, 1] } } } ] }
)json"}},
     "collapse g.json -L . -o o",
     0,
     "./l.fraglib:6:19: warning: fragment `bump`: `sfg_shader` names an input, and there is none of the name "
     "`hieght`; did you mean `height`? [unknown-port]\n"},
    {"ExpressionWithoutInterface",
     {{"l.fraglib",
       R"json({ "gain": { "mode": "inline", "language": ["dx11"], "implementation": ["{{color}} * {{amount}}"] } }
)json"},
      {"g.json", R"json({ "outputs": [ { "name": "color", "type": "float4", "node": "out" } ],
  "nodes": [
    { "name": "a", "fragment": "gain", "inputs": { "color": { "value": [1, 1, 1] } } },
    { "name": "out", "fragment": "outputColor" } ] }
)json"}},
     "compile g.json -L LIBRARY -I LIBRARY -L . -o o",
     2,
     "g.json:3:52: error: node `a` has no input `color`: its fragment `gain` is an expression, so the node "
     "needs an `interface`, with inputs for `{{color}}`, `{{amount}}` [unknown-port]\n"},
    {"LibraryAsAGraph",
     {{"l.fraglib",
       R"json({ "gain": { "mode": "inline", "language": ["dx11"], "implementation": ["{{color}} * {{amount}}"] } }
)json"}},
     "compile l.fraglib -L . -o o",
     2,
     "l.fraglib:1:1: error: this is a library of fragments, not a graph [wrong-kind]\n"},
    {"EnvironmentAsAGraph",
     {{"e.json", R"json({ "lights": [
    { "name": "key", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "pointLight", "profile": "sfg_Light" }
  ] }
)json"}},
     "compile e.json -L LIBRARY -I LIBRARY -o o",
     2,
     "e.json:1:1: error: this is an environment, not a graph [wrong-kind]\n"},
    {"GraphAsAnEnvironment",
     {{"g.json",
       R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "wall", "output": "result" } ],
  "nodes": [
    { "name": "bricks", "fragment": "brickColor", "inputs": { "uv": { "value": [0.5, 0.5] } } },
    { "name": "wall", "fragment": "lambertSurface", "inputs": { "albedo": { "node": "bricks", "output": "color" } } }
  ] }
)json"}},
     "compile g.json --tool lightloop --environment g.json -L LIBRARY -I LIBRARY -o o",
     2,
     "g.json:1:1: error: this is a graph, not an environment [wrong-kind]\n"},
    {"IncludeAndSoItsFunctionMissing",
     {{"l.fraglib", R"json({ "f": { "language": ["dx11"], "includes": ["mymath.h"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = twice(0.5);",
    "}" ] } }
)json"},
      {"g.json", R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "f" } ] }
)json"}},
     "compile g.json -L . -I . -o o",
     1,
     "./l.fraglib:1:45: error: fragment `f` includes `mymath.h`, which is in no include folder "
     "[missing-include]\n"},
    {"MacroWithAnEqualsSign",
     {{"l.fraglib", R"json({ "f": { "language": ["dx11"], "predefine": ["#define DARK = 0.5"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = float3(1.0, 1.0, 1.0) * DARK;",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:60: error: `=` is taken for a part of the macro's value; leave it out [compile-error]\n"
     "./l.fraglib:1:60: note: the compiler says \"'expression' : Expected\" of the line `r = float3(1.0, "
     "1.0, 1.0) * DARK;` [code-origin]\n"},
    {"MacroWithASemicolon",
     {{"l.fraglib", R"json({ "f": { "language": ["dx11"], "predefine": ["#define DARK 0.5;"],
  "implementation": [
    "void f(out float3 r)",
    "{",
    "  r = (1.0 * DARK) * float3(1.0, 1.0, 1.0);",
    "}" ] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:63: error: `;` is taken for a part of the macro's value; leave it out [compile-error]\n"
     "./l.fraglib:1:63: note: the compiler says \"')' : Expected\" of the line `r = (1.0 * DARK) * "
     "float3(1.0, 1.0, 1.0);` [code-origin]\n"},
    {"ExpressionWithASemicolon",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} + {{b}};"] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:83: error: fragment `f`: `;` cannot stand in an expression [not-loaded]\n"},
    {"ExpressionWithASemicolonInside",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["({{a}}; + {{b}})"] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:76: error: fragment `f`: `;` cannot stand in an expression [not-loaded]\n"},
    {"PlaceholderWithOneBrace",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["{{color}} * {amount}"] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:82: error: fragment `f`: `{amount}` is no placeholder; write `{{amount}}` "
     "[not-loaded]\n"},
    {"ExpressionWithBraces",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["{ {{color}} * 2.0 }"] } }
)json"}},
     "check l.fraglib",
     1,
     "./l.fraglib:1:70: error: fragment `f`: `{` cannot stand in an expression [not-loaded]\n"},
    {"SoundExpression",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["{{color}} * 2.0 /* {a}; */"] } }
)json"}},
     "check l.fraglib",
     0,
     ""},
    {"OptionInFrontOfTheCommand",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["{{x}} * 2.0"] } }
)json"}},
     "-v check l.fraglib",
     2,
     "sfg: error: the option `-v` stands in front of the command; write `sfg check -v ..` [wrong-usage]\n"
     "try `sfg --help`, or `sfg COMMAND --help`\n"},
    {"OptionWithValueInFrontOfTheCommand",
     {{"l.fraglib",
       R"json({ "f": { "mode": "inline", "language": ["dx11"], "implementation": ["{{x}} * 2.0"] } }
)json"}},
     "-L . check l.fraglib",
     2,
     "sfg: error: the option `-L` stands in front of the command; write `sfg check -L ..` [wrong-usage]\n"
     "try `sfg --help`, or `sfg COMMAND --help`\n"},
};

std::string nameOf(const testing::TestParamInfo<WrittenMistake>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Documents, WrittenMistakeTest, testing::ValuesIn(kMistakes), nameOf);

TEST_F(CommandTest, WrittenMistakeDocumentInUtf16) {
  const std::string graph = "{ \"outputs\": [] }\n";
  std::string lowFirst = "\xFF\xFE";
  std::string highFirst = "\xFE\xFF";
  for (const char c : graph) {
    lowFirst.append({c, '\0'});
    highFirst.append({'\0', c});
  }
  write("low.json", lowFirst);
  write("high.json", highFirst);
  write("low.fraglib", lowFirst);
  const auto told = [](const std::string& file, const std::string& order) {
    return file + ":1:1: error: expected text in UTF-8, found UTF-16, " + order +
           " byte first: save the file as UTF-8 [malformed-json]\n";
  };
  EXPECT_EQ(run("collapse low.json").err, told("low.json", "low"));
  EXPECT_EQ(run("collapse high.json").err, told("high.json", "high"));
  EXPECT_NE(run("check low.fraglib").err.find(told("low.fraglib", "low")), std::string::npos);
}

/// UTF-16 is full of zeros.
TEST_F(CommandTest, WrittenMistakeIncludeFileInUtf16) {
  if (!host::hasCompilers()) GTEST_SKIP() << "built without compilers";
  std::string text = "\xFF\xFE";
  for (const char c : std::string("float twice(float x) { return x + x; }\n")) text.append({c, '\0'});
  write("a.h", text);
  write("l.fraglib", R"json({ "f": { "language": ["dx11"], "includes": ["a.h"], "implementation": [
  "void f(out float r)", "{", "  r = twice(1.0);", "}" ] } })json");
  const CommandRun result = run("check l.fraglib -I .");
  EXPECT_EQ(result.err.substr(0, result.err.find('\n')),
            "./a.h:1:1: error: the include file is written in UTF-16; save it as UTF-8 [compile-error]");
  EXPECT_EQ(result.status, 1);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
