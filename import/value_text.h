#pragma once

// Values as documents spell them.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sfg/host/document.h"

namespace TolmSDK::Graphics::sfg::materialx {

/// The shader language's type for a type of documents: `float3` for `color3`. Empty for a type without
/// numbers.
std::string_view shaderType(std::string_view type);
/// How many numbers a value of the type has; zero for a type without.
std::size_t componentCount(std::string_view type);
/// Whether the type carries light: closures and shaders.
bool isClosure(std::string_view type);

/// The value, or nothing when the text is none of the type.
std::optional<host::Value> parseValue(std::string_view type, std::string_view text);
host::Value zeroOf(std::string_view type);
/// The numbers of a value, booleans as 0 and 1.
std::vector<double> numbersOf(const host::Value& value);
/// The value of a type with these numbers, as many as it has.
host::Value valueOf(std::string_view type, const std::vector<double>& numbers);

/// "a, b" cut at the commas, without blanks around the parts.
std::vector<std::string> splitList(std::string_view text);

/// How many of the base unit (metre, degree) one of the unit is; nothing for an unknown one.
std::optional<double> unitFactor(std::string_view unit);

}  // namespace TolmSDK::Graphics::sfg::materialx
