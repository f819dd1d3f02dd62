#pragma once

// Steps through wide texts and UTF-8, one code point at a time. The rules of UTF-8 are ICU's.

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "tolmsdk/types.h"

namespace TolmSDK {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// The code point at `index` of a wide text, behind which `index` moves. A surrogate pair is one code point
/// in either width of wchar_t; a lone surrogate and a value that is no code point are U+FFFD.
inline char32_t nextCodePoint(std::wstring_view text, std::size_t& index) noexcept {
  const auto unit = static_cast<char32_t>(text[index++]);
  if (unit < 0xD800 || (unit > 0xDFFF && unit <= 0x10FFFF)) return unit;
  if (U16_IS_LEAD(unit) && index < text.size()) {
    const auto trail = static_cast<char32_t>(text[index]);
    if (U16_IS_TRAIL(trail)) {
      ++index;
      return static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, trail));
    }
  }
  return kReplacementCharacter;
}

/// Writes the UTF-8 of a code point to `out`, which has room for four bytes; answers how many it took.
inline std::size_t writeUtf8(char* out, char32_t codePoint) noexcept {
  const auto character = static_cast<UChar32>(codePoint);
  std::size_t length = 0;
  U8_APPEND_UNSAFE(out, length, character);
  return length;
}

/// Writes the wide characters of a code point to `out`, which has room for two; answers how many it took.
inline std::size_t writeWide(wchar_t* out, char32_t codePoint) noexcept {
  if (sizeof(wchar_t) == 2 && codePoint > 0xFFFF) {
    out[0] = static_cast<wchar_t>(U16_LEAD(codePoint));
    out[1] = static_cast<wchar_t>(U16_TRAIL(codePoint));
    return 2;
  }
  out[0] = static_cast<wchar_t>(codePoint);
  return 1;
}

/// Appends the wide text of UTF-8 bytes; each maximal ill-formed part becomes one U+FFFD.
void appendUtf8(WString& out, std::string_view bytes);
/// Replaces `out` by the wide text of UTF-8 bytes; each maximal ill-formed part becomes one U+FFFD.
void assignFromUtf8(WString& out, std::string_view bytes);

/// Whether the bytes are well-formed UTF-8.
bool isUtf8(std::string_view bytes) noexcept;

/// The bytes with each maximal ill-formed part replaced by U+FFFD.
std::string repairedUtf8(std::string_view bytes);

/// The bytes without a leading byte-order mark.
std::string_view withoutByteOrderMark(std::string_view bytes) noexcept;

}  // namespace TolmSDK
