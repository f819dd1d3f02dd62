#include "host/origins/json_places.h"

#include <charconv>

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Code points that are counted one by one at most.
constexpr std::size_t kStride = 64;

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
  std::size_t number = 0;
  for (std::size_t at = 0; at < utf8.size(); at = nextCodePoint(utf8, at), ++number) {
    if (number % kStride == 0) strides_.push_back(at);
    if (utf8[at] == '\n') lines_.push_back(number + 1);
  }
}

std::size_t JsonPlaces::byteAt(TextPosition place) const {
  if (place.line == 0 || place.line > lines_.size() || place.column == 0) return text_.size();
  const std::size_t number = lines_[place.line - 1] + (place.column - 1);
  if (number / kStride >= strides_.size()) return text_.size();
  std::size_t at = strides_[number / kStride];
  for (std::size_t rest = number % kStride; rest != 0 && at < text_.size(); --rest)
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
