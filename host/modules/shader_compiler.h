#pragma once

// Complete shaders through the field's compilers.

#include <cstdint>
#include <string>
#include <vector>

#include "sfg/host/compile.h"
#include "sfg/host/reflect.h"

namespace TolmSDK::Graphics::sfg::host {

/// Compiles HLSL text (UTF-8) to a SPIR-V module (Vulkan 1.1): legalised, optimised and validated. Names of
/// uniforms, textures and buffers are kept; attributes and render targets are called `sfg_in_` and `sfg_out_`
/// and their names. Bindings, per register: b0 is 0, t0 is 16, s0 is 48, u0 is 80.
/// Throws CompileError. Any number of threads may compile.
std::vector<std::uint32_t> compileToSpirv(const std::string& hlsl, const std::string& entryPoint,
                                          ShaderStage stage);

/// What such a module is in the target: its bytes, or text: HLSL of shader model 5.0, GLSL 4.50, ESSL 3.20,
/// MSL 2.1. In HLSL registers are those of the assembled shader. In GLSL and ESSL a texture is combined with
/// its sampler and has the texture's number. In MSL buffers, textures and samplers have their registers'
/// numbers; the elements that a compute stage reads are buffer 23, those that it writes 24. HLSL, GLSL and
/// ESSL are compiled again. Throws CompileError.
std::string translate(const std::vector<std::uint32_t>& spirv, ShaderStage stage, ShaderTarget target);

/// Both in one.
std::string compileShader(const std::string& hlsl, const std::string& entryPoint, ShaderStage stage,
                          ShaderTarget target);

/// Marks what the module, made from the shader of this interface, still has. Throws CompileError.
void markUsedParts(ShaderInterface& shader, const std::vector<std::uint32_t>& spirv);

}  // namespace TolmSDK::Graphics::sfg::host
