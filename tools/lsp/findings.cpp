#include "tools/lsp/findings.h"

#include <algorithm>

#include "sfg/host/suggest.h"
#include "tools/lsp/json_place.h"
#include "tools/lsp/roles.h"
#include "tools/lsp/uri.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

using host::Severity;
using Kind = JsonScan::Kind;

bool isWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

/// The word that begins at `offset`, or one character.
Span wordAt(std::string_view text, std::size_t offset, std::size_t end) {
  std::size_t at = offset;
  while (at < end && isWordCharacter(text[at])) ++at;
  if (at == offset && at < end) ++at;
  return {offset, at};
}

std::size_t offsetOf(const ScannedText& text, const host::Diagnostic& diagnostic) {
  return text.buffer().offsetOfPlace(diagnostic.line, diagnostic.column);
}

bool isNear(const std::string& name, const std::string& meant) {
  return name != meant && host::suggest(name, std::span(&meant, 1)) == meant;
}

int severityOf(Severity severity) {
  switch (severity) {
  case Severity::error:
  case Severity::message: return 1;
  case Severity::warning: return 2;
  case Severity::note: return 3;
  }
  return 1;
}

/// The literal of the object's own keys and texts that is near to the name.
std::optional<Span> nearLiteral(const JsonScan& scan, std::uint32_t object, const std::string& meant) {
  for (std::uint32_t i = scan.first(object); i != scan.end(object); i = scan[i].next) {
    if (scan[i].kind == Kind::string && isNear(scan.textOf(i), meant)) return scan[i].span();
    if (scan[i].hasKey() && isNear(scan.keyOf(i), meant)) return scan[i].keySpan();
  }
  return std::nullopt;
}

}  // namespace

Span findSpan(const ScannedText& text, const host::Diagnostic& diagnostic) {
  const JsonScan& scan = text.scan();
  if (diagnostic.line == 0) return {0, 0};
  if (const auto replacement = findReplacement(text, diagnostic)) return replacement->span;
  const std::size_t offset = offsetOf(text, diagnostic);
  const JsonPlace place = findTouched(scan, offset);
  if (place.at != JsonPlace::At::nothing && offset < place.literal.end) {
    if (offset == place.literal.begin) return place.literal;
    return wordAt(scan.text(), offset, place.literal.end);
  }
  const std::string_view rest = scan.text().substr(std::min(offset, scan.text().size()), 1);
  return {offset, offset + (rest == "\n" || rest == "\r" ? 0 : rest.size())};
}

std::optional<Replacement> findReplacement(const ScannedText& text, const host::Diagnostic& diagnostic) {
  const std::string& meant = diagnostic.suggestion;
  if (meant.empty() || diagnostic.line == 0) return std::nullopt;
  const JsonScan& scan = text.scan();
  const std::size_t offset = offsetOf(text, diagnostic);
  const JsonPlace place = findTouched(scan, offset);
  if (place.at == JsonPlace::At::nothing) {
    const std::uint32_t item = scan.lastBefore(offset);
    if (item == JsonScan::kNone || scan[item].begin != offset) return std::nullopt;
    const auto literal = nearLiteral(scan, item, meant);
    return literal ? std::optional(Replacement{*literal, meant, true}) : std::nullopt;
  }
  if (offset == place.literal.begin) {
    const bool isKey = place.at == JsonPlace::At::key;
    const std::string name = isKey ? scan.keyOf(place.item) : scan.textOf(place.item);
    return isNear(name, meant) ? std::optional(Replacement{place.literal, meant, true}) : std::nullopt;
  }
  const Span word = wordAt(scan.text(), offset, place.literal.end);
  const std::string name(scan.text().substr(word.begin, word.size()));
  return isNear(name, meant) ? std::optional(Replacement{word, meant, false}) : std::nullopt;
}

Json jsonOf(const host::Diagnostic& diagnostic, std::span<const host::Diagnostic> notes,
            const ScannedText& text, Encoding encoding, const TextOf& textOf) {
  Json json = Json::object({{"range", jsonOf(text.buffer().rangeOf(findSpan(text, diagnostic), encoding))},
                            {"severity", severityOf(diagnostic.severity)},
                            {"code", diagnostic.identifier},
                            {"source", "sfg"},
                            {"message", diagnostic.text}});
  Json related = Json::array();
  for (const host::Diagnostic& note : notes) {
    const ScannedText* const other = note.file.empty() ? nullptr : textOf(note.file);
    if (other == nullptr) continue;
    const Json range = jsonOf(other->buffer().rangeOf(findSpan(*other, note), encoding));
    related.push_back(Json::object(
        {{"location", Json::object({{"uri", uriOf(note.file)}, {"range", range}})}, {"message", note.text}}));
  }
  if (!related.empty()) json["relatedInformation"] = std::move(related);
  return json;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
