#include "host/diagnostics/chain_warnings.h"

#include "host/documents/document_reader.h"

namespace TolmSDK::Graphics::sfg::host {

void warnOfChains(const CollapseFacts& facts, WarningList& warnings) {
  if (facts.isLightLoop()) return;
  for (const GraphDocument::ChainFragment& link : facts.document().postprocess()) {
    warnings.atGraph(Finding::idlePostprocess, link.position,
                     "post-process fragment " + inTicks(link.name) +
                         " does nothing: only the light loop (`--tool lightloop`) evaluates it");
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
