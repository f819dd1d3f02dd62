#pragma once

// Identifiers in shader text.

#include <algorithm>
#include <string_view>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

bool isIdentifierStart(wchar_t c) noexcept;
bool isIdentifierPart(wchar_t c) noexcept;

/// Calls `visit(identifier)` for each identifier (keywords included) of shader text, in order; comments and
/// numbers are skipped. The views point into `code`.
template <class Visit>
void forEachIdentifier(std::wstring_view code, const Visit& visit) {
  std::size_t pos = 0;
  while (pos < code.size()) {
    const wchar_t next = code[pos] == L'/' && pos + 1 < code.size() ? code[pos + 1] : L'\0';
    if (next == L'/') {
      pos = std::min(code.find(L'\n', pos), code.size());
    } else if (next == L'*') {
      const std::size_t end = code.find(L"*/", pos + 2);
      pos = end == code.npos ? code.size() : end + 2;
    } else if (isIdentifierPart(code[pos])) {
      const std::size_t start = pos;
      while (pos < code.size() && isIdentifierPart(code[pos])) ++pos;
      if (isIdentifierStart(code[start])) visit(code.substr(start, pos - start));
    } else {
      ++pos;
    }
  }
}

/// The identifiers (keywords included) of shader text, each once; comments are skipped. The views point into
/// `code`.
Set<std::wstring_view> identifiersOf(std::wstring_view code);

}  // namespace TolmSDK::Graphics::sfg::host
