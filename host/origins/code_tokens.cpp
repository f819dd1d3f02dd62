#include "host/origins/code_tokens.h"

#include <algorithm>

#include "host/shader/identifiers.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

bool isBlank(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

/// Behind the blanks and comments at `pos`.
std::size_t skipBlanks(std::wstring_view code, std::size_t pos) {
  while (pos < code.size()) {
    if (isBlank(code[pos])) {
      ++pos;
    } else if (code.substr(pos, 2) == L"//") {
      pos = std::min(code.find(L'\n', pos), code.size());
    } else if (code.substr(pos, 2) == L"/*") {
      const std::size_t end = code.find(L"*/", pos + 2);
      pos = end == code.npos ? code.size() : end + 2;
    } else {
      break;
    }
  }
  return pos;
}

/// Behind the number at `pos`, its suffix and the sign of its exponent included.
std::size_t skipNumber(std::wstring_view code, std::size_t pos) {
  const bool isHexadecimal = code[pos] == L'0' && pos + 1 < code.size() && (code[pos + 1] | 0x20) == L'x';
  for (; pos < code.size(); ++pos) {
    const wchar_t c = code[pos];
    const bool isSign = c == L'+' || c == L'-';
    if (isSign && !isHexadecimal && (code[pos - 1] | 0x20) == L'e') continue;
    if (!isIdentifierPart(c) && c != L'.') break;
  }
  return pos;
}

}  // namespace

CodeTokens tokensOf(std::wstring_view code, std::size_t from) {
  CodeTokens tokens;
  for (std::size_t pos = skipBlanks(code, from); pos < code.size(); pos = skipBlanks(code, pos)) {
    CodeToken token{pos, pos + 1, isIdentifierStart(code[pos])};
    const bool isFraction = code[pos] == L'.' && pos + 1 < code.size() && isDigit(code[pos + 1]);
    const bool isMember = isFraction && !tokens.empty() && tokens.back().end == pos && tokens.back().isName;
    if (token.isName) {
      while (token.end < code.size() && isIdentifierPart(code[token.end])) ++token.end;
    } else if (isDigit(code[pos]) || (isFraction && !isMember)) {
      token.end = std::max(skipNumber(code, pos), pos + 1);
    }
    tokens.push_back(token);
    pos = token.end;
  }
  return tokens;
}

std::size_t tokenAt(const CodeTokens& tokens, std::size_t place) {
  const auto found = std::partition_point(tokens.begin(), tokens.end(),
                                          [&](const CodeToken& token) { return token.end <= place; });
  return static_cast<std::size_t>(found - tokens.begin());
}

std::size_t behindBrackets(std::wstring_view code, const CodeTokens& tokens, std::size_t open) {
  std::size_t depth = 0;
  for (std::size_t i = open; i < tokens.size(); ++i) {
    const wchar_t c = code[tokens[i].begin];
    if (c == L'(' || c == L'{' || c == L'[') ++depth;
    if (c == L')' || c == L'}' || c == L']') {
      if (depth <= 1) return i + 1;
      --depth;
    }
  }
  return tokens.size();
}

}  // namespace TolmSDK::Graphics::sfg::host
