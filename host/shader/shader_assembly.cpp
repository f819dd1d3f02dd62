#include "host/shader/shader_assembly.h"

#include "host/shader/interface_builder.h"
#include "host/shader/interface_hash.h"
#include "host/shader/shader_plan.h"
#include "host/shader/shader_printer.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

AssembledShader assembleShader(const CollapseJob& job, ShaderStage stage, NameStyle names) {
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
