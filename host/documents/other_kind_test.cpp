#include "host/documents/other_kind.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string refusalOf(const std::string& document, const KeyTable& table, const std::string& wanted) {
  const DocumentReader reader(Document::fromText(document, "x.json"));
  try {
    refuseOtherKind(reader, table, wanted);
  } catch (const InputError& error) {
    return error.diagnostic().place() + ": " + error.what();
  }
  return std::string();
}

TEST(OtherKindTest, NamesWhatTheDocumentIs) {
  EXPECT_EQ(refusalOf(R"({ "lights": [] })", graphKeys(), "a graph"),
            "x.json:1:1: this is an environment, not a graph");
  EXPECT_EQ(refusalOf(R"({ "description": "", "f": { "implementation": [] } })", graphKeys(), "a graph"),
            "x.json:1:1: this is a library of fragments, not a graph");
  EXPECT_EQ(refusalOf(R"({ "f": { "profiles": [] } })", environmentKeys(), "an environment"),
            "x.json:1:1: this is a library of fragments, not an environment");
  EXPECT_EQ(refusalOf(R"({ "inputs": [], "outputs": [], "nodes": [] })", environmentKeys(), "an environment"),
            "x.json:1:1: this is a graph, not an environment");
}

TEST(OtherKindTest, LeavesUnknownKeysToOthers) {
  for (const char* const document :
       {"{}", R"({ "lihgts": [] })", R"({ "lights": [], "f": { "profiles": [] } })",
        R"({ "output": "f", "nodes": [], "outputs": [] })", R"({ "description": "nothing else" })"})
    EXPECT_EQ(refusalOf(document, environmentKeys(), "an environment"), "") << document;
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
