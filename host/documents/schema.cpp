#include "sfg/host/schema.h"

#include <nlohmann/json.hpp>

#include "host/documents/keys.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Members in the order in which they are added.
using Json = nlohmann::ordered_json;

/// "node" of "a node", "graph_output" of "a graph output".
std::string definitionName(const KeyTable& table) {
  std::string name(table.object.substr(table.object.find(' ') + 1));
  for (char& c : name) c = c == ' ' ? '_' : c;
  return name;
}

Json typeNames() {
  Json names = Json::array();
  for (const TypeID& type : allTypes()) {
    const std::string shaderName = toUtf8(type.toString());
    const std::string otherName = toUtf8(ITypeTraits::getTypeName(type));
    names.push_back(shaderName);
    if (otherName != shaderName) names.push_back(otherName);
  }
  return names;
}

class SchemaWriter {
public:
  std::string write(DocumentKind kind) {
    const KeyTable& root = rootOf(kind);
    Json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"}, {"title", titleOf(kind)}};
    if (kind == DocumentKind::library) {
      schema["description"] = "Fragments by name.";
      schema["type"] = "object";
      schema["properties"] = {{std::string(kSchemaKey), {{"type", "string"}}}};
      schema["patternProperties"] = comments();
      schema["additionalProperties"] = reference(root);
    } else {
      schema["$ref"] = reference(root)["$ref"];
    }
    schema["$defs"] = definitions_;
    return schema.dump(2) + "\n";
  }

private:
  static const KeyTable& rootOf(DocumentKind kind) {
    switch (kind) {
    case DocumentKind::graph: return graphKeys();
    case DocumentKind::environment: return environmentKeys();
    case DocumentKind::manifest: return manifestKeys();
    case DocumentKind::library: break;
    }
    return fragmentKeys();
  }
  static const char* titleOf(DocumentKind kind) {
    switch (kind) {
    case DocumentKind::graph: return "Graph of sfg";
    case DocumentKind::environment: return "Environment of sfg";
    case DocumentKind::manifest: return "Manifest of sfg";
    case DocumentKind::library: break;
    }
    return "Fragment library of sfg";
  }

  static Json comments() { return {{"^//", true}}; }

  /// To the definition of a table, which is made when it is first needed. Tables are not nested deeply.
  Json reference(const KeyTable& table) {
    const std::string name = definitionName(table);
    if (!definitions_.contains(name)) {
      definitions_[name] = Json::object();
      definitions_[name] = definition(table);
    }
    return {{"$ref", "#/$defs/" + name}};
  }

  Json definition(const KeyTable& table) {
    Json properties = Json::object();
    Json required = Json::array();
    for (const Key& key : table.keys) {
      Json value = valueOf(key);
      value["description"] = key.meaning;
      properties[std::string(key.name)] = std::move(value);
      if (key.isRequired) required.push_back(key.name);
    }
    Json schema = {{"description", table.meaning},
                   {"type", "object"},
                   {"properties", std::move(properties)},
                   {"patternProperties", comments()},
                   {"additionalProperties", false}};
    if (!table.insteadOfRequired.empty()) {
      schema["anyOf"] =
          Json::array({{{"required", Json::array({table.insteadOfRequired})}}, {{"required", required}}});
    } else if (!required.empty()) {
      schema["required"] = required;
    }
    for (const std::string_view key : table.onlyOneOf) {
      schema["oneOf"].push_back({{"required", Json::array({key})}});
    }
    if (table.find("output") != nullptr && table.find("node") != nullptr) {
      schema["dependentRequired"] = {{"output", Json::array({"node"})}};
    }
    if (table.find("struct") != nullptr) {
      schema["if"] = {{"properties", {{"type", {{"const", "struct"}}}}}, {"required", Json::array({"type"})}};
      schema["then"] = {{"required", Json::array({"struct"})}};
    }
    return schema;
  }

  Json valueOf(const Key& key) {
    switch (key.holds) {
    case Holds::name: return {{"type", "string"}, {"minLength", 1}};
    case Holds::text: return {{"type", "string"}};
    case Holds::names: return {{"type", "array"}, {"items", {{"type", "string"}}}};
    case Holds::numbers: return {{"type", "array"}, {"items", {{"type", "number"}}}};
    case Holds::words: return {{"type", "array"}, {"items", {{"enum", wordsOf(key)}}}};
    case Holds::number: return {{"type", "number"}};
    case Holds::level:
      return {{"anyOf", Json::array({{{"type", "number"}},
                                     {{"type", "string"}, {"pattern", "^-?[0-9.]+([eE][-+]?[0-9]+)?$"}}})}};
    case Holds::boolean: return {{"type", "boolean"}};
    case Holds::value: return anyValue();
    case Holds::type: return {{"enum", typeNames()}};
    case Holds::word: return {{"enum", wordsOf(key)}};
    case Holds::object: return reference(*key.table);
    case Holds::objects: return {{"type", "array"}, {"items", reference(*key.table)}};
    case Holds::namedObjects:
      return {{"type", "object"},
              {"patternProperties", comments()},
              {"additionalProperties", reference(*key.table)}};
    case Holds::namedTexts:
      return {
          {"type", "object"},
          {"patternProperties", comments()},
          {"additionalProperties", {{"anyOf", Json::array({{{"type", "string"}}, reference(*key.table)})}}}};
    case Holds::namedValues:
      return {{"type", "object"}, {"patternProperties", comments()}, {"additionalProperties", anyValue()}};
    }
    return Json::object();
  }

  static Json anyValue() {
    return {{"anyOf", Json::array({{{"type", "boolean"}},
                                   {{"type", "number"}},
                                   {{"type", "array"}, {"items", {{"type", "number"}}}, {"maxItems", 16}}})}};
  }
  static Json wordsOf(const Key& key) {
    Json words = Json::array();
    for (const std::string_view word : key.words) words.push_back(word);
    return words;
  }

  Json definitions_ = Json::object();
};

}  // namespace

std::string documentSchema(DocumentKind kind) { return SchemaWriter().write(kind); }

}  // namespace TolmSDK::Graphics::sfg::host
