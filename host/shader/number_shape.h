#pragma once

// Types of numbers by their names in HLSL.

#include <cstddef>
#include <optional>
#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

/// Bytes of a number in a buffer.
inline constexpr std::size_t kComponent = 4;
/// Bytes of a register of a constant buffer.
inline constexpr std::size_t kRegister = 16;

/// "float3" has a row of three columns; "float2x3" two rows of three.
struct NumberShape {
  enum class Scalar { floating, integer, unsignedInteger, boolean };
  Scalar scalar = Scalar::floating;
  std::size_t rows = 1;
  std::size_t columns = 1;
  bool isMatrix = false;

  std::size_t count() const noexcept { return rows * columns; }
};

/// Nothing for any other name. Matrices are of floats.
std::optional<NumberShape> numberShapeOf(std::string_view type) noexcept;

}  // namespace TolmSDK::Graphics::sfg::host
