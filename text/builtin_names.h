#pragma once

// Names of the built-in functions, for look-ups that make no pooled string.

#include <string_view>

#include "sfg/builtin_function.h"

namespace TolmSDK::Graphics::sfg {

inline constexpr std::wstring_view kIsConnectedName = L"sfg_isConnected";
inline constexpr std::wstring_view kShaderName = L"sfg_shader";
inline constexpr std::wstring_view kIsFinalOutputName = L"sfg_isFinalOutput";

/// The same as getBuiltinFunctionId of the pooled name.
inline EBuiltinFunctionId findBuiltinFunctionId(std::wstring_view name) {
  if (name == kIsConnectedName) return eBuiltinFunctionIsConnected;
  if (name == kShaderName) return eBuiltinFunctionShader;
  if (name == kIsFinalOutputName) return eBuiltinFunctionIsFinalOutput;
  return eBuiltinFunctionUnknown;
}

}  // namespace TolmSDK::Graphics::sfg
