#include "tolmsdk/value.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace TolmSDK::Graphics {

namespace {

bool isBool(const TypeID& type) { return type.word(0) == TypeID_bool.word(0); }

bool isFloat(const TypeID& type) { return type.word(0) == TypeID_float.word(0); }

/// What an integer type makes of a number, if it is an integer of the type's range.
template <class Integer>
std::optional<double> asInteger(double value) {
  using Limits = std::numeric_limits<Integer>;
  if (!(value >= static_cast<double>(Limits::min()) && value <= static_cast<double>(Limits::max())))
    return {};
  if (std::trunc(value) != value) return {};
  return value + 0.0;  // No negative zero.
}

/// What the component type makes of a number.
std::optional<double> asComponent(const TypeID& type, double value) {
  if (isBool(type)) return value != 0.0 ? 1.0 : 0.0;
  if (type.word(0) == TypeID_int.word(0)) return asInteger<std::int32_t>(value);
  if (type.word(0) == TypeID_uint.word(0)) return asInteger<std::uint32_t>(value);
  const auto rounded = static_cast<float>(value);
  if (!std::isfinite(rounded)) return {};
  return rounded;
}

void appendFloat(WString& out, float value) {
  char digits[32];
  const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value);
  const std::string_view text(digits, static_cast<std::size_t>(end.ptr - digits));
  out.append(text.begin(), text.end());
  if (text.find_first_of(".e") == std::string_view::npos) out += L".0";
}

void appendComponent(WString& out, const AValue& value, std::size_t index) {
  if (isBool(value.type())) {
    out += value.get(index) != 0.0 ? L"true" : L"false";
  } else if (isFloat(value.type())) {
    appendFloat(out, static_cast<float>(value.get(index)));
  } else {
    char digits[24];
    const auto number = static_cast<long long>(value.get(index));
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, number);
    out.append(digits, end.ptr);
  }
}

}  // namespace

bool AValue::set(std::size_t index, double value) noexcept {
  if (index >= size()) return false;
  const std::optional<double> component = asComponent(type_, value);
  if (!component) return false;
  components_[index] = *component;
  return true;
}

WString toShaderText(const AValue& value) {
  WString out;
  const std::size_t size = value.size();
  if (size == 1) {
    appendComponent(out, value, 0);
  } else if (size > 1) {
    out += value.type().toString();
    for (std::size_t index = 0; index < size; ++index) {
      out += index == 0 ? L"(" : L", ";
      appendComponent(out, value, index);
    }
    out += L')';
  }
  return out;
}

}  // namespace TolmSDK::Graphics
