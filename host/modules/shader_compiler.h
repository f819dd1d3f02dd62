#pragma once

// Complete shaders through the field's compilers.

#include <cstdint>
#include <string>
#include <vector>

#include "sfg/host/compile.h"
#include "sfg/host/reflect.h"

namespace TolmSDK::Graphics::sfg::host {

/// Compiles HLSL text (UTF-8) to a SPIR-V module, as compileToSpirv() of `sfg/host/compile.h` does. Throws
/// CompileError. Any number of threads may compile.
std::vector<std::uint32_t> compileToSpirv(const std::string& hlsl, const std::string& entryPoint,
                                          ShaderStage stage, const CompileOptions& options = {});

/// What such a module is in the target, as translateSpirv() makes it. Throws CompileError.
std::string translate(const std::vector<std::uint32_t>& spirv, ShaderStage stage, ShaderTarget target,
                      const CompileOptions& options = {});

/// Both in one.
std::string compileShader(const std::string& hlsl, const std::string& entryPoint, ShaderStage stage,
                          ShaderTarget target, const CompileOptions& options = {});

/// "glslang 11.13.0, ..": what the texts and modules of compilers may differ with; "none" without compilers.
std::string compilerVersions();

/// Marks what the module, made from the shader of this interface, still has. Throws CompileError.
void markUsedParts(ShaderInterface& shader, const std::vector<std::uint32_t>& spirv);

}  // namespace TolmSDK::Graphics::sfg::host
