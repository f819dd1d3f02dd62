#include <gtest/gtest.h>

#include "host/shader/interface_hash.h"
#include "host/shader/json_table.h"
#include "sfg/host/reflect.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

ShaderInterface makeInterface() {
  ShaderInterface shader;
  shader.entryPoint = "main";
  InterfaceBuffer buffer;
  buffer.name = "sfg_Uniforms";
  buffer.place.registerName = "b0";
  buffer.size = 16;
  buffer.members.resize(1);
  buffer.members[0].name = "on";
  buffer.members[0].type = "bool";
  buffer.members[0].size = 4;
  buffer.members[0].value = {1.0};
  shader.buffers = {buffer};
  InterfaceTexture texture;
  texture.name = "image";
  texture.type = "texture2D";
  shader.textures = {texture};
  shader.files = {"a.json"};
  return shader;
}

TEST(InterfaceJsonTest, LeavesOutWhatIsNotThere) {
  EXPECT_EQ(writeInterfaceJson(makeInterface()), R"({
  "target": "assembled",
  "stage": "pixel",
  "entryPoint": "main",
  "attributes": [],
  "buffers": [
    {
      "name": "sfg_Uniforms",
      "kind": "constant",
      "register": "b0",
      "size": 16,
      "members": [
        {
          "name": "on",
          "type": "bool",
          "offset": 0,
          "size": 4,
          "value": [
            1
          ]
        }
      ]
    }
  ],
  "textures": [
    {
      "name": "image",
      "type": "texture2D",
      "origin": null
    }
  ],
  "samplers": [],
  "renderTargets": [],
  "includes": [],
  "files": [
    "a.json"
  ],
  "hash": ""
}
)");
}

TEST(InterfaceJsonTest, HashesTextAndInterfaceButNoFiles) {
  const auto hashOf = [](ShaderInterface shader, const std::string& text) {
    hashInterface(shader, text);
    return shader.hash;
  };
  const ShaderInterface plain = makeInterface();
  EXPECT_EQ(hashOf(plain, "text").size(), 40u);
  EXPECT_NE(hashOf(plain, "other"), hashOf(plain, "text"));
  ShaderInterface changed = plain;
  changed.files = {"b.json"};
  EXPECT_EQ(hashOf(changed, "text"), hashOf(plain, "text"));
  changed.buffers[0].members[0].value = {0.0};
  EXPECT_NE(hashOf(changed, "text"), hashOf(plain, "text"));
}

TEST(InterfaceJsonTest, HasASchemaOfEveryKindOfObject) {
  const OrderedJson schema = OrderedJson::parse(interfaceSchemaJson());
  EXPECT_EQ(schema["required"].dump(),
            "[\"target\",\"stage\",\"entryPoint\",\"attributes\",\"buffers\",\"textures\","
            "\"samplers\",\"renderTargets\",\"includes\",\"files\",\"hash\"]");
  std::string kinds;
  for (const auto& [name, kind] : schema["$defs"].items()) {
    kinds += name + " ";
    EXPECT_EQ(kind["additionalProperties"], false) << name;
  }
  EXPECT_EQ(kinds, "attribute buffer member texture sampler renderTarget origin port ");
}

struct Pair {
  int a = 0;
  int b = 0;
};

TEST(JsonTableTest, WritesAndDescribesTheSameMembers) {
  const JsonTable<Pair> table = {
      {"a", "First.", sizeSchema(), true, [](const Pair& pair) { return jsonText(pair.a); }},
      {"b", "Second.", orNull(oneOfWords({})), false,
       [](const Pair& pair) { return pair.b == 0 ? std::nullopt : std::optional(jsonText(pair.b)); }}};
  EXPECT_EQ(writeList(table, std::vector<Pair>{{1, 0}, {2, 3}}).text, R"([{"a":1},{"a":2,"b":3}])");
  OrderedJson schema = OrderedJson::object();
  addToSchema(schema, table);
  EXPECT_EQ(
      schema.dump(),
      R"({"type":"object","properties":{"a":{"description":"First.","type":"integer","minimum":0},"b":{"description":"Second.","oneOf":[{"enum":[]},{"type":"null"}]}},"required":["a"],"additionalProperties":false})");
}

TEST(JsonTableTest, WritesNumbersShortly) {
  const auto write = [](double number) { return jsonText(numberJson(number)); };
  EXPECT_EQ(writeEach(std::vector<double>{1.0, 0.1, -2.0, 1e300}, write).text, "[1,0.1,-2,null]");
}

TEST(InterfaceJsonTest, KeepsTextsThatLookLikeJson) {
  ShaderInterface shader = makeInterface();
  shader.includes = {R"({"a": [1, 2]}, \" ] })", "\\", "\xff"};
  shader.entryPoint = "{:,";
  const std::string json = writeInterfaceJson(shader);
  const OrderedJson read = OrderedJson::parse(json);
  EXPECT_EQ(read["includes"][0], shader.includes[0]);
  EXPECT_EQ(read["includes"][1], shader.includes[1]);
  EXPECT_EQ(read["includes"][2], "\xEF\xBF\xBD");
  EXPECT_EQ(read["entryPoint"], shader.entryPoint);
  EXPECT_EQ(json, read.dump(2) + "\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
