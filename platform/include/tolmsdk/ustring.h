#pragma once

// Pooled strings: equal texts share one representation.

#include <compare>
#include <cstddef>
#include <functional>
#include <string_view>

#include "tolmsdk/export.h"
#include "tolmsdk/types.h"

namespace TolmSDK {

/// A handle on a pooled text. Copying and equality cost a pointer; `<` orders by text, so that a Set<UString>
/// is walked in the same order on every run and machine. May be made in several threads at once. The pool
/// keeps a text until the process ends; views and references to it stay valid as long.
class TOLMSDK_API UString {
public:
  /// The empty text.
  UString() noexcept;
  explicit UString(std::wstring_view text);
  explicit UString(const wchar_t* text)
      : UString(text == nullptr ? std::wstring_view() : std::wstring_view(text)) {}
  explicit UString(const WString& text) : UString(std::wstring_view(text)) {}

  const WString& str() const noexcept { return *text_; }
  const wchar_t* c_str() const noexcept { return text_->c_str(); }
  std::wstring_view view() const noexcept { return *text_; }
  bool empty() const noexcept { return text_->empty(); }
  std::size_t size() const noexcept { return text_->size(); }

  friend bool operator==(const UString& a, const UString& b) noexcept { return a.text_ == b.text_; }
  friend bool operator<(const UString& a, const UString& b) noexcept {
    return a.text_ != b.text_ && *a.text_ < *b.text_;
  }
  friend bool operator<(const UString& a, std::wstring_view b) noexcept { return a.view() < b; }
  friend bool operator<(std::wstring_view a, const UString& b) noexcept { return a < b.view(); }

private:
  const WString* text_;
};

}  // namespace TolmSDK

template <>
struct std::hash<TolmSDK::UString> {
  std::size_t operator()(const TolmSDK::UString& text) const noexcept {
    return std::hash<const void*>()(&text.str());
  }
};
