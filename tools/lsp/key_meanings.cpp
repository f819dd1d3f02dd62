#include "tools/lsp/key_meanings.h"

#include <algorithm>
#include <set>

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

using Schema = nlohmann::ordered_json;
using Shape = KeyMeaning::Shape;

const Schema* memberOf(const Schema& schema, const char* key) {
  if (!schema.is_object()) return nullptr;
  const auto found = schema.find(key);
  return found != schema.end() ? &*found : nullptr;
}

std::string textOf(const Schema& schema, const char* key) {
  const Schema* const member = memberOf(schema, key);
  return member != nullptr && member->is_string() ? member->get<std::string>() : std::string();
}

std::vector<std::string> textsOf(const Schema& schema, const char* key) {
  std::vector<std::string> texts;
  if (const Schema* const member = memberOf(schema, key); member != nullptr && member->is_array()) {
    for (const Schema& text : *member) {
      if (text.is_string()) texts.push_back(text.get<std::string>());
    }
  }
  return texts;
}

Shape shapeOf(const Schema& schema) {
  const std::string type = textOf(schema, "type");
  if (type == "object") return Shape::object;
  if (type == "array") return Shape::array;
  if (type == "boolean") return Shape::boolean;
  if (type == "string" || memberOf(schema, "enum") != nullptr) return Shape::text;
  return Shape::other;
}

/// The keys that must be there, in each or in one of the ways that the schema offers.
std::set<std::string> requiredOf(const Schema& schema) {
  std::set<std::string> names;
  const auto add = [&](const Schema& one) {
    for (const std::string& name : textsOf(one, "required")) names.insert(name);
  };
  add(schema);
  for (const char* ways : {"anyOf", "oneOf"}) {
    if (const Schema* const several = memberOf(schema, ways)) {
      for (const Schema& one : *several) add(one);
    }
  }
  return names;
}

}  // namespace

KeyMeanings::KeyMeanings(host::DocumentKind kind) : root_(Schema::parse(host::documentSchema(kind))) {}

const KeyMeanings& KeyMeanings::of(host::DocumentKind kind) {
  static const KeyMeanings library(host::DocumentKind::library);
  static const KeyMeanings graph(host::DocumentKind::graph);
  static const KeyMeanings environment(host::DocumentKind::environment);
  static const KeyMeanings manifest(host::DocumentKind::manifest);
  switch (kind) {
  case host::DocumentKind::library: return library;
  case host::DocumentKind::manifest: return manifest;
  case host::DocumentKind::graph: return graph;
  case host::DocumentKind::environment: return environment;
  }
  return graph;
}

/// The definition that a schema names, or of several ways the one that is an object.
const Schema& KeyMeanings::resolved(const Schema& schema) const {
  if (const std::string name = textOf(schema, "$ref"); name.starts_with("#/")) {
    return root_.at(Schema::json_pointer(name.substr(1)));
  }
  if (memberOf(schema, "properties") != nullptr) return schema;
  if (const Schema* const ways = memberOf(schema, "anyOf")) {
    for (const Schema& way : *ways) {
      if (memberOf(way, "$ref") != nullptr) return resolved(way);
    }
  }
  return schema;
}

const Schema* KeyMeanings::step(const Schema& schema, const std::string& key) const {
  const Schema& object = resolved(schema);
  if (const Schema* const items = memberOf(object, "items"); items != nullptr && key == "*") return items;
  if (const Schema* const properties = memberOf(object, "properties")) {
    if (const Schema* const found = memberOf(*properties, key.c_str())) return found;
  }
  const Schema* const others = memberOf(object, "additionalProperties");
  return others != nullptr && others->is_object() ? others : nullptr;
}

const Schema* KeyMeanings::find(const JsonPath& path) const {
  const Schema* schema = &root_;
  for (const std::string& key : path) {
    schema = step(*schema, key);
    if (schema == nullptr) return nullptr;
  }
  return schema;
}

std::vector<KeyMeaning> KeyMeanings::keys(const JsonPath& object) const {
  std::vector<KeyMeaning> keys;
  const Schema* const found = find(object);
  if (found == nullptr) return keys;
  const Schema& schema = resolved(*found);
  const Schema* const properties = memberOf(schema, "properties");
  if (properties == nullptr) return keys;
  const std::set<std::string> required = requiredOf(schema);
  for (const auto& [name, property] : properties->items()) {
    std::string meaning = textOf(property, "description");
    if (meaning.empty()) meaning = textOf(resolved(property), "description");
    keys.push_back({name, std::move(meaning), required.count(name) != 0, shapeOf(resolved(property))});
  }
  return keys;
}

std::string KeyMeanings::meaning(const JsonPath& path) const {
  if (path.empty()) return std::string();
  for (const KeyMeaning& key : keys(JsonPath(path.begin(), path.end() - 1))) {
    if (key.name == path.back()) return key.meaning;
  }
  return std::string();
}

std::vector<std::string> KeyMeanings::words(const JsonPath& path) const {
  const Schema* const schema = find(path);
  return schema != nullptr ? textsOf(resolved(*schema), "enum") : std::vector<std::string>();
}

bool KeyMeanings::isBoolean(const JsonPath& path) const {
  const Schema* const schema = find(path);
  return schema != nullptr && shapeOf(resolved(*schema)) == Shape::boolean;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
