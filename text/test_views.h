#pragma once

// Places for the text of a test: what a view shows must not depend on what lies behind it.

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "sfg/scoped_text.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK {

/// Makes failed comparisons readable.
inline void PrintTo(const WString& text, std::ostream* os) { *os << '"' << toUtf8(text) << '"'; }

}  // namespace TolmSDK

namespace TolmSDK::Graphics::sfg {

/// A text in a heap buffer of exactly its size: the address sanitizer sees every read behind it.
class ExactText {
public:
  explicit ExactText(std::wstring_view text)
      : text_(std::make_unique<wchar_t[]>(text.size())), size_(text.size()) {
    std::copy(text.begin(), text.end(), text_.get());
  }
  ScopedText view() const { return {text_.get(), size_}; }

private:
  std::unique_ptr<wchar_t[]> text_;
  std::size_t size_;
};

/// A text with more text behind the view, ended by a NUL at the end of an exactly sized buffer.
class LiveText {
public:
  LiveText(std::wstring_view text, std::wstring_view behind)
      : all_(std::wstring(text) + std::wstring(behind) + L'\0'), size_(text.size()) {}
  ScopedText view() const { return {all_.view().text, size_}; }

private:
  ExactText all_;
  std::size_t size_;
};

/// Hands the text to `check` in every kind of place.
template <class Check>
void inEveryPlace(std::wstring_view text, const Check& check) {
  check(ExactText(text).view());
  for (const wchar_t* behind : {L"", L"a", L"/", L"*/", L"\n", L";\n", L" /* x", L"}", L")", L"truct S {};"})
    check(LiveText(text, behind).view());
}

/// Positions at, behind and far behind the end of a text of that length.
inline std::array<std::size_t, 5> positionsBehind(std::size_t length) {
  return {length, length + 1, length + 1000, kNotFound - 1, kNotFound};
}

}  // namespace TolmSDK::Graphics::sfg
