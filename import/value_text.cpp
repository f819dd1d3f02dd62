#include "import/value_text.h"

#include <charconv>
#include <cmath>

namespace TolmSDK::Graphics::sfg::materialx {

namespace {

struct TypeRow {
  std::string_view type;
  std::string_view shader;
  std::size_t components;
};
constexpr TypeRow kTypes[] = {
    {"float", "float", 1},        {"integer", "int", 1},    {"boolean", "bool", 1},
    {"color3", "float3", 3},      {"color4", "float4", 4},  {"vector2", "float2", 2},
    {"vector3", "float3", 3},     {"vector4", "float4", 4}, {"matrix33", "float3x3", 9},
    {"matrix44", "float4x4", 16},
};

const TypeRow* rowOf(std::string_view type) {
  for (const TypeRow& row : kTypes) {
    if (row.type == type) return &row;
  }
  return nullptr;
}

struct UnitRow {
  std::string_view unit;
  double factor;
};
constexpr UnitRow kUnits[] = {
    {"nanometer", 1e-9}, {"micron", 1e-6},   {"millimeter", 1e-3}, {"centimeter", 1e-2},
    {"inch", 0.0254},    {"foot", 0.3048},   {"yard", 0.9144},     {"meter", 1.0},
    {"kilometer", 1e3},  {"mile", 1609.344}, {"degree", 1.0},      {"radian", 57.29577951308232},
};

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlank);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

std::optional<double> parseNumber(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0.0;
  const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isWhole = result.ec == std::errc() && result.ptr == text.data() + text.size();
  if (!isWhole || !std::isfinite(static_cast<float>(number))) return std::nullopt;
  return number;
}

std::optional<host::Value> parseInteger(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  int number = 0;
  const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return static_cast<double>(number);
}

}  // namespace

std::string_view shaderType(std::string_view type) {
  const TypeRow* const row = rowOf(type);
  return row == nullptr ? std::string_view() : row->shader;
}

std::size_t componentCount(std::string_view type) {
  const TypeRow* const row = rowOf(type);
  return row == nullptr ? 0 : row->components;
}

bool isClosure(std::string_view type) {
  return type == "BSDF" || type == "EDF" || type == "VDF" || type.ends_with("shader");
}

std::optional<host::Value> parseValue(std::string_view type, std::string_view text) {
  text = trimmed(text);
  if (type == "boolean") {
    if (text == "true" || text == "1") return true;
    if (text == "false" || text == "0") return false;
    return std::nullopt;
  }
  if (type == "integer") return parseInteger(text);
  const std::size_t count = componentCount(type);
  if (count == 0) return std::nullopt;
  std::vector<double> numbers;
  while (numbers.size() <= count) {
    const std::size_t comma = text.find(',');
    const std::optional<double> number = parseNumber(trimmed(text.substr(0, comma)));
    if (!number) return std::nullopt;
    numbers.push_back(*number);
    if (comma == std::string_view::npos) break;
    text = text.substr(comma + 1);
  }
  if (numbers.size() != count) return std::nullopt;
  return valueOf(type, numbers);
}

host::Value zeroOf(std::string_view type) {
  return valueOf(type, std::vector<double>(std::max<std::size_t>(componentCount(type), 1), 0.0));
}

std::vector<double> numbersOf(const host::Value& value) {
  if (const bool* const flag = std::get_if<bool>(&value)) return {*flag ? 1.0 : 0.0};
  if (const double* const number = std::get_if<double>(&value)) return {*number};
  return std::get<std::vector<double>>(value);
}

host::Value valueOf(std::string_view type, const std::vector<double>& numbers) {
  if (type == "boolean") return numbers.front() != 0.0;
  if (numbers.size() == 1) return numbers.front();
  return numbers;
}

std::vector<std::string> splitList(std::string_view text) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const std::size_t comma = text.find(',');
    parts.emplace_back(trimmed(text.substr(0, comma)));
    text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
  }
  return parts;
}

std::optional<double> unitFactor(std::string_view unit) {
  for (const UnitRow& row : kUnits) {
    if (row.unit == unit) return row.factor;
  }
  return std::nullopt;
}

}  // namespace TolmSDK::Graphics::sfg::materialx
