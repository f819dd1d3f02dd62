#pragma once

// The stages that a complete shader can be of.

#include <cstddef>

#include "sfg/host/shader.h"

namespace TolmSDK::Graphics::sfg::host {

/// Invocations of a group of a compute stage.
inline constexpr std::size_t kComputeGroupSize = 64;

/// "pixel", "compute".
constexpr const wchar_t* stageName(ShaderStage stage) noexcept {
  return stage == ShaderStage::pixel ? L"pixel" : L"compute";
}

}  // namespace TolmSDK::Graphics::sfg::host
