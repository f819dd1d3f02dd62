#include "host/shader/shader_assembly.h"

#include "host/shader/interface_builder.h"
#include "host/shader/interface_hash.h"
#include "host/shader/shader_plan.h"
#include "host/shader/shader_printer.h"
#include "host/shader/vertex_printer.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

AssembledShader assembleVertexStage(const ShaderPlan& pixel, const MeshLayout& mesh) {
  const VertexPlan plan = planVertexStage(pixel, mesh);
  ShaderText text = printVertexStage(plan);
  AssembledShader assembled;
  assembled.sections = text.takeSections();
  assembled.shader.getCompleteShader() = text.takeText();
  assembled.reflection = interfaceOf(plan);
  assembled.entryPoint = assembled.reflection.entryPoint;
  return assembled;
}

}  // namespace

AssembledShader assembleShader(const CollapseJob& job, ShaderStage stage, NameStyle names,
                               const MeshLayout& mesh) {
  if (stage == ShaderStage::vertex) {
    return assembleVertexStage(planShader(job, ShaderStage::pixel, names), mesh);
  }
  const ShaderPlan plan = planShader(job, stage, names);
  ShaderText text = printShader(plan);
  AssembledShader assembled;
  assembled.sections = text.takeSections();
  assembled.shader.getCompleteShader() = text.takeText();
  for (const WString& name : plan.uniformNames) assembled.shader.addUniform(name);
  assembled.shader.getStateVariables() = plan.stateVariables;
  assembled.entryPoint = toUtf8(plan.entryPoint);
  assembled.generatedNames = plan.generatedNames;
  assembled.missingIncludes = plan.missingIncludes;
  assembled.reflection = interfaceOf(plan);
  return assembled;
}

ShaderInterface reflectShader(const AssembledShader& assembled, std::optional<ShaderTarget> target,
                              const CompileOptions& options) {
  ShaderInterface shader = assembled.reflection;
  hashInterface(shader, toUtf8(assembled.shader.getCompleteShader()));
  return target ? interfaceFor(shader, *target, options) : shader;
}

}  // namespace TolmSDK::Graphics::sfg::host
