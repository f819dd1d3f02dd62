#include "host/diagnostics/warnings.h"

#include "host/diagnostics/chain_warnings.h"
#include "host/diagnostics/code_warnings.h"
#include "host/diagnostics/include_warnings.h"
#include "host/diagnostics/light_types.h"
#include "host/diagnostics/light_warnings.h"
#include "host/diagnostics/port_warnings.h"
#include "host/diagnostics/shader_arguments.h"
#include "host/diagnostics/wire_types.h"

namespace TolmSDK::Graphics::sfg::host {

std::vector<Diagnostic> findWarnings(const CollapseJob& job, bool completeShader) {
  const CollapseFacts facts(job);
  WarningList warnings(job);
  warnOfLights(facts, warnings);
  if (!completeShader) warnOfGraphInputs(facts, warnings);
  warnOfCode(facts, warnings);
  warnOfInoutPorts(facts, warnings);
  warnOfUnconnectedInputs(facts, warnings);
  warnOfChains(facts, warnings);
  std::vector<Diagnostic> all = warnings.take();
  const auto append = [&](const std::vector<Diagnostic>& more) {
    all.insert(all.end(), more.begin(), more.end());
  };
  if (!completeShader) {
    append(findTypeErrors(job, Severity::warning));
    append(findLightTypeErrors(job, Severity::warning));
    append(findShaderArguments(job, Severity::warning));
  }
  append(findDroppedComponents(job));
  if (completeShader) append(findIncludeWarnings(job));
  return all;
}

}  // namespace TolmSDK::Graphics::sfg::host
