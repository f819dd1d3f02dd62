#pragma once

// Objects of a JSON document, each described once by a table of its members: objects are written by it, and
// the schema that tells readers what to expect is made of it.

#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// Members in the order in which they are added; numbers are 32-bit floats, written in their shortest form.
using OrderedJson = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t,
                                         std::uint64_t, float>;

/// A value as it is written. Text and no tree of values: such a tree asks for memory when it is destroyed,
/// which ends the process where there is none.
struct JsonText {
  std::string text;
};

/// A name, a number, a boolean or null; bytes that are no UTF-8 become U+FFFD.
inline JsonText jsonText(const OrderedJson& scalar) {
  return {scalar.dump(-1, ' ', false, OrderedJson::error_handler_t::replace)};
}

/// A member of the objects that Things are written as.
template <class Thing>
struct JsonMember {
  std::string name;
  std::string description;
  OrderedJson schema;  ///< what its value is
  bool isRequired = true;
  /// Nothing where an object goes without it; never for a required one.
  std::function<std::optional<JsonText>(const Thing&)> value;
};

template <class Thing>
using JsonTable = std::vector<JsonMember<Thing>>;

/// The members of the table, in its order, as they stand between the braces of an object.
template <class Thing>
std::string writeMembers(const JsonTable<Thing>& table, const Thing& thing) {
  std::string members;
  for (const JsonMember<Thing>& member : table) {
    const std::optional<JsonText> value = member.value(thing);
    if (!value) continue;
    if (!members.empty()) members += ',';
    members += jsonText(member.name).text + ":" + value->text;
  }
  return members;
}

template <class Thing>
JsonText writeObject(const JsonTable<Thing>& table, const Thing& thing) {
  return {"{" + writeMembers(table, thing) + "}"};
}

/// Things in brackets, each by `write`.
template <class Thing, class Write>
JsonText writeEach(const std::vector<Thing>& things, Write&& write) {
  std::string list = "[";
  for (const Thing& thing : things) {
    if (list.size() > 1) list += ',';
    list += write(thing).text;
  }
  return {list + "]"};
}

template <class Thing>
JsonText writeList(const JsonTable<Thing>& table, const std::vector<Thing>& things) {
  return writeEach(things, [&](const Thing& thing) { return writeObject(table, thing); });
}

/// Adds what the schema of an object says of the table's members; it has no others.
template <class Thing>
void addToSchema(OrderedJson& schema, const JsonTable<Thing>& table) {
  schema["type"] = "object";
  for (const JsonMember<Thing>& member : table) {
    OrderedJson property = OrderedJson::object();
    property["description"] = member.description;
    property.update(member.schema);
    schema["properties"][member.name] = std::move(property);
    if (member.isRequired) schema["required"].push_back(member.name);
  }
  schema["additionalProperties"] = false;
}

/// Numbers; whole ones without a fraction, so that integers and booleans read as such.
inline OrderedJson numberJson(double number) {
  constexpr double kLargest = 9007199254740992.0;  // beyond it all numbers are whole
  if (std::abs(number) < kLargest && std::trunc(number) == number) return static_cast<std::int64_t>(number);
  return static_cast<float>(number);
}

/// Schemas of values.
inline OrderedJson ofType(const char* type) {
  OrderedJson schema = OrderedJson::object();
  schema["type"] = type;
  return schema;
}

inline OrderedJson sizeSchema() {
  OrderedJson schema = ofType("integer");
  schema["minimum"] = 0;
  return schema;
}

inline OrderedJson listSchema(OrderedJson items) {
  OrderedJson schema = ofType("array");
  schema["items"] = std::move(items);
  return schema;
}

inline OrderedJson oneOfWords(std::span<const std::string_view> words) {
  OrderedJson schema = OrderedJson::object();
  schema["enum"] = OrderedJson::array();
  for (const std::string_view word : words) schema["enum"].push_back(std::string(word));
  return schema;
}

/// An object that the document's "$defs" describe.
inline OrderedJson defined(const std::string& name) {
  OrderedJson schema = OrderedJson::object();
  schema["$ref"] = "#/$defs/" + name;
  return schema;
}

inline OrderedJson orNull(OrderedJson schema) {
  OrderedJson null = OrderedJson::object();
  OrderedJson either = OrderedJson::array();
  either.push_back(std::move(schema));
  either.push_back(ofType("null"));
  null["oneOf"] = std::move(either);
  return null;
}

}  // namespace TolmSDK::Graphics::sfg::host
