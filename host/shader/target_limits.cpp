// What some targets cannot express, whatever the shader.

#include "host/shader/shader_stage.h"
#include "host/shader/shader_target.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

std::string refusalOf(ShaderStage stage, ShaderTarget target, const CompileOptions& options) {
  if (stage != ShaderStage::compute || !bindsByName(target, options)) return {};
  const bool isEmbedded = target == ShaderTarget::essl300;
  std::string text = std::string(isEmbedded ? "GLSL ES 3.00" : "GLSL 3.30");
  text.append(" has no ").append(toUtf8(stageName(stage))).append(" stage and no storage buffers; ");
  return text.append(isEmbedded ? "the targets `spirv`, `hlsl`, `glsl` (4.50), `essl` and `msl` have them"
                                : "GLSL 4.50 and the targets `spirv`, `hlsl`, `essl` and `msl` have them");
}

}  // namespace TolmSDK::Graphics::sfg::host
