#include "tolmsdk/exception.h"

#include <charconv>
#include <utility>

#include "tolmsdk/unicode.h"

namespace TolmSDK {

namespace {

template <class Integer>
void appendInteger(WString& out, Integer number) {
  char digits[24];
  const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, number);
  for (const char* digit = digits; digit != end.ptr; ++digit) out += static_cast<wchar_t>(*digit);
}

/// A conversion at the start of a text that begins with '%': its length, 0 when it is none that we know.
struct Conversion {
  std::size_t length = 0;
  bool isPercentSign = false;
  bool isUnsigned = false;
};

Conversion conversionAt(std::wstring_view text) {
  if (text.starts_with(L"%%")) return {2, true, false};
  if (text.starts_with(L"%s") || text.starts_with(L"%d") || text.starts_with(L"%i")) return {2, false, false};
  if (text.starts_with(L"%Iu")) return {3, false, true};
  return {};
}

}  // namespace

void FormatArgument::append(WString& out, bool asUnsigned) const {
  if (kind_ == Kind::text) {
    out += text_;
  } else if (asUnsigned) {
    appendInteger(out, unsigned_);
  } else {
    appendInteger(out, signed_);
  }
}

void appendFormatted(WString& out, std::wstring_view format, const FormatArgument* arguments,
                     std::size_t count) {
  std::size_t next = 0;
  while (!format.empty()) {
    const std::size_t plain = std::min(format.find(L'%'), format.size());
    out += format.substr(0, plain);
    format.remove_prefix(plain);
    if (format.empty()) return;

    const Conversion conversion = conversionAt(format);
    if (conversion.isPercentSign) {
      out += L'%';
    } else if (conversion.length != 0 && next < count) {
      arguments[next++].append(out, conversion.isUnsigned);
    } else {
      out += format.substr(0, std::max<std::size_t>(conversion.length, 1));
    }
    format.remove_prefix(std::max<std::size_t>(conversion.length, 1));
  }
}

Exception::Exception(Message message) : message_(std::move(message.text)), narrow_(toUtf8(message_)) {}

Exception::~Exception() = default;

WString itos(long long number) {
  WString out;
  appendInteger(out, number);
  return out;
}

void appendDecimal(WString& out, std::size_t number) { appendInteger(out, number); }

}  // namespace TolmSDK
