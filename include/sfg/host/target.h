#pragma once

// What shaders are compiled to, and how. Plain data.

#include <string>

#include "sfg/host/export.h"
#include "sfg/host/shader.h"

namespace TolmSDK::Graphics::sfg::host {

/// What a shader is compiled to. `essl` is GLSL ES 3.20; `essl300` is GLSL ES 3.00 as WebGL 2 takes it; `msl`
/// is Metal 2.1; `spirv` is a module for Vulkan 1.1.
enum class ShaderTarget { hlsl, spirv, glsl, essl, msl, essl300 };

enum class GlslVersion { glsl450, glsl330 };
enum class ShaderModel { sm50, sm60 };

/// What the module is optimised for. What `none` leaves are functions and variables as the assembled shader
/// has them, unless code with textures is legal only without them.
enum class Optimization { speed, size, none };

/// What is compiled for where a target leaves a choice. All values go together; what does not concern a
/// target is not looked at.
struct CompileOptions {
  GlslVersion glslVersion = GlslVersion::glsl450;  ///< of ShaderTarget::glsl
  ShaderModel shaderModel = ShaderModel::sm50;     ///< of ShaderTarget::hlsl
  Optimization optimization = Optimization::speed;
  /// The module holds the assembled text under the name "generated", the names of functions and variables,
  /// and the line that each instruction comes from.
  bool debug = false;
};

/// Why no shader of the stage can be compiled for the target, whatever it does: what is missing there and
/// which targets have it. Empty where shaders can be compiled. Any number of threads may call it.
SFG_HOST_API std::string refusalOf(ShaderStage stage, ShaderTarget target,
                                   const CompileOptions& options = {});

}  // namespace TolmSDK::Graphics::sfg::host
