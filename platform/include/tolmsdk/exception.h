#pragma once

// Exceptions with a wide, formatted message, and the wide printf rules that every system shares.

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>
#include <type_traits>

#include "tolmsdk/export.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK {

/// One argument of a wide format: a text, a signed or an unsigned number. Refers to texts, owns none: it
/// lives no longer than the call it is made for.
class FormatArgument {
public:
  FormatArgument(const wchar_t* text)
      : text_(text == nullptr ? std::wstring_view() : text), kind_(Kind::text) {}
  FormatArgument(std::wstring_view text) : text_(text), kind_(Kind::text) {}
  FormatArgument(const WString& text) : text_(text), kind_(Kind::text) {}
  FormatArgument(const UString& text) : text_(text.view()), kind_(Kind::text) {}
  template <class Integer>
  requires std::is_integral_v<Integer> FormatArgument(Integer number)
      : signed_(static_cast<long long>(number)), unsigned_(static_cast<unsigned long long>(number)) {}

  /// Appends this argument as the conversion `%s`, `%d` or `%i` (signed) or `%Iu` (unsigned) writes it. The
  /// argument decides between text and number, so a wrong conversion cannot read a number as an address.
  TOLMSDK_API void append(WString& out, bool asUnsigned) const;

private:
  enum class Kind { number, text };
  std::wstring_view text_;
  long long signed_ = 0;
  unsigned long long unsigned_ = 0;
  Kind kind_ = Kind::number;
};

/// Appends `format` to `out` with `%s` (wide text), `%d` and `%i` (int), `%Iu` (size_t) and `%%` replaced,
/// the same on every system and without a length limit. A conversion without an argument, or one unknown,
/// stays as written; surplus arguments are ignored.
TOLMSDK_API void appendFormatted(WString& out, std::wstring_view format, const FormatArgument* arguments,
                                 std::size_t count);

/// The format with its arguments filled in, by the rules of appendFormatted.
template <class... Arguments>
WString formatted(std::wstring_view format, const Arguments&... arguments) {
  WString out;
  if constexpr (sizeof...(Arguments) == 0) {
    appendFormatted(out, format, nullptr, 0);
  } else {
    const FormatArgument list[] = {FormatArgument(arguments)...};
    appendFormatted(out, format, list, sizeof...(Arguments));
  }
  return out;
}

/// The one exception of the system: a wide message. Copyable; what() is the message in UTF-8.
class TOLMSDK_API Exception : public std::exception {
public:
  /// Builds the message from a wide printf-style format; see appendFormatted.
  template <class... Arguments>
  explicit Exception(std::wstring_view format, const Arguments&... arguments)
      : Exception(Message{formatted(format, arguments...)}) {}
  Exception(const Exception&) = default;
  Exception& operator=(const Exception&) = default;
  ~Exception() override;

  const WString& getMessage() const noexcept { return message_; }
  const char* what() const noexcept override { return narrow_.c_str(); }

private:
  struct Message {
    WString text;
  };
  explicit Exception(Message message);

  WString message_;
  std::string narrow_;
};

/// A number in decimal.
TOLMSDK_API WString itos(long long number);
/// Appends an unsigned number in decimal.
TOLMSDK_API void appendDecimal(WString& out, std::size_t number);

}  // namespace TolmSDK
