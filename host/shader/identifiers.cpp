#include "host/shader/identifiers.h"

namespace TolmSDK::Graphics::sfg::host {

bool isIdentifierStart(wchar_t c) noexcept {
  return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_';
}

bool isIdentifierPart(wchar_t c) noexcept { return isIdentifierStart(c) || (c >= L'0' && c <= L'9'); }

Set<std::wstring_view> identifiersOf(std::wstring_view code) {
  Set<std::wstring_view> found;
  std::size_t pos = 0;
  while (pos < code.size()) {
    if (code.substr(pos, 2) == L"//") {
      pos = std::min(code.find(L'\n', pos), code.size());
    } else if (code.substr(pos, 2) == L"/*") {
      const std::size_t end = code.find(L"*/", pos + 2);
      pos = end == code.npos ? code.size() : end + 2;
    } else if (isIdentifierPart(code[pos])) {
      std::size_t end = pos;
      while (end < code.size() && isIdentifierPart(code[end])) ++end;
      if (isIdentifierStart(code[pos])) found.insert(code.substr(pos, end - pos));
      pos = end;
    } else {
      ++pos;
    }
  }
  return found;
}

}  // namespace TolmSDK::Graphics::sfg::host
