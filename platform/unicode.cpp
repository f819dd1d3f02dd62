#include "tolmsdk/unicode.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/utf.h"

namespace TolmSDK {

namespace {

/// Length of the leading run of ASCII, found eight bytes at a time.
std::size_t asciiPrefix(std::string_view bytes) noexcept {
  std::size_t index = 0;
  std::uint64_t word = 0;
  for (; index + sizeof word <= bytes.size(); index += sizeof word) {
    std::memcpy(&word, bytes.data() + index, sizeof word);
    if ((word & 0x8080808080808080u) != 0) break;
  }
  while (index < bytes.size() && static_cast<unsigned char>(bytes[index]) < 0x80) ++index;
  return index;
}

// The macro narrows bytes by assignment.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"

/// The code point at `index`, behind which `index` moves; negative for an ill-formed part.
UChar32 nextOrNegative(std::string_view bytes, std::size_t& index) noexcept {
  UChar32 character = 0;
  const char* const data = bytes.data();
  const std::size_t length = bytes.size();
  U8_NEXT(data, index, length, character);
  return character;
}

#pragma GCC diagnostic pop

char32_t nextOrReplacement(std::string_view bytes, std::size_t& index) noexcept {
  const UChar32 character = nextOrNegative(bytes, index);
  return character < 0 ? kReplacementCharacter : static_cast<char32_t>(character);
}

}  // namespace

std::string toUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t index = 0; index < text.size();) {
    const char32_t codePoint = nextCodePoint(text, index);
    if (codePoint < 0x80) {
      out += static_cast<char>(codePoint);
    } else {
      char bytes[4];
      out.append(bytes, writeUtf8(bytes, codePoint));
    }
  }
  return out;
}

void appendUtf8(WString& out, std::string_view bytes) {
  // No code point takes more wide characters than bytes, so the text fits where the bytes would.
  const std::size_t before = out.size();
  out.resize(before + bytes.size());
  wchar_t* end = out.data() + before;
  for (std::size_t index = 0; index < bytes.size();) {
    const std::size_t ascii = asciiPrefix(bytes.substr(index));
    const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data()) + index;
    end = std::copy(first, first + ascii, end);
    index += ascii;
    while (index < bytes.size() && static_cast<unsigned char>(bytes[index]) >= 0x80) {
      end += writeWide(end, nextOrReplacement(bytes, index));
    }
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
}

void assignFromUtf8(WString& out, std::string_view bytes) {
  out.clear();
  appendUtf8(out, bytes);
}

WString fromUtf8(std::string_view bytes) {
  WString out;
  assignFromUtf8(out, bytes);
  return out;
}

bool isUtf8(std::string_view bytes) noexcept {
  for (std::size_t index = 0; index < bytes.size();) {
    index += asciiPrefix(bytes.substr(index));
    if (index < bytes.size() && nextOrNegative(bytes, index) < 0) return false;
  }
  return true;
}

std::string repairedUtf8(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size() + 2);
  for (std::size_t index = 0; index < bytes.size();) {
    char sequence[4];
    out.append(sequence, writeUtf8(sequence, nextOrReplacement(bytes, index)));
  }
  return out;
}

std::string_view withoutByteOrderMark(std::string_view bytes) noexcept {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  return bytes;
}

}  // namespace TolmSDK
