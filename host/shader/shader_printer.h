#pragma once

// The HLSL text of a planned shader.

#include "host/shader/shader_plan.h"
#include "host/shader/shader_text.h"

namespace TolmSDK::Graphics::sfg::host {

/// The same text for the same plan.
ShaderText printShader(const ShaderPlan& plan);

}  // namespace TolmSDK::Graphics::sfg::host
