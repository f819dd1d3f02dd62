#pragma once

// Types of ports, uniforms and values.

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "tolmsdk/export.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics {

/// A type's identity: four words; equal words, equal type; ordered by the words.
class TypeID {
public:
  constexpr TypeID() noexcept = default;  ///< TypeID_nil
  constexpr TypeID(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) noexcept
      : words_{a, b, c, d} {}

  constexpr std::uint32_t word(std::size_t index) const noexcept { return words_[index]; }

  /// The type's name in shader text ("float3"); empty for an identity that is none of the constants below.
  TOLMSDK_API const WString& toString() const;

  /// Whether an output of type `from` may feed an input of type `to` as it stands: equality. Conversions are
  /// the business of the collapse.
  static constexpr bool isCompatibleType(const TypeID& from, const TypeID& to) noexcept { return from == to; }

  friend constexpr bool operator==(const TypeID&, const TypeID&) noexcept = default;
  friend constexpr auto operator<=>(const TypeID&, const TypeID&) noexcept = default;

private:
  std::array<std::uint32_t, 4> words_{};
};

// The first word names the component type (0 none, 1 bool, 2 int, 3 uint, 4 float, 5 sampler, 6 struct), the
// second and third columns and rows (for samplers the dimension, 4 for a cube).
inline constexpr TypeID TypeID_nil{};
inline constexpr TypeID TypeID_bool{1, 1, 1, 0};
inline constexpr TypeID TypeID_int{2, 1, 1, 0};
inline constexpr TypeID TypeID_ivec2{2, 2, 1, 0};
inline constexpr TypeID TypeID_ivec3{2, 3, 1, 0};
inline constexpr TypeID TypeID_ivec4{2, 4, 1, 0};
inline constexpr TypeID TypeID_uint{3, 1, 1, 0};
inline constexpr TypeID TypeID_uvec2{3, 2, 1, 0};
inline constexpr TypeID TypeID_uvec3{3, 3, 1, 0};
inline constexpr TypeID TypeID_uvec4{3, 4, 1, 0};
inline constexpr TypeID TypeID_float{4, 1, 1, 0};
inline constexpr TypeID TypeID_fvec2{4, 2, 1, 0};
inline constexpr TypeID TypeID_fvec3{4, 3, 1, 0};
inline constexpr TypeID TypeID_fvec4{4, 4, 1, 0};
inline constexpr TypeID TypeID_fmat2{4, 2, 2, 0};
inline constexpr TypeID TypeID_fmat3{4, 3, 3, 0};
inline constexpr TypeID TypeID_fmat4{4, 4, 4, 0};
inline constexpr TypeID TypeID_sampler1D{5, 1, 0, 0};
inline constexpr TypeID TypeID_sampler2D{5, 2, 0, 0};
inline constexpr TypeID TypeID_sampler3D{5, 3, 0, 0};
inline constexpr TypeID TypeID_samplerCube{5, 4, 0, 0};
inline constexpr TypeID TypeID_struct{6, 0, 0, 0};

/// All types but nil, in the order above.
TOLMSDK_API std::span<const TypeID> allTypes() noexcept;

constexpr bool isSamplerType(const TypeID& type) noexcept { return type.word(0) == 5; }
/// Number of components a value of the type has, 16 at most; 0 for nil, samplers, structures and identities
/// that are none of the constants.
constexpr std::size_t componentCount(const TypeID& type) noexcept {
  const std::uint32_t kind = type.word(0);
  const std::uint32_t columns = type.word(1);
  const std::uint32_t rows = type.word(2);
  const bool isScalarOrVector = rows == 1 && columns >= 1 && columns <= (kind == 1 ? 1 : 4);
  const bool isMatrix = kind == 4 && rows >= 2 && rows <= 4 && rows == columns;
  if (kind < 1 || kind > 4 || type.word(3) != 0 || !(isScalarOrVector || isMatrix)) return 0;
  return std::size_t{columns} * rows;
}

/// Names of types outside of shader text.
class ITypeTraits {
public:
  /// "fvec3", "sampler2D", "nil"; empty for an identity that is none of the constants.
  TOLMSDK_API static const WString& getTypeName(const TypeID& type);
  /// The type of a name of either kind, "fvec3" or "float3"; TypeID_nil for any other text (and for "nil",
  /// "void").
  TOLMSDK_API static TypeID findType(std::wstring_view name);
};

}  // namespace TolmSDK::Graphics
