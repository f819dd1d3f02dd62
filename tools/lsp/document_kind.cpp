#include "tools/lsp/document_kind.h"

#include <filesystem>
#include <vector>

#include "sfg/host/suggest.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

using host::DocumentKind;

constexpr std::size_t kMostKeys = 64;

std::optional<DocumentKind> named(const std::string& text) {
  for (const auto& [word, kind] :
       {std::pair("library", DocumentKind::library), std::pair("graph", DocumentKind::graph),
        std::pair("environment", DocumentKind::environment)}) {
    if (text.find(word) != text.npos) return kind;
  }
  return std::nullopt;
}

/// The kind that has a key of this name, or of a near one.
std::optional<DocumentKind> kindOfKey(const std::string& key) {
  static const std::vector<std::string> known = {"nodes", "preprocess", "postprocess", "lights"};
  const std::string near = host::suggest(key, known);
  if (near.empty()) return std::nullopt;
  return near == "lights" ? DocumentKind::environment : DocumentKind::graph;
}

}  // namespace

std::optional<DocumentKind> kindOf(const std::string& path, const std::string& languageId,
                                   const JsonScan& scan) {
  if (std::filesystem::path(path).extension() == ".fraglib") return DocumentKind::library;
  if (languageId.starts_with("sfg")) {
    if (const auto kind = named(languageId)) return kind;
  }
  if (const std::string schema = scan.textOf(scan.root(), "$schema"); !schema.empty()) {
    if (const auto kind = named(std::filesystem::path(schema).filename().string())) return kind;
  }
  std::size_t seen = 0;
  for (std::uint32_t i = scan.first(scan.root()); i != scan.end(scan.root()) && seen < kMostKeys;
       i = scan[i].next, ++seen) {
    if (!scan[i].hasKey()) continue;
    if (const auto kind = kindOfKey(scan.keyOf(i))) return kind;
  }
  return std::nullopt;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
