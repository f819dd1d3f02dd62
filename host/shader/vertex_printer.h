#pragma once

// The HLSL text of a planned vertex stage.

#include "host/shader/shader_text.h"
#include "host/shader/vertex_plan.h"

namespace TolmSDK::Graphics::sfg::host {

/// The same text for the same plan.
ShaderText printVertexStage(const VertexPlan& plan);

}  // namespace TolmSDK::Graphics::sfg::host
