#include "sfg/host/compile.h"

#include "host/modules/guarded_compiler.h"
#include "host/modules/shader_compiler.h"

namespace TolmSDK::Graphics::sfg::host {

std::vector<std::uint32_t> compileToSpirv(const Shader& shader, const CompileOptions& options) {
  return guarded([&] { return compileToSpirv(shader.text, shader.entryPoint, shader.stage, options); });
}

std::string translateSpirv(const std::vector<std::uint32_t>& spirv, ShaderStage stage, ShaderTarget target,
                           const CompileOptions& options) {
  return guarded([&] { return translate(spirv, stage, target, options); });
}

std::string compile(const Shader& shader, ShaderTarget target, const CompileOptions& options) {
  return guarded(
      [&] { return compileShader(shader.text, shader.entryPoint, shader.stage, target, options); });
}

void markUsed(ShaderInterface& shader, const std::vector<std::uint32_t>& spirv) {
  ShaderInterface marked = shader;
  guarded([&] { markUsedParts(marked, spirv); });
  shader = std::move(marked);
}

}  // namespace TolmSDK::Graphics::sfg::host
