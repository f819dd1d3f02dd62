#pragma once

// What a shader can be compiled to, and how compilers number its parts there.

#include "sfg/host/reflect.h"

namespace TolmSDK::Graphics::sfg::host {

/// "hlsl", "spirv", "glsl", "essl", "msl": as options name them.
constexpr const char* targetName(ShaderTarget target) noexcept {
  switch (target) {
  case ShaderTarget::hlsl: return "hlsl";
  case ShaderTarget::spirv: return "spirv";
  case ShaderTarget::glsl: return "glsl";
  case ShaderTarget::essl: return "essl";
  case ShaderTarget::msl: break;
  }
  return "msl";
}

/// Bindings in a SPIR-V module, per register: b0 is 0, t0 is 16, s0 is 48, u0 is 80.
inline constexpr unsigned kFirstTextureBinding = 16;
inline constexpr unsigned kFirstSamplerBinding = 48;
inline constexpr unsigned kFirstWritableBinding = 80;

/// Metal numbers all buffers together: constant buffers as their registers, then these. The last holds the
/// sizes in bytes of the others, each at its own number.
inline constexpr unsigned kMetalInputBuffer = 23;
inline constexpr unsigned kMetalOutputBuffer = 24;
inline constexpr unsigned kMetalSizesBuffer = 25;

}  // namespace TolmSDK::Graphics::sfg::host
