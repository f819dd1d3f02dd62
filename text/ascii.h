#pragma once

// Letters whatever their case: of ASCII alone, so that no locale has a say.

#include <algorithm>
#include <string_view>

namespace TolmSDK::Graphics::sfg {

inline wchar_t toLowerAscii(wchar_t c) {
  return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
}

inline char toLowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

inline bool equalsIgnoringCase(std::wstring_view a, std::wstring_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](wchar_t x, wchar_t y) { return toLowerAscii(x) == toLowerAscii(y); });
}

inline bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return toLowerAscii(x) == toLowerAscii(y); });
}

}  // namespace TolmSDK::Graphics::sfg
