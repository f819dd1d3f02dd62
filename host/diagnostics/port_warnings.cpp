#include "host/diagnostics/port_warnings.h"

#include "host/documents/document_reader.h"
#include "host/origins/code_tokens.h"
#include "sfg/builtin_function.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// The names that the code asks `sfg_isConnected` about.
Set<WString> askedNames(const IShaderFragment& fragment) {
  Set<WString> names;
  const auto add = [&](const WString& code) {
    if (code.find(sfg_isConnected.view()) == code.npos) return;
    const CodeTokens tokens = tokensOf(code);
    for (std::size_t i = 0; i + 2 < tokens.size(); ++i) {
      if (tokens[i].in(code) == sfg_isConnected.view() && tokens[i + 1].in(code) == L"(")
        names.insert(WString(tokens[i + 2].in(code)));
    }
  };
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
    add(fragment.getProfile(i)->predefines());
    add(fragment.getProfile(i)->getFunctionBody());
  }
  return names;
}

}  // namespace

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

void warnOfUnconnectedInputs(const CollapseFacts& facts, WarningList& warnings) {
  Map<const IShaderFragment*, Set<WString>> asked;
  for (std::size_t i = 0; i < facts.nodeCount(); ++i) {
    const GraphNode& node = facts.document().node(i);
    for (std::size_t k = 0; k < node.getNumInputs(); ++k) {
      const AParameter& input = *node.getInput(k);
      if (node.isWired(k) || node.hasValue(k) || componentCount(input.getType()) == 0) continue;
      const IShaderFragment* const fragment = facts.fragmentOf(i).fragment;
      const auto [names, isNew] = asked.try_emplace(fragment);
      if (isNew) names->second = askedNames(*fragment);
      if (names->second.contains(input.getName())) continue;
      warnings.atGraph(Finding::unconnectedInput, node.position(),
                       "input " + inTicks(input.getName()) + " of " + named(node) +
                           " is wired to nothing and has no value, so it is 0: wire it, give it a `value` " +
                           "here, or one in the `ports` of fragment " + inTicks(node.fragmentName()));
    }
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
