#pragma once

// The documents that an editor has open.

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "sfg/host/schema.h"
#include "tools/lsp/json_scan.h"
#include "tools/lsp/rpc.h"
#include "tools/lsp/text_buffer.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// A text with what was read of it, made when it is asked for.
class ScannedText {
public:
  explicit ScannedText(std::string text) : buffer_(std::move(text)) {}
  ScannedText(const ScannedText&) = delete;
  ScannedText& operator=(const ScannedText&) = delete;

  const TextBuffer& buffer() const noexcept { return buffer_; }
  const JsonScan& scan() const;
  void replace(Span span, std::string_view text);

private:
  TextBuffer buffer_;
  mutable std::optional<JsonScan> scan_;
};

/// One open document.
class OpenDocument {
public:
  OpenDocument(std::string uri, std::string languageId, std::int64_t version, std::string text);

  const std::string& uri() const noexcept { return uri_; }
  /// What diagnostics call it: the path of a file, else the address.
  const std::string& name() const noexcept { return name_; }
  std::int64_t version() const noexcept { return version_; }
  const ScannedText& text() const noexcept { return *text_; }
  /// Nothing for a JSON file that is none of ours.
  std::optional<host::DocumentKind> kind() const;

  /// Takes "contentChanges": a whole text, or edits of it one after another. Throws RequestError for what is
  /// neither.
  void change(const Json& changes, std::int64_t version, Encoding encoding);

private:
  std::string uri_;
  std::string languageId_;
  std::string name_;
  std::int64_t version_;
  std::unique_ptr<ScannedText> text_;
};

/// By address.
using OpenDocuments = std::map<std::string, OpenDocument>;

/// Throws RequestError for what is no position or range.
Position positionOf(const Json& json);
Range rangeOf(const Json& json);
Json jsonOf(Position position);
Json jsonOf(const Range& range);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
