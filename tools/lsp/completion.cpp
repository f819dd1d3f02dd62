#include "tools/lsp/completion.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/lsp/descriptions.h"
#include "tools/lsp/graph_view.h"
#include "tools/lsp/key_meanings.h"
#include "tools/lsp/roles.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

using Kind = JsonScan::Kind;
using Shape = KeyMeaning::Shape;

// CompletionItemKind of the protocol.
constexpr int kFunction = 3;
constexpr int kField = 5;
constexpr int kVariable = 6;
constexpr int kProperty = 10;
constexpr int kValue = 12;
constexpr int kFile = 17;
constexpr int kEnumMember = 20;

struct Candidate {
  std::string label;
  int kind = kValue;
  std::string detail;
  std::string meaning;  ///< Markdown
  /// Of a key: what its value begins with; "$1" is where typing goes on.
  std::string value;
  bool isFirst = false;  ///< among all
  bool isWord = false;   ///< without quotation marks
};
using Candidates = std::vector<Candidate>;

std::string quoted(const std::string& text) {
  return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// Text that stands for itself in a snippet.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '$' || c == '}' || c == '\\') result += '\\';
    result += c;
  }
  return result;
}

std::string valueOf(Shape shape) {
  switch (shape) {
  case Shape::object: return "{ $1 }";
  case Shape::array: return "[$1]";
  case Shape::text: return "\"$1\"";
  case Shape::boolean: return "${1:true}";
  case Shape::other: return "$1";
  }
  return std::string();
}

class Completer {
public:
  Completer(const View& view, std::size_t offset)
      : view_(view), scan_(view.scan()), graph_(scan_), place_(findTyped(scan_, offset)),
        path_(pathOf(scan_, place_)) {}

  const JsonPlace& place() const { return place_; }

  Candidates candidates() const {
    switch (place_.at) {
    case JsonPlace::At::nothing: return {};
    case JsonPlace::At::key: return keys();
    case JsonPlace::At::value: return values();
    }
    return {};
  }

  /// Whether a colon stands behind the key that is typed.
  bool hasColon() const { return place_.item != JsonScan::kNone && scan_[place_.item].hasColon; }

  /// Whether what is typed needs a comma behind it.
  bool needsComma() const {
    const std::size_t next = scan_.text().find_first_not_of(" \t\r\n", place_.literal.end);
    return next != std::string_view::npos && (scan_.text()[next] == '"' || scan_.text()[next] == '{');
  }

private:
  /// Names of the object's members but the one at the place.
  std::set<std::string> otherKeys() const {
    std::set<std::string> names;
    const std::uint32_t object = place_.container;
    for (std::uint32_t i = scan_.first(object); i != scan_.end(object); i = scan_[i].next) {
      if (i != place_.item && scan_[i].hasKey()) names.insert(scan_.keyOf(i));
    }
    return names;
  }

  Candidates keys() const {
    Candidates found;
    const std::set<std::string> known = otherKeys();
    if (view_.kind == host::DocumentKind::graph && matches(path_, "nodes/*/inputs")) {
      for (const PortCard& port : graph_.inputsOf(graph_.nodeAround(place_.container), view_.catalog))
        addPort(found, port,
                port.value.empty() ? "{ $1 }" : "{ \"value\": ${1:" + escaped(port.value) + "} }");
    } else if (view_.kind == host::DocumentKind::library && matches(path_, "*/ports")) {
      addPortsOf(found, path_.front());
    } else {
      for (const KeyMeaning& key : KeyMeanings::of(view_.kind).keys(path_))
        found.push_back(
            {key.name, kProperty, std::string(), key.meaning, valueOf(key.shape), key.isRequired, false});
    }
    std::erase_if(found, [&](const Candidate& one) { return known.count(one.label) != 0; });
    return found;
  }

  static void addPort(Candidates& found, const PortCard& port, const std::string& value) {
    found.push_back({port.name, kField, port.type, describe(port), value, false, false});
  }

  void addPortsOf(Candidates& found, const std::string& fragment) const {
    const FragmentCard* const card = view_.catalog != nullptr ? view_.catalog->find(fragment) : nullptr;
    if (card == nullptr) return;
    for (const std::vector<PortCard>* const ports : {&card->inputs, &card->outputs}) {
      for (const PortCard& port : *ports) addPort(found, port, "{ \"description\": \"$1\" }");
    }
  }

  Candidates values() const {
    Candidates found;
    switch (roleOf(view_.kind, false, path_)) {
    case Role::fragment: addFragments(found); break;
    case Role::node: addNodes(found); break;
    case Role::output: addOutputs(found); break;
    case Role::graphInput: addGraphInputs(found); break;
    case Role::include:
      if (view_.catalog != nullptr) addTexts(found, view_.catalog->includeNames(), kFile);
      break;
    case Role::profile:
      if (view_.catalog != nullptr) addTexts(found, view_.catalog->profileNames(), kEnumMember);
      break;
    case Role::language: addTexts(found, {"dx11"}, kEnumMember); break;
    default: addWords(found); break;
    }
    return found;
  }

  void addFragments(Candidates& found) const {
    if (view_.catalog == nullptr) return;
    for (const host::FragmentInfo& info : view_.catalog->fragments()) {
      const FragmentCard* const card = view_.catalog->find(info.name);
      found.push_back({info.name, kFunction, card != nullptr ? signatureOf(*card) : std::string(),
                       info.description, std::string(), false, false});
    }
  }

  /// But the one that it would be an input of.
  void addNodes(Candidates& found) const {
    const std::uint32_t around = graph_.nodeAround(place_.container);
    for (const std::uint32_t node : graph_.nodes()) {
      const std::string name = scan_.textOf(node, "name");
      if (node == around || name.empty()) continue;
      found.push_back(
          {name, kVariable, scan_.textOf(node, "fragment"), std::string(), std::string(), false, false});
    }
  }

  void addOutputs(Candidates& found) const {
    const std::uint32_t node = graph_.findNode(scan_.textOf(place_.container, "node"));
    if (node == JsonScan::kNone) return;
    for (const PortCard& port : graph_.outputsOf(node, view_.catalog)) addPort(found, port, std::string());
  }

  void addGraphInputs(Candidates& found) const {
    for (const PortCard& port : readParameters(scan_, scan_.find(scan_.root(), "inputs")))
      if (!port.name.empty()) addPort(found, port, std::string());
  }

  static void addTexts(Candidates& found, const std::vector<std::string>& texts, int kind) {
    for (const std::string& text : texts)
      found.push_back({text, kind, std::string(), std::string(), std::string(), false, false});
  }

  void addWords(Candidates& found) const {
    const KeyMeanings& meanings = KeyMeanings::of(view_.kind);
    addTexts(found, meanings.words(path_), kEnumMember);
    if (!meanings.isBoolean(path_)) return;
    for (const char* word : {"true", "false"})
      found.push_back({word, kValue, std::string(), std::string(), std::string(), false, true});
  }

  const View& view_;
  const JsonScan& scan_;
  GraphView graph_;
  JsonPlace place_;
  JsonPath path_;
};

/// Numbers that are sorted as texts.
std::string sortText(std::size_t index, bool isFirst) {
  std::string digits = std::to_string(index);
  return (isFirst ? "0" : "1") + std::string(digits.size() < 6 ? 6 - digits.size() : 0, '0') + digits;
}

}  // namespace

Json completion(const View& view, Position position, bool hasSnippets) {
  const Completer completer(view, view.offsetOf(position));
  Json items = Json::array();
  const Candidates candidates = completer.candidates();
  if (candidates.empty()) return items;
  const bool isKey = completer.place().at == JsonPlace::At::key;
  const std::string comma = completer.needsComma() ? "," : "";
  const Json range = view.rangeOf(completer.place().literal);
  for (const Candidate& one : candidates) {
    const std::string literal = one.isWord ? one.label : quoted(one.label);
    std::string text = literal;
    bool isSnippet = false;
    if (isKey && !completer.hasColon()) {
      isSnippet = hasSnippets;
      text = isSnippet ? escaped(literal) + ": " + one.value + comma : literal + ": ";
    } else if (!isKey) {
      text += comma;
    }
    Json item = Json::object({{"label", one.label},
                              {"kind", one.kind},
                              {"sortText", sortText(items.size(), one.isFirst)},
                              {"filterText", literal},
                              {"insertTextFormat", isSnippet ? 2 : 1},
                              {"textEdit", Json::object({{"range", range}, {"newText", text}})}});
    if (!one.detail.empty()) item["detail"] = one.detail;
    if (!one.meaning.empty())
      item["documentation"] = Json::object({{"kind", "markdown"}, {"value", one.meaning}});
    items.push_back(std::move(item));
  }
  return items;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
