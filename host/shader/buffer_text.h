#pragma once

#include "host/shader/buffer_layout.h"
#include "host/shader/shader_text.h"

namespace TolmSDK::Graphics::sfg::host {

/// Declares the constant buffer in HLSL, behind an empty line.
void writeConstantBuffer(ShaderText& out, const ConstantBuffer& buffer);

}  // namespace TolmSDK::Graphics::sfg::host
