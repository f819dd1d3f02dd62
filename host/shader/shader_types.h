#pragma once

// How values of the shading language travel between a shader and its host.

#include <cstddef>

#include "tolmsdk/type_id.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

constexpr bool isMatrix(const TypeID& type) noexcept { return componentCount(type) != 0 && type.word(2) > 1; }

/// Whether attributes can carry it.
constexpr bool canVary(const TypeID& type) noexcept { return componentCount(type) != 0 && !isMatrix(type); }

/// Booleans among them.
constexpr bool isInteger(const TypeID& type) noexcept {
  return componentCount(type) != 0 && type.word(0) < TypeID_float.word(0);
}

/// Booleans travel as numbers.
constexpr const TypeID& carrierType(const TypeID& type) noexcept {
  return type == TypeID_bool ? TypeID_uint : type;
}

/// A row of the type, widened to four components: such values lie at the same places in every shading
/// language.
constexpr TypeID wideType(const TypeID& type) noexcept { return TypeID(carrierType(type).word(0), 4, 1, 0); }

/// How many vectors an output of the type is written as.
constexpr std::size_t rowCount(const TypeID& type) noexcept { return isMatrix(type) ? type.word(2) : 1; }

/// The type of each of them.
constexpr TypeID rowType(const TypeID& type) noexcept {
  return isMatrix(type) ? TypeID(type.word(0), type.word(1), 1, 0) : carrierType(type);
}

/// A value with the type it has in the shader.
struct Port {
  TypeID type;  ///< nil for a structure
  WString typeText;
  WString name;
};

}  // namespace TolmSDK::Graphics::sfg::host
