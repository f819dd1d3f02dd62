#pragma once

// Complete shaders through the field's compilers. Any number of threads may compile. A compiler that needs to
// be started is started at the first use and ended with the process.

#include <cstdint>
#include <string>
#include <vector>

#include "sfg/host/errors.h"
#include "sfg/host/export.h"
#include "sfg/host/reflect.h"
#include "sfg/host/shader.h"
#include "sfg/host/target.h"
#include "sfg/host/version.h"

namespace TolmSDK::Graphics::sfg::host {

/// A SPIR-V module (Vulkan 1.1) of the shader: legalised, optimised as the options say, and validated. Names
/// of uniforms, textures and buffers are kept; attributes and render targets are called `sfg_in_` and
/// `sfg_out_` and their names. Bindings, per register: b0 is 0, t0 is 16, s0 is 48, u0 is 80. Throws
/// CompileError, for compilers that fail and for a library without compilers, too.
SFG_HOST_API std::vector<std::uint32_t> compileToSpirv(const Shader& shader,
                                                       const CompileOptions& options = {});

/// What such a module is in the target: its bytes, or text in the language that the options choose. In HLSL
/// registers are those of the assembled shader. In GLSL and ESSL a texture is combined with its sampler and
/// has the texture's number; GLSL 3.30 and ESSL 3.00 have no numbers: a host finds blocks, textures and
/// attributes by their names. In MSL buffers, textures and samplers have their registers' numbers; the
/// elements that a compute stage reads are buffer 23, those that it writes 24. HLSL, GLSL and ESSL are
/// compiled again, so that no text leaves that a compiler refuses; what ESSL 3.00 and GLSL 3.30 cannot
/// express is told with the targets that can. Throws as compileToSpirv() does, and where refusalOf() has a
/// reason.
SFG_HOST_API std::string translateSpirv(const std::vector<std::uint32_t>& spirv, ShaderStage stage,
                                        ShaderTarget target, const CompileOptions& options = {});

/// Both in one.
SFG_HOST_API std::string compile(const Shader& shader, ShaderTarget target,
                                 const CompileOptions& options = {});

/// Tells of every part of an interface whether the module, which compileToSpirv() made of its shader, still
/// has it: compilers leave out what is not read. Throws as compileToSpirv() does.
SFG_HOST_API void markUsed(ShaderInterface& shader, const std::vector<std::uint32_t>& spirv);

/// What one compile may use; 0 for no limit.
struct CompilerLimits {
  unsigned processorSeconds = 300;
  std::uint64_t memory = std::uint64_t{4} << 30;  ///< bytes of addresses beyond those that the host has
};

/// From now on every compileToSpirv(), translateSpirv() and compile() of this process does its work in a copy
/// of it, so that a compiler that crashes, never ends or eats the memory is a CompileError. Costs a few
/// milliseconds a compile. The copies are made by `fork`, of the process as it is now: to be called early,
/// before there are threads that may hold locks. A system that gives no more processes is a CompileError of
/// the compile, too. Answers false, and changes nothing, where that cannot be done.
SFG_HOST_API bool isolateCompilers(const CompilerLimits& limits = {});

}  // namespace TolmSDK::Graphics::sfg::host
