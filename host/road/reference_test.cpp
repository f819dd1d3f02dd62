#include "sfg/host/reference.h"

#include <gtest/gtest.h>

#include "host/documents/keys.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string lineOf(const std::string& text, const std::string& start) {
  const std::size_t place = text.find(start);
  return place == text.npos ? "" : text.substr(place, text.find('\n', place) - place);
}

TEST(ReferenceTest, NamesEveryKeyWithWhatItHolds) {
  const std::string graph = referenceText(ReferenceTopic::graph);
  EXPECT_EQ(graph.find("### A graph\n\nFragments wired together.\n\n| key | holds | |\n|---|---|---|\n"), 0u);
  for (const Key& key : graphKeys().keys) {
    EXPECT_NE(lineOf(graph, "| `" + std::string(key.name) + "`").find(key.meaning), std::string::npos)
        << key.name;
  }
  EXPECT_EQ(lineOf(graph, "| `nodes`"),
            "| `nodes` | list, each [a node](#a-node) | Are the uses of fragments. |");
  EXPECT_EQ(
      lineOf(graph, "| `type`"),
      "| `type` | name of a [type](#types) | Required. Is the type: `float3`, `sampler2D`, `struct`. |");
  EXPECT_NE(graph.find("### A node\n"), std::string::npos);
  EXPECT_NE(graph.find("\nExactly one of `node`, `graphInput`, `value`, `constant` stands in it.\n"),
            std::string::npos);
  const std::string library = referenceText(ReferenceTopic::library);
  EXPECT_NE(library.find("\nWith `profiles` no other key is required.\n"), std::string::npos);
  EXPECT_EQ(
      lineOf(library, "| `ports`"),
      "| `ports` | object, under each name a text or [a port](#a-port) | Says of each input and output by "
      "name what it is. |");
  EXPECT_NE(lineOf(library, "| `mode`").find("`\"function\"`, `\"inline\"`, `\"metaSL\"`"),
            std::string::npos);
}

TEST(ReferenceTest, NamesEveryTypeAndStateVariable) {
  const std::string types = referenceText(ReferenceTopic::types);
  for (const TypeID& type : allTypes()) {
    EXPECT_NE(lineOf(types, "| `" + toUtf8(type.toString()) + "` |"), "") << toUtf8(type.toString());
  }
  EXPECT_NE(lineOf(types, "| `float3` |").find("| 3 |"), std::string::npos);
  const std::string state = referenceText(ReferenceTopic::state);
  for (const StateVariableInfo& variable : allStateVariables()) {
    EXPECT_NE(lineOf(state, "| `" + toUtf8(variable.name.str()) + "` |"), "") << toUtf8(variable.name.str());
  }
  EXPECT_EQ(
      lineOf(state, "| `sfg_worldNormal` |"),
      "| `sfg_worldNormal` | `float3` | varies over the surface | normal of the surface, world space |");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
