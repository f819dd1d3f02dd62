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

/// Compiles HLSL text (UTF-8) to the target: the bytes of a SPIR-V module (Vulkan 1.1), or text: HLSL of
/// shader model 5.0, GLSL 4.50, ESSL 3.20, MSL 2.1. The SPIR-V is legalised, optimised and validated; HLSL,
/// GLSL and ESSL are compiled again. Names of uniforms, textures and buffers are kept. Bindings of SPIR-V,
/// per register: b0 is 0, t0 is 16, s0 is 48, u0 is 80; in GLSL and ESSL a texture is combined with its
/// sampler and has the texture's number. Throws CompileError. Any number of threads may compile.
std::string compileShader(const std::string& hlsl, const std::string& entryPoint, ShaderStage stage,
                          ShaderTarget target);

}  // namespace TolmSDK::Graphics::sfg::host
