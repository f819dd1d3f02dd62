#include "tools/lsp/quick_fix.h"

#include "tools/lsp/rename.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

Json quickFixes(const OpenDocument& document, const std::vector<ToldFinding>& findings, const Range& range,
                Encoding encoding, bool hasVersions) {
  Json actions = Json::array();
  const TextBuffer& buffer = document.text().buffer();
  const Span wanted = buffer.spanOf(range, encoding);
  for (const ToldFinding& finding : findings) {
    const auto replacement = findReplacement(document.text(), finding.diagnostic);
    if (!replacement) continue;
    const Span told = findSpan(document.text(), finding.diagnostic);
    const bool touches = (told.begin <= wanted.end && told.end >= wanted.begin) ||
                         (replacement->span.begin <= wanted.end && replacement->span.end >= wanted.begin);
    if (!touches) continue;
    const std::string text =
        replacement->isWhole ? Json(replacement->name).dump(-1, ' ', false, Json::error_handler_t::replace)
                             : replacement->name;
    const Json place = jsonOf(buffer.rangeOf(replacement->span, encoding));
    Json edits = Json::array({Json::object({{"range", place}, {"newText", text}})});
    actions.push_back(Json::object({{"title", "Change to `" + replacement->name + "`"},
                                    {"kind", "quickfix"},
                                    {"isPreferred", true},
                                    {"diagnostics", Json::array({finding.json})},
                                    {"edit", workspaceEdit(document, std::move(edits), hasVersions)}}));
  }
  return actions;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
