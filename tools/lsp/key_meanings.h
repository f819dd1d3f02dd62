#pragma once

// What may stand where in a document: the tables of the readers, by way of the schemas made of them.

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "sfg/host/schema.h"
#include "tools/lsp/json_place.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

struct KeyMeaning {
  /// What a value is written with.
  enum class Shape { object, array, text, boolean, other };

  std::string name;
  std::string meaning;
  bool isRequired = false;
  Shape shape = Shape::other;
};

/// The keys and words of one kind of document. Immutable; lives as long as the program.
class KeyMeanings {
public:
  static const KeyMeanings& of(host::DocumentKind kind);

  /// Of the object at the path, in the order of the tables; none where any names may stand.
  std::vector<KeyMeaning> keys(const JsonPath& object) const;
  /// Of the key that ends the path; empty without one.
  std::string meaning(const JsonPath& path) const;
  /// Of which the value at the path is one; none where it may be anything.
  std::vector<std::string> words(const JsonPath& path) const;
  bool isBoolean(const JsonPath& path) const;

private:
  using Schema = nlohmann::ordered_json;

  explicit KeyMeanings(host::DocumentKind kind);
  const Schema& resolved(const Schema& schema) const;
  const Schema* step(const Schema& schema, const std::string& key) const;
  const Schema* find(const JsonPath& path) const;

  Schema root_;
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
