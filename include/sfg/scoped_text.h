#pragma once

// Views of wide text and the scanning functions that all parsing of shader text is made of.
//
// Every scanning function moves an index forward through a view in one pass, allocates nothing and never
// throws: an index behind the end yields empty views, unterminated comments, lines and bodies run to the end
// of the view.

#include <cstddef>
#include <string_view>

#include "sfg/export.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg {

/// A view of text that someone else owns and keeps alive: the first character and the number of characters.
/// Not terminated by NUL in general. An empty view may have a null pointer or point at a position inside a
/// text; callers use that pointer as a position.
struct SFG_API ScopedText {
  const wchar_t* text = nullptr;
  std::size_t length = 0;

  ScopedText() = default;
  ScopedText(const WString& s) : text(s.data()), length(s.size()) {}
  /// `count` characters of `s` from `pos`, both clamped to its size.
  ScopedText(const WString& s, std::size_t pos, std::size_t count);
  /// Unchecked.
  ScopedText(const wchar_t* p, std::size_t n) : text(p), length(n) {}
  ScopedText& operator=(const WString& s) {
    *this = ScopedText(s);
    return *this;
  }

  bool empty() const noexcept { return length == 0; }
  std::wstring_view view() const noexcept { return {text, length}; }

  /// `count` characters of this view from `pos`, both clamped.
  ScopedText substr(std::size_t pos, std::size_t count) const;
  /// Index of the first `c` inside the view, or the not-found value.
  std::size_t find(wchar_t c) const;
  /// Index of the first occurrence of `needle` at or after `from` that starts inside the view, or the
  /// not-found value. An occurrence may run past the view's end: the text behind it is read while it matches,
  /// up to its terminating NUL, which must exist. An empty needle is found at `from` when that lies inside
  /// the view. Searches in place.
  std::size_t find(const WString& needle, std::size_t from) const;
  /// Replaces the contents of `out`.
  void toString(WString& out) const;
  UString toUString() const;
};

SFG_API void appendString(WString& out, const ScopedText& t);
/// Appends to `key` every character that is not whitespace.
SFG_API void buildKey(WString& key, const ScopedText& t);
/// From the start of `first` to the end of `last`, which lies in the same text behind it.
SFG_API ScopedText buildRange(const ScopedText& first, const ScopedText& last);

/// Past the end of the logical line: a backslash, optionally followed by carriage returns, continues a line.
SFG_API void skipLine(const ScopedText& text, std::size_t& pos);
/// Past one comment that starts exactly at `pos`. `/*/` is a complete comment; block comments do not nest.
SFG_API void skipComment(const ScopedText& text, std::size_t& pos);
/// Past one preprocessor line that starts exactly at `pos`.
SFG_API void skipMacros(const ScopedText& text, std::size_t& pos);
/// Past whitespace and comments; a comment directly behind a comment stops it.
SFG_API void skipWhitespaces(const ScopedText& text, std::size_t& pos);
/// To the next token character outside of comments and preprocessor lines.
SFG_API void skipNonKeywords(const ScopedText& text, std::size_t& pos);

/// Skips whitespace and takes a balanced body, brackets included; `pos` then stands behind it. An empty view
/// at `pos` when no `open` stands there. Brackets in comments and preprocessor lines do not count, those in
/// quotes do.
SFG_API ScopedText getBracketBody(const ScopedText& text, std::size_t& pos, wchar_t open, wchar_t close);
/// The run of token characters at `pos`, possibly empty.
SFG_API ScopedText getKeyword(const ScopedText& text, std::size_t& pos);
/// A line feed exactly at `pos`, or an empty view there.
SFG_API ScopedText getOptionalReturn(const ScopedText& text, std::size_t& pos);
/// Skips whitespace (also when nothing follows) and takes a `;`, or an empty view there.
SFG_API ScopedText getOptionalSemiColon(const ScopedText& text, std::size_t& pos);

/// Whether `literal` stands at `pos`, ASCII letters compared without case, whatever follows it. False when
/// the view is shorter than the literal, or ends inside it.
SFG_API bool isEqual(const ScopedText& text, std::size_t pos, const wchar_t* literal);

/// ASCII letters, digits and `_`.
SFG_API bool isTokenChar(wchar_t c);
/// ASCII letters, `_` and `[`.
SFG_API bool isTokenChar_firstLetter(wchar_t c);
/// Tab, line feed, carriage return and blank.
SFG_API bool isWhitespace(wchar_t c);

/// Removes leading whitespace only.
SFG_API void trimWhiteSpaces(ScopedText& text);
SFG_API void trimWhiteSpaces(WString& text);

}  // namespace TolmSDK::Graphics::sfg
