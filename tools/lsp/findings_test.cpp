#include "tools/lsp/findings.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

const std::string kText =
    "{\n  \"nodes\": [ { \"fragment\": \"chekcer\" } ],\n  \"code\": [\"a = farc(b);\"],\n  \"n\": 12\n}\n";

host::Diagnostic at(std::size_t line, std::size_t column, const std::string& suggestion = {}) {
  return {host::Severity::warning, "a.json", line, column, "odd", "some-kind", suggestion};
}

std::string underlined(const host::Diagnostic& diagnostic) {
  const ScannedText text(kText);
  const Span span = findSpan(text, diagnostic);
  return kText.substr(span.begin, span.size());
}

/// "OLD -> NEW", or "-".
std::string mended(const host::Diagnostic& diagnostic) {
  const ScannedText text(kText);
  const auto replacement = findReplacement(text, diagnostic);
  if (!replacement) return "-";
  return kText.substr(replacement->span.begin, replacement->span.size()) + " -> " + replacement->name;
}

TEST(FindingsTest, UnderlinesWhatStandsAtThePlace) {
  EXPECT_EQ(underlined(at(2, 3)), "\"nodes\"");
  EXPECT_EQ(underlined(at(2, 14)), "{");
  EXPECT_EQ(underlined(at(3, 17)), "farc");
  EXPECT_EQ(underlined(at(3, 21)), "(");
  EXPECT_EQ(underlined(at(4, 8)), "12");
  EXPECT_EQ(underlined(at(0, 0)), "");
  EXPECT_EQ(underlined(at(99, 1)), "");
}

TEST(FindingsTest, MendsTheNameThatIsNear) {
  EXPECT_EQ(mended(at(2, 28, "checker")), "\"chekcer\" -> checker");
  EXPECT_EQ(mended(at(2, 14, "checker")), "\"chekcer\" -> checker");
  EXPECT_EQ(mended(at(2, 3, "node")), "\"nodes\" -> node");
  EXPECT_EQ(mended(at(3, 17, "frac")), "farc -> frac");
  EXPECT_EQ(mended(at(3, 17, "other")), "-");
  EXPECT_EQ(mended(at(2, 28)), "-");
  EXPECT_EQ(mended(at(0, 0, "checker")), "-");
}

TEST(FindingsTest, TellsNotesAsRelatedInformation) {
  const ScannedText text(kText);
  const host::Diagnostic note{host::Severity::note, "/b.json", 2, 3, "here", "k"};
  const Json json =
      jsonOf(at(4, 8), std::span(&note, 1), text, Encoding::utf16, [&](const std::string&) { return &text; });
  EXPECT_EQ(json.dump(), R"({"code":"some-kind","message":"odd","range":{"end":{"character":9,"line":3},)"
                         R"("start":{"character":7,"line":3}},"relatedInformation":[{"location":{"range":)"
                         R"({"end":{"character":9,"line":1},"start":{"character":2,"line":1}},)"
                         R"("uri":"file:///b.json"},"message":"here"}],"severity":2,"source":"sfg"})");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
