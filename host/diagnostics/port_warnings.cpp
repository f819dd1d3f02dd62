#include "host/diagnostics/port_warnings.h"

#include "host/documents/document_reader.h"

namespace TolmSDK::Graphics::sfg::host {

void warnOfGraphInputs(const CollapseFacts& facts, WarningList& warnings) {
  if (!facts.isLightLoop()) return;
  Set<std::size_t> told;
  for (std::size_t i = 0; i < facts.nodeCount(); ++i) {
    for (const GraphNode::Wire& wire : facts.document().node(i).wires()) {
      if (wire.graphInput == kNotFound || !told.insert(wire.graphInput).second) continue;
      warnings.atGraph(Finding::undeclaredGraphInput, wire.position,
                       "the light-loop function has no parameter for the graph input " +
                           inTicks(facts.document().getInput(wire.graphInput)->getName()) +
                           "; only the complete shader (`--format shader`) declares it");
    }
  }
}

void warnOfInoutPorts(const CollapseFacts& facts, WarningList& warnings) {
  for (std::size_t i = 0; i < facts.nodeCount(); ++i) {
    const GraphNode& node = facts.document().node(i);
    for (const std::size_t k : facts.fragmentOf(i).inoutInputs) {
      if (k >= node.getNumInputs() || node.isWired(k)) continue;
      warnings.atGraph(Finding::inoutWithoutVariable, node.position(),
                       "input " + inTicks(node.getInput(k)->getName()) + " of " + named(node) +
                           " is `inout`, but nothing is wired to it that could be written");
    }
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
