#include "sfg/scoped_text.h"

#include <algorithm>

#include "text/scan.h"

namespace TolmSDK::Graphics::sfg {

ScopedText::ScopedText(const WString& s, std::size_t pos, std::size_t count)
    : ScopedText(ScopedText(s).substr(pos, count)) {}

ScopedText ScopedText::substr(std::size_t pos, std::size_t count) const {
  const std::size_t start = std::min(pos, length);
  return {text + start, std::min(count, length - start)};
}

std::size_t ScopedText::find(wchar_t c) const {
  static_assert(kNotFound == std::wstring_view::npos);
  return view().find(c);
}

std::size_t ScopedText::find(const WString& needle, std::size_t from) const {
  if (needle.empty()) return from < length ? from : kNotFound;
  if (!scan::isSearchable(needle)) return kNotFound;
  const std::size_t found = scan::findOccurrence(text, length, needle, from);
  if (found == kNotFound) return kNotFound;
  // A NUL inside the view ends the text: nothing is found behind it.
  return scan::lengthBeforeNul({text, found}) == found ? found : kNotFound;
}

void ScopedText::toString(WString& out) const { out.assign(view()); }

UString ScopedText::toUString() const { return UString(view()); }

void appendString(WString& out, const ScopedText& t) { out.append(t.view()); }

void buildKey(WString& key, const ScopedText& t) {
  // Whole runs between whitespace are appended, not single characters.
  const wchar_t* const end = t.text + t.length;
  const wchar_t* run = t.text;
  for (const wchar_t* c = run; c != end; ++c) {
    if (!scan::isWhitespace(*c)) continue;
    key.append(run, c);
    run = c + 1;
  }
  key.append(run, end);
}

ScopedText buildRange(const ScopedText& first, const ScopedText& last) {
  return scan::buildRange(first, last);
}

void skipLine(const ScopedText& text, std::size_t& pos) { scan::skipLine(text, pos); }

void skipComment(const ScopedText& text, std::size_t& pos) {
  if (scan::startsComment(text, pos)) scan::skipStartedComment(text, pos);
}

void skipMacros(const ScopedText& text, std::size_t& pos) {
  if (pos < text.length && text.text[pos] == L'#') scan::skipLine(text, pos);
}

void skipWhitespaces(const ScopedText& text, std::size_t& pos) { scan::skipWhitespaces(text, pos); }

void skipNonKeywords(const ScopedText& text, std::size_t& pos) { scan::skipNonKeywords(text, pos); }

ScopedText getBracketBody(const ScopedText& text, std::size_t& pos, wchar_t open, wchar_t close) {
  return scan::getBracketBody(text, pos, open, close);
}

ScopedText getKeyword(const ScopedText& text, std::size_t& pos) { return scan::getKeyword(text, pos); }

ScopedText getOptionalReturn(const ScopedText& text, std::size_t& pos) {
  return scan::getOptional(text, pos, L'\n');
}

ScopedText getOptionalSemiColon(const ScopedText& text, std::size_t& pos) {
  return scan::getOptionalSemiColon(text, pos);
}

bool isEqual(const ScopedText& text, std::size_t pos, const wchar_t* literal) {
  return scan::isEqual(text, pos, literal);
}

bool isTokenChar(wchar_t c) { return scan::isTokenChar(c); }

bool isTokenChar_firstLetter(wchar_t c) {
  // Of the token characters the digits come first.
  return c == L'[' || (scan::isTokenChar(c) && c > L'9');
}

bool isWhitespace(wchar_t c) { return scan::isWhitespace(c); }

void trimWhiteSpaces(ScopedText& text) { scan::trimWhiteSpaces(text); }

void trimWhiteSpaces(WString& text) {
  const auto first = std::find_if_not(text.begin(), text.end(), scan::isWhitespace);
  text.erase(text.begin(), first);
}

}  // namespace TolmSDK::Graphics::sfg
