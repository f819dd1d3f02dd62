#pragma once

// Complete shaders through the field's compilers.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/shader_assembly.h"

namespace TolmSDK::Graphics::sfg::host {

enum class ShaderTarget { hlsl, spirv, glsl, essl, msl };

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
/// uniforms, textures and buffers are kept. Bindings, per register: b0 is 0, t0 is 16, s0 is 48, u0 is 80.
/// Throws CompileError. Any number of threads may compile.
std::vector<std::uint32_t> compileToSpirv(const std::string& hlsl, const std::string& entryPoint,
                                          ShaderStage stage);

/// What such a module is in the target: its bytes, or text: HLSL of shader model 5.0, GLSL 4.50, ESSL 3.20,
/// MSL 2.1. In GLSL and ESSL a texture is combined with its sampler and has the texture's number. HLSL, GLSL
/// and ESSL are compiled again. Throws CompileError.
std::string translate(const std::vector<std::uint32_t>& spirv, ShaderStage stage, ShaderTarget target);

/// Both in one.
std::string compileShader(const std::string& hlsl, const std::string& entryPoint, ShaderStage stage,
                          ShaderTarget target);

}  // namespace TolmSDK::Graphics::sfg::host
