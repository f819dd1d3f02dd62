#pragma once

// What a question about a document is answered from.

#include <functional>
#include <string>

#include "tools/lsp/catalog.h"
#include "tools/lsp/documents.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// For the length of one answer.
struct View {
  const OpenDocument& document;
  host::DocumentKind kind;
  Encoding encoding;
  const Catalog* catalog;  ///< null without libraries
  /// Null for a file that cannot be read.
  std::function<const ScannedText*(const std::string& file)> textOf;

  const JsonScan& scan() const { return document.text().scan(); }
  std::size_t offsetOf(Position position) const {
    return document.text().buffer().offsetOf(position, encoding);
  }
  Json rangeOf(Span span) const { return jsonOf(document.text().buffer().rangeOf(span, encoding)); }
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
