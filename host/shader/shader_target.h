#pragma once

// What a shader can be compiled to, and how compilers number its parts there.

#include "sfg/host/target.h"

namespace TolmSDK::Graphics::sfg::host {

/// "hlsl", "spirv", "glsl", "essl", "msl", "essl300": as options name them.
constexpr const char* targetName(ShaderTarget target) noexcept {
  switch (target) {
  case ShaderTarget::hlsl: return "hlsl";
  case ShaderTarget::spirv: return "spirv";
  case ShaderTarget::glsl: return "glsl";
  case ShaderTarget::essl: return "essl";
  case ShaderTarget::essl300: return "essl300";
  case ShaderTarget::msl: break;
  }
  return "msl";
}

/// GLSL ES 3.00 and GLSL 3.30 number neither blocks and textures nor what passes from stage to stage: all
/// that is found by its name. Nor have they storage buffers and compute stages.
constexpr bool bindsByName(ShaderTarget target, const CompileOptions& options) noexcept {
  return target == ShaderTarget::essl300 ||
         (target == ShaderTarget::glsl && options.glslVersion == GlslVersion::glsl330);
}

/// The version of the target's language where it is not the one that is taken without being chosen, as
/// options name it: "330", "6.0". Else empty.
constexpr const char* chosenVersion(ShaderTarget target, const CompileOptions& options) noexcept {
  if (target == ShaderTarget::glsl && options.glslVersion == GlslVersion::glsl330) return "330";
  if (target == ShaderTarget::hlsl && options.shaderModel == ShaderModel::sm60) return "6.0";
  return "";
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
