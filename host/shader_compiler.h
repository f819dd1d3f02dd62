#pragma once

// Complete shaders through the field's compilers.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/shader/shader_interface.h"
#include "host/shader_assembly.h"

namespace TolmSDK::Graphics::sfg::host {

/// One complaint of a compiler.
struct CompilerMessage {
  std::size_t line = 0;  ///< of the text compiled, counted from 1; zero when unknown
  std::string text;
};

/// A compiler refused a text: the assembled shader, or (then a defect here or in a compiler) what was made of
/// it.
class CompileError : public std::runtime_error {
public:
  CompileError(const std::string& reason, std::vector<CompilerMessage> messages, bool inAssembledText)
      : std::runtime_error(reason), messages_(std::move(messages)), inAssembledText_(inAssembledText) {}

  const std::vector<CompilerMessage>& messages() const noexcept { return messages_; }
  /// Whether the messages' lines are lines of the assembled shader.
  bool inAssembledText() const noexcept { return inAssembledText_; }

private:
  std::vector<CompilerMessage> messages_;
  bool inAssembledText_;
};

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

/// Marks what the module, made from the shader of this interface, still has. Throws CompileError.
void markUsed(ShaderInterface& shader, const std::vector<std::uint32_t>& spirv);

/// Both in one.
std::string compileShader(const std::string& hlsl, const std::string& entryPoint, ShaderStage stage,
                          ShaderTarget target);

}  // namespace TolmSDK::Graphics::sfg::host
