#include "sfg/host/reference.h"

#include <algorithm>
#include <vector>

#include "host/documents/keys.h"
#include "host/shader/state_meaning.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// "[a node](#a-node)": GitHub's name of the heading.
std::string linkTo(const KeyTable& table) {
  std::string anchor(table.object);
  std::replace(anchor.begin(), anchor.end(), ' ', '-');
  return "[" + std::string(table.object) + "](#" + anchor + ")";
}

std::string wordsOf(const Key& key) {
  std::string text;
  for (const std::string_view word : key.words) {
    text.append(text.empty() ? "`\"" : ", `\"").append(word).append("\"`");
  }
  return text;
}

std::string kindOf(const Key& key) {
  switch (key.holds) {
  case Holds::name: return "text, not empty";
  case Holds::text: return "text";
  case Holds::names: return "list of texts";
  case Holds::words: return "list of " + wordsOf(key);
  case Holds::numbers: return "list of numbers";
  case Holds::number: return "number";
  case Holds::level: return "number, or text that is one";
  case Holds::boolean: return "`true` or `false`";
  case Holds::value: return "`true` or `false`, number, or list of numbers";
  case Holds::type: return "name of a [type](#types)";
  case Holds::word: return wordsOf(key);
  case Holds::object: return linkTo(*key.table);
  case Holds::objects: return "list, each " + linkTo(*key.table);
  case Holds::namedObjects: return "object, under each name " + linkTo(*key.table);
  case Holds::namedValues:
    return "object, under each name a value: `true` or `false`, number, or list of numbers";
  case Holds::namedTexts: return "object, under each name a text or " + linkTo(*key.table);
  }
  return std::string();
}

/// Every table that the objects of a document have, the root first, each once.
std::vector<const KeyTable*> tablesOf(const KeyTable& root) {
  std::vector<const KeyTable*> tables = {&root};
  for (std::size_t i = 0; i < tables.size(); ++i) {
    for (const Key& key : tables[i]->keys) {
      const bool isNew =
          key.table != nullptr && std::find(tables.begin(), tables.end(), key.table) == tables.end();
      if (isNew) tables.push_back(key.table);
    }
  }
  return tables;
}

std::string rulesOf(const KeyTable& table) {
  std::string text;
  if (!table.onlyOneOf.empty()) {
    std::string keys;
    for (const std::string_view key : table.onlyOneOf)
      keys.append(keys.empty() ? "`" : ", `").append(key).append("`");
    text += "\nExactly one of " + keys + " stands in it.\n";
  }
  if (!table.insteadOfRequired.empty()) {
    text.append("\nWith `").append(table.insteadOfRequired).append("` no other key is required.\n");
  }
  return text;
}

std::string textOf(const KeyTable& table) {
  std::string heading(table.object);
  heading[0] = static_cast<char>(heading[0] - 'a' + 'A');
  std::string text = "### " + heading + "\n\n" + std::string(table.meaning) + "\n\n";
  text += "| key | holds | |\n|---|---|---|\n";
  for (const Key& key : table.keys) {
    text.append("| `").append(key.name).append("` | ").append(kindOf(key)).append(" | ");
    text.append(key.isRequired ? "Required. " : "").append(key.meaning).append(" |\n");
  }
  return text + rulesOf(table);
}

/// Objects of a graph and of an environment stand in those documents alone; a parameter stands in graphs,
/// too.
std::string documentText(const KeyTable& root) {
  std::string text;
  for (const KeyTable* const table : tablesOf(root)) {
    if (!text.empty()) text += "\n";
    text += textOf(*table);
  }
  return text;
}

std::string typesText() {
  std::string text = "| type | also called | numbers of a value |\n|---|---|---|\n";
  for (const TypeID& type : allTypes()) {
    const std::string name = toUtf8(type.toString());
    const std::string other = toUtf8(ITypeTraits::getTypeName(type));
    text += "| `" + name + "` | " + (other != name ? "`" + other + "`" : "") + " | ";
    text += componentCount(type) == 0 ? "" : std::to_string(componentCount(type));
    text += " |\n";
  }
  return text;
}

const char* kindOf(StateVariableKind kind) {
  switch (kind) {
  case StateVariableKind::uniform: return "uniform";
  case StateVariableKind::metaSL: return "in MetaSL code";
  case StateVariableKind::varying: return "varies over the surface";
  case StateVariableKind::currentLight: return "of lit profiles";
  }
  return "";
}

std::string stateText() {
  std::string text = "| name | type | | meaning |\n|---|---|---|---|\n";
  for (const StateVariableInfo& variable : allStateVariables()) {
    const StateMeaning meaning = meaningOf(variable.name);
    const bool isTyped = variable.type != TypeID_nil;
    text += "| `" + toUtf8(variable.name.str()) + "` | ";
    text += isTyped ? "`" + toUtf8(variable.type.toString()) + "`" : "the light's structure";
    text.append(" | ").append(kindOf(variable.kind)).append(" | ").append(meaning.text);
    if (*meaning.space != '\0') text.append(", ").append(meaning.space).append(" space");
    text += " |\n";
  }
  return text;
}

}  // namespace

std::string referenceText(ReferenceTopic topic) {
  switch (topic) {
  case ReferenceTopic::library: return documentText(fragmentKeys());
  case ReferenceTopic::graph: return documentText(graphKeys());
  case ReferenceTopic::environment: return documentText(environmentKeys());
  case ReferenceTopic::manifest: return documentText(manifestKeys());
  case ReferenceTopic::types: return typesText();
  case ReferenceTopic::state: return stateText();
  }
  return std::string();
}

}  // namespace TolmSDK::Graphics::sfg::host
