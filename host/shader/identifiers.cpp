#include "host/shader/identifiers.h"

namespace TolmSDK::Graphics::sfg::host {

bool isIdentifierStart(wchar_t c) noexcept {
  return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_';
}

bool isIdentifierPart(wchar_t c) noexcept { return isIdentifierStart(c) || (c >= L'0' && c <= L'9'); }

Set<std::wstring_view> identifiersOf(std::wstring_view code) {
  Set<std::wstring_view> found;
  forEachIdentifier(code, [&](std::wstring_view identifier) { found.insert(identifier); });
  return found;
}

}  // namespace TolmSDK::Graphics::sfg::host
