#include "sfg/host/compile.h"

#include "host/modules/guarded_compiler.h"
#include "host/modules/shader_compiler.h"

namespace TolmSDK::Graphics::sfg::host {

std::vector<std::uint32_t> compileToSpirv(const Shader& shader) {
  return guarded([&] { return compileToSpirv(shader.text, shader.entryPoint, shader.stage); });
}

std::string translateSpirv(const std::vector<std::uint32_t>& spirv, ShaderStage stage, ShaderTarget target) {
  return guarded([&] { return translate(spirv, stage, target); });
}

std::string compile(const Shader& shader, ShaderTarget target) {
  return guarded([&] { return compileShader(shader.text, shader.entryPoint, shader.stage, target); });
}

void markUsed(ShaderInterface& shader, const std::vector<std::uint32_t>& spirv) {
  ShaderInterface marked = shader;
  guarded([&] { markUsedParts(marked, spirv); });
  shader = std::move(marked);
}

}  // namespace TolmSDK::Graphics::sfg::host
