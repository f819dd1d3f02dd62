#include "host/origins/json_places.h"

#include <charconv>

namespace TolmSDK::Graphics::sfg::host {

namespace {

bool continues(char c) { return (static_cast<unsigned char>(c) & 0xC0u) == 0x80u; }

/// Behind the code point at `at`.
std::size_t nextCodePoint(std::string_view text, std::size_t at) {
  ++at;
  while (at < text.size() && continues(text[at])) ++at;
  return at;
}

/// The value of the escape \uXXXX at `at`; zero for anything else.
unsigned unicodeEscape(std::string_view text, std::size_t at) {
  constexpr std::size_t kLength = 6;
  if (text.substr(at, 2) != "\\u" || text.size() < at + kLength) return 0;
  unsigned value = 0;
  std::from_chars(text.data() + at + 2, text.data() + at + kLength, value, 16);
  return value;
}

/// A character of a string as it is spelled, and how many wide characters it is.
struct Spelling {
  std::size_t bytes = 0;
  std::size_t columns = 0;
  std::size_t wide = 1;
};

Spelling spellingAt(std::string_view text, std::size_t at) {
  constexpr std::size_t kEscape = 6;
  constexpr bool isUtf16 = sizeof(wchar_t) == 2;
  if (text[at] == '\\') {
    const unsigned value = unicodeEscape(text, at);
    if (text.substr(at, 2) != "\\u") return {2, 2, 1};
    const unsigned low = unicodeEscape(text, at + kEscape);
    const bool isPair = value >= 0xD800 && value < 0xDC00 && low >= 0xDC00 && low < 0xE000;
    return isPair ? Spelling{2 * kEscape, 2 * kEscape, isUtf16 ? 2u : 1u} : Spelling{kEscape, kEscape, 1};
  }
  const std::size_t bytes = nextCodePoint(text, at) - at;
  return {bytes, 1, isUtf16 && bytes == 4 ? 2u : 1u};
}

}  // namespace

JsonPlaces::JsonPlaces(std::string_view utf8) : text_(utf8), lines_{0} {
  for (std::size_t end = utf8.find('\n'); end != utf8.npos; end = utf8.find('\n', end + 1))
    lines_.push_back(end + 1);
}

std::size_t JsonPlaces::byteAt(TextPosition place) const {
  if (place.line == 0 || place.line > lines_.size()) return text_.size();
  std::size_t at = lines_[place.line - 1];
  for (std::size_t column = 1; column < place.column && at < text_.size() && text_[at] != '\n'; ++column)
    at = nextCodePoint(text_, at);
  return at;
}

TextPosition JsonPlaces::inString(TextPosition literal, std::size_t index) const {
  std::size_t at = byteAt(literal);
  if (at >= text_.size() || text_[at] != '"') return literal;
  ++at;
  TextPosition place{literal.line, literal.column + 1};
  while (index != 0 && at < text_.size() && text_[at] != '"' && text_[at] != '\n') {
    const Spelling spelling = spellingAt(text_, at);
    if (spelling.wide > index) break;
    index -= spelling.wide;
    at += spelling.bytes;
    place.column += spelling.columns;
  }
  return place;
}

}  // namespace TolmSDK::Graphics::sfg::host
