#include "host/shader/number_shape.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

struct ScalarName {
  std::string_view name;
  NumberShape::Scalar scalar;
};
constexpr ScalarName kScalars[] = {{"float", NumberShape::Scalar::floating},
                                   {"int", NumberShape::Scalar::integer},
                                   {"uint", NumberShape::Scalar::unsignedInteger},
                                   {"bool", NumberShape::Scalar::boolean}};

/// A digit from 1 to 4; 0 for any other character.
std::size_t sizeOf(char digit) noexcept {
  return digit >= '1' && digit <= '4' ? static_cast<std::size_t>(digit - '0') : 0;
}

}  // namespace

std::optional<NumberShape> numberShapeOf(std::string_view type) noexcept {
  for (const auto& [name, scalar] : kScalars) {
    if (!type.starts_with(name)) continue;
    const std::string_view size = type.substr(name.size());
    if (size.empty()) return NumberShape{scalar};
    if (size.size() == 1 && sizeOf(size[0]) != 0) return NumberShape{scalar, 1, sizeOf(size[0]), false};
    const bool isMatrix = size.size() == 3 && sizeOf(size[0]) > 1 && size[1] == 'x' && sizeOf(size[2]) > 1;
    if (isMatrix && scalar == NumberShape::Scalar::floating) {
      return NumberShape{scalar, sizeOf(size[0]), sizeOf(size[2]), true};
    }
  }
  return std::nullopt;
}

}  // namespace TolmSDK::Graphics::sfg::host
