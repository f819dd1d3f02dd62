#include "host/documents/document_kind.h"

#include <algorithm>

#include "host/documents/keys.h"
#include "host/documents/near_name.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// How many keys are those of the table, and how many are near ones.
struct Likeness {
  std::size_t known = 0;
  std::size_t near = 0;
  bool operator>(const Likeness& other) const {
    return known != other.known ? known > other.known : near > other.near;
  }
};

Likeness likenessOf(const std::vector<std::string>& keys, const KeyTable& table) {
  std::vector<std::string> names;
  for (const Key& key : table.keys) names.emplace_back(key.name);
  Likeness likeness;
  for (const std::string& key : keys) {
    if (table.find(key) != nullptr) {
      ++likeness.known;
    } else if (!nearestName(key, names).empty()) {
      ++likeness.near;
    }
  }
  return likeness;
}

/// Behind the string whose first quotation mark stands at `at`.
std::size_t endOfString(std::string_view json, std::size_t at) {
  for (++at; at < json.size() && json[at] != '"'; ++at) {
    if (json[at] == '\\') ++at;
  }
  return std::min(at + 1, json.size());
}

std::size_t behindBlanks(std::string_view json, std::size_t at) {
  return std::min(json.find_first_not_of(" \t\r\n", at), json.size());
}

}  // namespace

std::optional<DocumentKind> kindOfKeys(const std::vector<std::string>& keys) {
  const Likeness graph = likenessOf(keys, graphKeys());
  const Likeness environment = likenessOf(keys, environmentKeys());
  const Likeness manifest = likenessOf(keys, manifestKeys());
  if (manifest > graph && manifest > environment) return DocumentKind::manifest;
  if (environment > graph) return DocumentKind::environment;
  if (graph > Likeness()) return DocumentKind::graph;
  return std::nullopt;
}

std::vector<std::string> rootKeys(std::string_view json) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (json.starts_with(kByteOrderMark)) json.remove_prefix(kByteOrderMark.size());
  std::vector<std::string> keys;
  std::size_t at = behindBlanks(json, 0);
  if (at == json.size() || json[at] != '{') return keys;
  std::size_t depth = 0;
  while (at < json.size()) {
    const char c = json[at];
    if (c == '"') {
      const std::size_t end = endOfString(json, at);
      const std::size_t next = behindBlanks(json, end);
      if (depth == 1 && next < json.size() && json[next] == ':')
        keys.emplace_back(json.substr(at + 1, end - at - 2));
      at = end;
      continue;
    }
    if (c == '{' || c == '[') ++depth;
    if ((c == '}' || c == ']') && --depth == 0) break;
    ++at;
  }
  return keys;
}

}  // namespace TolmSDK::Graphics::sfg::host
