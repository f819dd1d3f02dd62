#pragma once

// Values of shader types.

#include <array>
#include <cstddef>
#include <cstdint>

#include "tolmsdk/export.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics {

/// A value of a type: its components, row by row for a matrix. A value of a type without components (nil,
/// samplers, structures) holds nothing.
class TOLMSDK_API AValue {
public:
  AValue() = default;
  /// The default value of the type: false or zero in every component.
  explicit AValue(const TypeID& type) : type_(type) {}

  const TypeID& type() const noexcept { return type_; }
  std::size_t size() const noexcept { return componentCount(type_); }

  /// Component `index` read as the type's kind: bool as 0 or 1, int and uint exactly, float as its 32-bit
  /// value. 0 beyond size().
  double get(std::size_t index) const noexcept { return index < size() ? components_[index] : 0.0; }
  /// Sets component `index` to what the component type makes of `value`: bool to value != 0, a float rounded
  /// to 32 bits. Answers false and changes nothing beyond size(), for an integer type when `value` is no
  /// integer of its range, and for a float type when `value` is not finite as a 32-bit float.
  bool set(std::size_t index, double value) noexcept;

  friend bool operator==(const AValue&, const AValue&) = default;

private:
  TypeID type_;
  std::array<double, 16> components_{};
};

/// The value as "dx11" text: "true", "3", "0.5", "float3(0.0, 1.0, 2.5)", matrices row by row; a float is the
/// shortest decimal that reads back as the same 32-bit float, with ".0" when it would hold neither "." nor
/// "e". Empty for types without components.
TOLMSDK_API WString toShaderText(const AValue& value);

}  // namespace TolmSDK::Graphics
