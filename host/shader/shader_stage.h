#pragma once

// The stages that a complete shader can be of.

#include <cstddef>

#include "sfg/host/shader.h"

namespace TolmSDK::Graphics::sfg::host {

/// Invocations of a group of a compute stage.
inline constexpr std::size_t kComputeGroupSize = 64;

/// "pixel", "compute", "vertex".
constexpr const wchar_t* stageName(ShaderStage stage) noexcept {
  switch (stage) {
  case ShaderStage::compute: return L"compute";
  case ShaderStage::vertex: return L"vertex";
  case ShaderStage::pixel: break;
  }
  return L"pixel";
}

}  // namespace TolmSDK::Graphics::sfg::host
