#pragma once

// The scanning functions of sfg/scoped_text.h, inline for the parsers of this folder: exported functions
// cannot be inlined where they are called.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <string_view>
#include <type_traits>

#include "sfg/scoped_text.h"
#include "text/ascii.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::scan {

/// Classes of the ASCII characters; no other character has one.
enum CharacterClass : std::uint8_t { kNoClass = 0, kToken = 1, kWhitespace = 2 };

inline constexpr std::array<std::uint8_t, 128> kCharacterClasses = [] {
  std::array<std::uint8_t, 128> classes{};
  for (std::size_t c = 'a'; c <= 'z'; ++c) classes[c] = kToken;
  for (std::size_t c = 'A'; c <= 'Z'; ++c) classes[c] = kToken;
  for (std::size_t c = '0'; c <= '9'; ++c) classes[c] = kToken;
  classes['_'] = kToken;
  classes['\t'] = classes['\n'] = classes['\r'] = classes[' '] = kWhitespace;
  return classes;
}();

inline std::uint8_t classOf(wchar_t c) {
  const auto code = static_cast<std::make_unsigned_t<wchar_t>>(c);
  return code < kCharacterClasses.size() ? kCharacterClasses[code] : std::uint8_t{kNoClass};
}

inline bool isTokenChar(wchar_t c) { return classOf(c) == kToken; }

inline bool isWhitespace(wchar_t c) { return classOf(c) == kWhitespace; }

/// The empty view at `pos`; at the end when `pos` lies behind it.
inline ScopedText emptyAt(const ScopedText& text, std::size_t pos) {
  return {text.text + std::min(pos, text.length), 0};
}

inline bool startsComment(const ScopedText& text, std::size_t pos) {
  return text.length > 1 && pos < text.length - 1 && text.text[pos] == L'/' &&
         (text.text[pos + 1] == L'/' || text.text[pos + 1] == L'*');
}

inline void skipLine(const ScopedText& text, std::size_t& pos) {
  bool continued = false;
  while (pos < text.length) {
    const wchar_t c = text.text[pos++];
    if (c == L'\n') {
      if (!continued) return;
      continued = false;
    } else if (c != L'\r') {
      continued = c == L'\\';
    }
  }
}

/// Past the comment at `pos`, where startsComment holds.
inline void skipStartedComment(const ScopedText& text, std::size_t& pos) {
  if (text.text[pos + 1] == L'/') return scan::skipLine(text, pos);
  // The search starts at the opener's own asterisk, so that `/*/` ends where it begins.
  for (++pos; pos + 1 < text.length; ++pos) {
    if (text.text[pos] == L'*' && text.text[pos + 1] == L'/') {
      pos += 2;
      return;
    }
  }
  pos = text.length;
}

inline void skipWhitespaces(const ScopedText& text, std::size_t& pos) {
  if (startsComment(text, pos)) skipStartedComment(text, pos);
  while (pos < text.length && scan::isWhitespace(text.text[pos])) {
    ++pos;
    if (startsComment(text, pos)) skipStartedComment(text, pos);
  }
}

inline void skipNonKeywords(const ScopedText& text, std::size_t& pos) {
  while (pos < text.length) {
    const wchar_t c = text.text[pos];
    if (scan::isTokenChar(c)) return;
    if (c == L'#') {
      scan::skipLine(text, pos);
    } else if (startsComment(text, pos)) {
      skipStartedComment(text, pos);
    } else {
      ++pos;
    }
  }
}

inline ScopedText getBracketBody(const ScopedText& text, std::size_t& pos, wchar_t open, wchar_t close) {
  scan::skipWhitespaces(text, pos);
  if (pos >= text.length || text.text[pos] != open) return emptyAt(text, pos);
  const std::size_t start = pos++;
  std::size_t depth = 1;
  while (depth > 0 && pos < text.length) {
    wchar_t c = text.text[pos];
    // One comment and one preprocessor line are passed before a character is looked at.
    if (c == L'/' || c == L'#') {
      if (startsComment(text, pos)) skipStartedComment(text, pos);
      if (pos < text.length && text.text[pos] == L'#') scan::skipLine(text, pos);
      if (pos >= text.length) break;
      c = text.text[pos];
    }
    ++pos;
    // A bracket that opens and closes alike leaves the depth as it is.
    if (c == open) ++depth;
    if (c == close) --depth;
  }
  return {text.text + start, pos - start};
}

inline ScopedText getKeyword(const ScopedText& text, std::size_t& pos) {
  if (pos >= text.length) return emptyAt(text, text.length);
  const std::size_t start = pos;
  while (pos < text.length && scan::isTokenChar(text.text[pos])) ++pos;
  return {text.text + start, pos - start};
}

/// The one character at `pos` when it is `c`, else the empty view there.
inline ScopedText getOptional(const ScopedText& text, std::size_t& pos, wchar_t c) {
  if (pos >= text.length || text.text[pos] != c) return emptyAt(text, pos);
  return {text.text + pos++, 1};
}

inline ScopedText getOptionalSemiColon(const ScopedText& text, std::size_t& pos) {
  scan::skipWhitespaces(text, pos);
  return getOptional(text, pos, L';');
}

inline bool isEqual(const ScopedText& text, std::size_t pos, std::wstring_view literal) {
  if (literal.size() > text.length) return false;
  if (literal.empty()) return true;
  if (pos > text.length || text.length - pos < literal.size()) return false;
  const wchar_t* at = text.text + pos;
  return std::equal(literal.begin(), literal.end(), at,
                    [](wchar_t a, wchar_t b) { return toLowerAscii(a) == toLowerAscii(b); });
}

inline void trimWhiteSpaces(ScopedText& text) {
  while (text.length > 0 && scan::isWhitespace(*text.text)) {
    ++text.text;
    --text.length;
  }
}

inline ScopedText buildRange(const ScopedText& first, const ScopedText& last) {
  return {first.text, static_cast<std::size_t>(last.text - first.text) + last.length};
}

/// Index of the first `needle` at or after `from` that starts before `limit`, or the not-found value. The
/// needle is not empty and holds no NUL; the text behind `limit` is read while it matches and ends with a
/// NUL.
inline std::size_t findOccurrence(const wchar_t* text, std::size_t limit, std::wstring_view needle,
                                  std::size_t from) {
  if (from >= limit) return kNotFound;
  // Occurrences that end in front of the limit.
  const std::size_t inside = std::wstring_view(text, limit).find(needle, from);
  if (inside != std::wstring_view::npos) return inside;
  // Occurrences that run past it: all but the last character of the needle may stand in front of it.
  std::size_t start = limit >= needle.size() ? limit - needle.size() + 1 : 0;
  for (start = std::max(start, from); start < limit; ++start) {
    std::size_t same = 0;
    while (same < needle.size() && text[start + same] == needle[same]) ++same;
    if (same == needle.size()) return start;
  }
  return kNotFound;
}

/// Number of characters in front of the first NUL of the view: what an underlying NUL-terminated text shows
/// of it.
inline std::size_t lengthBeforeNul(const ScopedText& text) {
  if (text.length == 0) return 0;
  const wchar_t* nul = std::wmemchr(text.text, L'\0', text.length);
  return nul == nullptr ? text.length : static_cast<std::size_t>(nul - text.text);
}

/// Whether find() can find the needle at all: none that is empty or holds a NUL occurs in a NUL-terminated
/// text.
inline bool isSearchable(std::wstring_view needle) {
  return !needle.empty() && needle.find(L'\0') == std::wstring_view::npos;
}

}  // namespace TolmSDK::Graphics::sfg::scan
