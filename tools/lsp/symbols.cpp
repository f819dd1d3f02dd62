#include "tools/lsp/symbols.h"

#include <string>

#include "tools/lsp/roles.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

using Item = JsonScan::Item;
using Kind = JsonScan::Kind;

// SymbolKind of the protocol.
constexpr int kMethod = 6;
constexpr int kField = 8;
constexpr int kFunction = 12;
constexpr int kVariable = 13;
constexpr int kConstant = 14;
constexpr int kObject = 19;
constexpr int kEvent = 24;

struct List {
  const char* key;
  int kind;
  const char* detail;  ///< the key that says more
};

class Outline {
public:
  explicit Outline(const View& view) : view_(view), scan_(view.scan()) {}

  Json ofObjects(std::uint32_t object, const List& list, const std::string& nameless) const {
    Json symbols = Json::array();
    const std::uint32_t array = scan_.find(object, list.key);
    for (std::uint32_t i = scan_.first(array); i != scan_.end(array); i = scan_[i].next) {
      if (scan_[i].kind != Kind::object) continue;
      const std::uint32_t name = scan_.find(i, "name");
      const bool isNamed = name != JsonScan::kNone && scan_[name].kind == Kind::string;
      const Span chosen = isNamed ? scan_[name].span() : Span{scan_[i].begin, scan_[i].begin + 1};
      symbols.push_back(symbol(isNamed ? scan_.textOf(name) : nameless, list.kind, scan_[i].span(), chosen,
                               scan_.textOf(i, list.detail)));
    }
    return symbols;
  }

  /// The members of an object.
  Json ofMembers(std::uint32_t object, int kind) const {
    Json symbols = Json::array();
    for (std::uint32_t i = scan_.first(object); i != scan_.end(object); i = scan_[i].next) {
      if (isNamed(i)) symbols.push_back(ofMember(i, kind));
    }
    return symbols;
  }

  Json ofFragments() const {
    Json symbols = Json::array();
    for (std::uint32_t i = scan_.first(scan_.root()); i != scan_.end(scan_.root()); i = scan_[i].next) {
      if (!isNamed(i) || scan_[i].kind != Kind::object) continue;
      Json fragment = ofMember(i, kFunction);
      fragment["detail"] = scan_.textOf(i, "description");
      Json children = ofMembers(scan_.find(i, "ports"), kField);
      append(children, ofObjects(i, {"uniforms", kConstant, "type"}, "uniform"));
      append(children, ofObjects(i, {"profiles", kMethod, "mode"}, "default"));
      if (!children.empty()) fragment["children"] = std::move(children);
      symbols.push_back(std::move(fragment));
    }
    return symbols;
  }

  static void append(Json& list, Json more) {
    for (Json& one : more) list.push_back(std::move(one));
  }

private:
  /// Comments are no names.
  bool isNamed(std::uint32_t item) const {
    if (!scan_[item].hasKey()) return false;
    const std::string name = scan_.keyOf(item);
    return !name.empty() && !name.starts_with("//") && !name.starts_with("$");
  }

  Json ofMember(std::uint32_t item, int kind) const {
    const Span whole{scan_[item].start(), scan_[item].end};
    return symbol(scan_.keyOf(item), kind, whole, scan_[item].keySpan(), std::string());
  }

  Json symbol(const std::string& name, int kind, Span whole, Span chosen, const std::string& detail) const {
    Json made = Json::object({{"name", name.empty() ? "?" : name},
                              {"kind", kind},
                              {"range", view_.rangeOf(whole)},
                              {"selectionRange", view_.rangeOf(insideOf(scan_, chosen))}});
    if (!detail.empty()) made["detail"] = detail;
    return made;
  }

  const View& view_;
  const JsonScan& scan_;
};

void flatten(const Json& symbols, const std::string& uri, const std::string& container, Json& list) {
  for (const Json& symbol : symbols) {
    Json flat = Json::object({{"name", symbol.at("name")},
                              {"kind", symbol.at("kind")},
                              {"location", Json::object({{"uri", uri}, {"range", symbol.at("range")}})}});
    if (!container.empty()) flat["containerName"] = container;
    list.push_back(std::move(flat));
    if (symbol.contains("children"))
      flatten(symbol.at("children"), uri, symbol.at("name").get<std::string>(), list);
  }
}

}  // namespace

Json documentSymbols(const View& view, bool isTree) {
  const Outline outline(view);
  const std::uint32_t root = view.scan().root();
  Json symbols = Json::array();
  switch (view.kind) {
  case host::DocumentKind::graph:
    for (const List& list : {List{"inputs", kVariable, "type"}, List{"outputs", kField, "type"},
                             List{"uniforms", kConstant, "type"}, List{"nodes", kObject, "fragment"}})
      Outline::append(symbols, outline.ofObjects(root, list, list.key));
    break;
  case host::DocumentKind::environment:
    symbols = outline.ofObjects(root, {"lights", kEvent, "fragment"}, "light");
    break;
  case host::DocumentKind::library: symbols = outline.ofFragments(); break;
  case host::DocumentKind::manifest: break;
  }
  if (isTree) return symbols;
  Json list = Json::array();
  flatten(symbols, view.document.uri(), std::string(), list);
  return list;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
