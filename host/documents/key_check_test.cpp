#include "host/documents/key_check.h"

#include <gtest/gtest.h>

#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string told(const KeyTable& table, const std::wstring& json) {
  const RefPtr<IObjectDataNode> root = createJsonNode();
  EXPECT_TRUE(root->loadFromText(json));
  std::string text;
  for (const UnknownKey& found : findUnknownKeys(*root, table)) {
    const Diagnostic diagnostic = describe(found, Severity::warning, "a.json");
    text += diagnostic.place() + ": " + diagnostic.text + " [" + diagnostic.identifier + "]\n";
  }
  return text;
}

TEST(KeyCheckTest, KnowsTheKeysOfAGraph) {
  EXPECT_EQ(told(graphKeys(),
                 LR"json({ "description": "", "$schema": "", "inputs": [ { "name": "a", "type": "float" } ],
    "outputs": [ { "name": "a", "type": "float", "node": "n", "output": "o" } ], "uniforms": [],
    "nodes": [ { "name": "n", "fragment": "f", "inputs": { "any": { "value": 1 } },
      "interface": { "inputs": [], "outputs": [] } } ], "preprocess": [], "postprocess": [] })json"),
            "");
}

TEST(KeyCheckTest, TellsEachUnknownKeyWhereItStands) {
  EXPECT_EQ(told(graphKeys(), LR"json({ "input": [], "outputs": [ { "nme": "a" } ],
  "nodes": [ { "input": {}, "inputs": { "x": { "valeu": 1 }, "y": { "wheels": 2 } },
    "interface": { "inputs": [ { "tipe": "float" } ], "output": [] } } ], "postproces": [] })json"),
            "a.json:1:3: unknown key `input` of a graph; did you mean `inputs`? [unknown-key]\n"
            "a.json:1:31: unknown key `nme` of a graph output; did you mean `name`? [unknown-key]\n"
            "a.json:2:16: unknown key `input` of a node; did you mean `inputs`? [unknown-key]\n"
            "a.json:2:48: unknown key `valeu` of an input of a node; did you mean `value`? [unknown-key]\n"
            "a.json:2:69: unknown key `wheels` of an input of a node; its keys are `node`, `output`, "
            "`graphInput`, `value`, `constant` [unknown-key]\n"
            "a.json:3:34: unknown key `tipe` of a parameter; did you mean `type`? [unknown-key]\n"
            "a.json:3:55: unknown key `output` of an interface; did you mean `outputs`? [unknown-key]\n"
            "a.json:3:75: unknown key `postproces` of a graph; did you mean `postprocess`? [unknown-key]\n");
}

TEST(KeyCheckTest, TellsThoseOfFragmentsAndEnvironments) {
  EXPECT_EQ(
      told(fragmentKeys(),
           LR"json({ "include": [], "uniform": [], "ports": { "a": "text", "b": { "vale": 1 } },
  "profiles": [ { "lot": 3 } ], "uniforms": [ { "defualt": 1, "min": 0 } ] })json"),
      "a.json:1:3: unknown key `include` of a fragment; did you mean `includes`? [unknown-key]\n"
      "a.json:1:18: unknown key `uniform` of a fragment; did you mean `uniforms`? [unknown-key]\n"
      "a.json:1:64: unknown key `vale` of a port; did you mean `value`? [unknown-key]\n"
      "a.json:2:19: unknown key `lot` of a profile; did you mean `lod`? [unknown-key]\n"
      "a.json:2:49: unknown key `defualt` of a parameter; its keys are `name`, `type`, `struct`, `value`, "
      "`constant`, `semantic`, `description`, `label`, `min`, `max`, `step`, `kind`, `space` "
      "[unknown-key]\n");
  EXPECT_EQ(told(environmentKeys(), LR"json({ "ligths": [], "lights": [ { "fragmnet": "sun" } ] })json"),
            "a.json:1:3: unknown key `ligths` of an environment; did you mean `lights`? [unknown-key]\n"
            "a.json:1:31: unknown key `fragmnet` of a light; did you mean `fragment`? [unknown-key]\n");
}

TEST(KeyCheckTest, PassesOverCommentsAndWhatIsOfAnotherKind) {
  EXPECT_EQ(told(graphKeys(), LR"json({ "//": 1, "// later": { "a": 1 }, "nodes": [ 3, null, { "//x": 1,
    "inputs": { "//color": { "odd": 1 }, "a": 3 } } ], "inputs": { "a": { "b": 1 } }, "outputs": 3 })json"),
            "");
  EXPECT_EQ(told(graphKeys(), L"[ { \"a\": 1 } ]"), "");
  EXPECT_EQ(
      told(fragmentKeys(), LR"json({ "ports": [ { "odd": 1 } ], "interface": 3, "profiles": { } })json"), "");
}

TEST(KeyCheckTest, TakesTimeInProportionToTheDocument) {
  EXPECT_LT(test::costGrowth(2000,
                             [](std::size_t count) {
                               std::wstring json = L"{";
                               for (std::size_t i = 0; i < count; ++i)
                                 json += (i == 0 ? L"\"k" : L",\"k") + std::to_wstring(i) + L"\": 0";
                               EXPECT_NE(told(graphKeys(), json + L"}"), "");
                             }),
            test::kLinearGrowth);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
