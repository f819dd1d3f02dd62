#include "host/diagnostics/raw_statements.h"

#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Where raw text holds more than comments, preprocessor lines and blanks, or its end.
std::size_t findStatement(const ScopedText& raw) {
  std::size_t pos = 0;
  while (pos < raw.length) {
    const std::size_t start = pos;
    skipWhitespaces(raw, pos);
    if (pos < raw.length && raw.text[pos] == L'#') skipLine(raw, pos);
    if (pos == start) break;
  }
  return pos;
}

}  // namespace

std::optional<std::size_t> findRawStatement(const CodeSnippet& snippet) {
  const std::wstring_view code = snippet.getCode();
  for (std::size_t i = 0; i < snippet.getNumSymbols(); ++i) {
    const ShaderSymbol& symbol = snippet.getSymbol(i);
    if (symbol.getType() != EShaderSymbolType::unknown) continue;
    const std::size_t statement = findStatement(symbol.getRange());
    if (statement == symbol.getRange().length) continue;
    return static_cast<std::size_t>(symbol.getRange().text - code.data()) + statement;
  }
  return std::nullopt;
}

}  // namespace TolmSDK::Graphics::sfg::host
