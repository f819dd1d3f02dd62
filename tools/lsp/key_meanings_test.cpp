#include "tools/lsp/key_meanings.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

using host::DocumentKind;

std::string keys(DocumentKind kind, const JsonPath& path) {
  std::string text;
  for (const KeyMeaning& key : KeyMeanings::of(kind).keys(path))
    text += (text.empty() ? "" : " ") + key.name + (key.isRequired ? "!" : "");
  return text;
}

TEST(KeyMeaningsTest, KnowsTheKeysOfEachObject) {
  EXPECT_EQ(keys(DocumentKind::graph, {}),
            "description inputs outputs uniforms nodes preprocess postprocess $schema");
  EXPECT_EQ(keys(DocumentKind::graph, {"nodes", "*"}), "name! fragment! inputs interface");
  EXPECT_EQ(keys(DocumentKind::graph, {"nodes", "*", "inputs", "a"}),
            "node! output graphInput! value! constant!");
  EXPECT_EQ(keys(DocumentKind::graph, {"nodes", "*", "inputs"}), "");
  EXPECT_EQ(keys(DocumentKind::graph, {"nothing"}), "");
  EXPECT_EQ(keys(DocumentKind::environment, {"lights", "*"}), "name fragment! profile");
  EXPECT_EQ(keys(DocumentKind::library, {"f", "ports", "a"}),
            "description label value min max step kind space");
  EXPECT_EQ(keys(DocumentKind::library, {"f", "profiles", "*"}),
            "name language! lod mode includes predefine implementation! stateVariables");
}

TEST(KeyMeaningsTest, KnowsMeaningsWordsAndShapes) {
  const KeyMeanings& graph = KeyMeanings::of(DocumentKind::graph);
  EXPECT_EQ(graph.meaning({"nodes"}), "Are the uses of fragments.");
  EXPECT_EQ(graph.meaning({"nodes", "*", "interface"}), "Gives the ports; an inline fragment needs it.");
  EXPECT_EQ(graph.meaning({"nodes", "*", "inputs", "a"}), "");
  EXPECT_EQ(graph.meaning({}), "");
  EXPECT_EQ(graph.words({"inputs", "*", "space"}).size(), 7u);
  EXPECT_TRUE(graph.words({"inputs", "*", "label"}).empty());
  EXPECT_TRUE(graph.isBoolean({"inputs", "*", "constant"}));
  EXPECT_FALSE(graph.isBoolean({"inputs", "*", "label"}));
  const std::vector<KeyMeaning> node = graph.keys({"nodes", "*"});
  EXPECT_EQ(node[0].shape, KeyMeaning::Shape::text);
  EXPECT_EQ(node[2].shape, KeyMeaning::Shape::object);
  EXPECT_EQ(graph.keys({})[1].shape, KeyMeaning::Shape::array);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
