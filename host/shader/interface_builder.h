#pragma once

#include "host/shader/shader_plan.h"
#include "host/shader/vertex_plan.h"
#include "sfg/host/reflect.h"

namespace TolmSDK::Graphics::sfg::host {

/// The interface of a planned shader as its HLSL text has it, without a hash.
ShaderInterface interfaceOf(const ShaderPlan& plan);
ShaderInterface interfaceOf(const VertexPlan& plan);

}  // namespace TolmSDK::Graphics::sfg::host
