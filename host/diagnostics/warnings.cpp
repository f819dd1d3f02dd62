#include "host/diagnostics/warnings.h"

#include "host/diagnostics/chain_warnings.h"
#include "host/diagnostics/code_warnings.h"
#include "host/diagnostics/light_warnings.h"
#include "host/diagnostics/port_warnings.h"

namespace TolmSDK::Graphics::sfg::host {

std::vector<Diagnostic> findWarnings(const CollapseJob& job, bool completeShader) {
  const CollapseFacts facts(job);
  WarningList warnings(job);
  warnOfLights(facts, warnings);
  if (!completeShader) warnOfGraphInputs(facts, warnings);
  warnOfCode(facts, warnings);
  warnOfInoutPorts(facts, warnings);
  warnOfChains(facts, warnings);
  return warnings.take();
}

}  // namespace TolmSDK::Graphics::sfg::host
