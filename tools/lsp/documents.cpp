#include "tools/lsp/documents.h"

#include <utility>
#include <vector>

#include "tools/lsp/document_kind.h"
#include "tools/lsp/uri.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

std::size_t numberOf(const Json& object, const char* key) {
  const Json& number = memberOf(object, key);
  if (!number.is_number_integer() || number.get<std::int64_t>() < 0) {
    throw RequestError(ErrorCode::invalidParams, "`" + std::string(key) + "` is a number from 0 on");
  }
  return number.get<std::size_t>();
}

}  // namespace

const JsonScan& ScannedText::scan() const {
  if (!scan_) scan_.emplace(buffer_.text());
  return *scan_;
}

void ScannedText::replace(Span span, std::string_view text) {
  scan_.reset();
  buffer_.replace(span, text);
}

OpenDocument::OpenDocument(std::string uri, std::string languageId, std::int64_t version, std::string text)
    : uri_(std::move(uri)), languageId_(std::move(languageId)), version_(version),
      text_(std::make_unique<ScannedText>(std::move(text))) {
  const auto path = pathOf(uri_);
  name_ = path ? path->string() : uri_;
}

std::optional<host::DocumentKind> OpenDocument::kind() const {
  return kindOf(name_, languageId_, text_->scan());
}

void OpenDocument::change(const Json& changes, std::int64_t version, Encoding encoding) {
  if (!changes.is_array()) throw RequestError(ErrorCode::invalidParams, "`contentChanges` is an array");
  // All or none of them.
  std::vector<std::optional<Range>> ranges;
  for (const Json& change : changes) {
    requiredString(change, "text");
    const Json& range = memberOf(change, "range");
    ranges.push_back(range.is_null() ? std::nullopt : std::optional(rangeOf(range)));
  }
  version_ = version;
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    const std::string& text = requiredString(changes[i], "text");
    if (ranges[i]) {
      text_->replace(text_->buffer().spanOf(*ranges[i], encoding), text);
    } else {
      text_ = std::make_unique<ScannedText>(text);
    }
  }
}

Position positionOf(const Json& json) { return {numberOf(json, "line"), numberOf(json, "character")}; }

Range rangeOf(const Json& json) {
  return {positionOf(memberOf(json, "start")), positionOf(memberOf(json, "end"))};
}

Json jsonOf(Position position) {
  return Json::object({{"line", position.line}, {"character", position.character}});
}

Json jsonOf(const Range& range) {
  return Json::object({{"start", jsonOf(range.start)}, {"end", jsonOf(range.end)}});
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
