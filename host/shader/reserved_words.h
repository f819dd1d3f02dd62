#pragma once

#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

/// Whether the name is a word, or of a kind, that the shading languages (HLSL, GLSL, ESSL, MSL) or this host
/// keep for themselves: keywords, types, functions of theirs, "gl_..", "sfg_..".
bool isReservedWord(std::wstring_view name);

}  // namespace TolmSDK::Graphics::sfg::host
