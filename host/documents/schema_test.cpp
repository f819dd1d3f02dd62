#include "sfg/host/schema.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/documents/keys.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Json = nlohmann::ordered_json;

Json schema(DocumentKind kind) { return Json::parse(documentSchema(kind)); }

TEST(SchemaTest, OfAGraphIsThatOfItsTable) {
  const Json graph = schema(DocumentKind::graph);
  EXPECT_EQ(graph["$schema"], "https://json-schema.org/draft/2020-12/schema");
  EXPECT_EQ(graph["title"], "Graph of sfg");
  EXPECT_EQ(graph["$ref"], "#/$defs/graph");
  const Json& properties = graph["$defs"]["graph"]["properties"];
  EXPECT_EQ(properties.size(), graphKeys().keys.size());
  for (const Key& key : graphKeys().keys) {
    EXPECT_EQ(properties[std::string(key.name)]["description"], key.meaning) << key.name;
  }
  EXPECT_EQ(graph["$defs"]["graph"]["additionalProperties"], false);
}

TEST(SchemaTest, OfALibraryHoldsFragmentsUnderAnyName) {
  const Json library = schema(DocumentKind::library);
  EXPECT_EQ(library["additionalProperties"]["$ref"], "#/$defs/fragment");
  EXPECT_EQ(library["patternProperties"]["^//"], true);
  EXPECT_EQ(library["properties"]["$schema"]["type"], "string");
  EXPECT_EQ(library["$defs"]["fragment"]["anyOf"],
            Json::parse(R"([{"required":["profiles"]},{"required":["language","implementation"]}])"));
}

TEST(SchemaTest, SaysWhatEachKindOfValueIs) {
  const Json graph = schema(DocumentKind::graph)["$defs"];
  const auto without = [](Json value) {
    value.erase("description");
    return value.dump();
  };
  EXPECT_EQ(without(graph["node"]["properties"]["name"]), R"({"type":"string","minLength":1})");
  EXPECT_EQ(without(graph["parameter"]["properties"]["constant"]), R"({"type":"boolean"})");
  EXPECT_EQ(without(graph["graph"]["properties"]["preprocess"]),
            R"({"type":"array","items":{"type":"string"}})");
  EXPECT_EQ(without(graph["graph"]["properties"]["nodes"]),
            R"({"type":"array","items":{"$ref":"#/$defs/node"}})");
  EXPECT_EQ(without(graph["parameter"]["properties"]["space"]),
            R"({"enum":["data","linear","object","srgb","tangent","view","world"]})");
  EXPECT_EQ(graph["node"]["properties"]["inputs"]["additionalProperties"]["$ref"], "#/$defs/input_of_a_node");
  EXPECT_EQ(graph["input_of_a_node"]["oneOf"].size(), 4u);
  EXPECT_EQ(graph["input_of_a_node"]["dependentRequired"].dump(), R"({"output":["node"]})");
}

TEST(SchemaTest, OfAnEnvironmentRequiresTheFragmentOfALight) {
  const Json light = schema(DocumentKind::environment)["$defs"]["light"];
  EXPECT_EQ(light["required"].dump(), R"(["fragment"])");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
