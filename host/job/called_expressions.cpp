#include "host/job/called_expressions.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/job/evaluated_surface.h"
#include "sfg/shader_fragment_profile_base.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Node and input.
using Input = std::pair<std::size_t, std::size_t>;

bool isInline(const IShaderFragmentProfile* profile) {
  return profile != nullptr && profile->getMode() == EShaderFragmentProfileMode::Inline;
}

using Names = Set<std::wstring_view>;

/// How many names are in both; costs as much as there are in the smaller.
std::size_t countCommon(const Names& a, const Names& b) {
  if (b.size() < a.size()) return countCommon(b, a);
  return static_cast<std::size_t>(
      std::count_if(a.begin(), a.end(), [&](std::wstring_view name) { return b.contains(name); }));
}

/// Names of the surface under which something holds.
struct HoldsUnder {
  Names names;
  bool isOther = false;  ///< it also holds under every name that the fragment does not offer
};

/// What the search asks of the nodes of one fragment.
struct FragmentUse {
  Names offered;  ///< of the names of the surface
  HoldsUnder isExpression;
  std::map<std::size_t, HoldsUnder> calls;  ///< by the inputs that are called at all
};

/// Calls `visit` for the places of the parameters that the code calls as functions.
template <class Visit>
void forEachCalledInput(const IShaderFragmentProfile* profile, Visit&& visit) {
  const auto* const ours = dynamic_cast<const AShaderFragmentProfile*>(profile);
  if (ours == nullptr) return;
  const ITextParameterList& parameters = *ours->getFunctionParameters();
  for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
    if (ours->hasShaderFunctions(parameters.getInputName(i))) visit(i);
  }
}

FragmentUse makeUse(const SurfaceProfiles& profiles) {
  FragmentUse use;
  for (const auto& [name, profile] : profiles.named) {
    use.offered.insert(use.offered.end(), name);
    if (isInline(profile)) use.isExpression.names.insert(name);
    forEachCalledInput(profile, [&, called = std::wstring_view(name)](std::size_t input) {
      use.calls[input].names.insert(called);
    });
  }
  use.isExpression.isOther = isInline(profiles.other);
  forEachCalledInput(profiles.other, [&](std::size_t input) { use.calls[input].isOther = true; });
  return use;
}

class CalledExpressionSearch {
public:
  explicit CalledExpressionSearch(const CollapseJob& job)
      : document_(job.document()), surface_(job), reachable_(reachableNodes(document_)) {
    uses_.resize(document_.getNumNodes());
    for (const std::size_t node : reachable_) {
      const IShaderFragment* const fragment =
          job.libraries().language().findFragment(document_.node(node).fragmentName());
      if (fragment == nullptr) continue;
      const auto [entry, isNew] = fragments_.try_emplace(fragment);
      if (isNew) entry->second = makeUse(surface_.profilesOf(*fragment));
      uses_[node] = &entry->second;
    }
  }

  Set<Input> run() {
    for (const std::size_t node : reachable_) searchNode(node);
    return std::move(found_);
  }

private:
  void searchNode(std::size_t node) {
    if (uses_[node] == nullptr) return;
    const Array<GraphNode::Wire>& wires = document_.node(node).wires();
    for (const auto& [input, calls] : uses_[node]->calls) {
      if (input >= wires.size()) break;
      const GraphNode* const source = wires[input].source;
      if (source == nullptr || uses_[source->index()] == nullptr) continue;
      const FragmentUse& called = *uses_[source->index()];
      const auto [known, isNew] = answers_.try_emplace({&calls, &called});
      if (isNew) known->second = callsExpression(*uses_[node], calls, called);
      if (known->second) found_.emplace(node, input);
    }
  }

  /// Whether there is a name under which the input is called and the source is an expression: one that both
  /// fragments offer, one of them, or none.
  bool callsExpression(const FragmentUse& caller, const HoldsUnder& calls, const FragmentUse& called) const {
    const HoldsUnder& expression = called.isExpression;
    if (countCommon(calls.names, expression.names) != 0) return true;
    if (calls.isOther && countCommon(caller.offered, expression.names) < expression.names.size()) return true;
    if (!expression.isOther) return false;
    if (countCommon(calls.names, called.offered) < calls.names.size()) return true;
    return calls.isOther &&
           caller.offered.size() + called.offered.size() - countCommon(caller.offered, called.offered) <
               surface_.profileNames().size();
  }

  const GraphDocument& document_;
  EvaluatedSurface surface_;
  std::vector<std::size_t> reachable_;
  std::map<const IShaderFragment*, FragmentUse> fragments_;
  std::vector<const FragmentUse*> uses_;  ///< one per node; null for those nothing reaches
  /// For inputs of fragments and fragments that feed them.
  std::map<std::pair<const HoldsUnder*, const FragmentUse*>, bool> answers_;
  Set<Input> found_;
};

Diagnostic describe(const GraphDocument& document, const Input& input) {
  const GraphNode& node = document.node(input.first);
  const GraphNode::Wire& wire = node.wires()[input.second];
  const std::string text = "input " + inTicks(node.getInput(input.second)->getName()) + " of node " +
                           inTicks(node.name()) + " calls its source through `sfg_shader`, but node " +
                           inTicks(wire.source->name()) + " (fragment " +
                           inTicks(wire.source->fragmentName()) +
                           ") is an inline expression, which cannot be called; wire a function fragment";
  return diagnose(Finding::calledExpression, Severity::error, document.file(), wire.position, text);
}

std::string listed(const std::vector<Diagnostic>& wires) {
  std::string text;
  for (const Diagnostic& wire : wires) {
    text += (text.empty() ? "" : "\n") + wire.place() + ": " + wire.text;
  }
  return text;
}

}  // namespace

CalledExpressionError::CalledExpressionError(std::vector<Diagnostic> wires)
    : std::runtime_error(listed(wires)), wires_(std::move(wires)) {}

std::vector<Diagnostic> findCalledExpressions(const CollapseJob& job) {
  std::vector<Diagnostic> wires;
  for (const Input& input : CalledExpressionSearch(job).run())
    wires.push_back(describe(job.document(), input));
  return wires;
}

}  // namespace TolmSDK::Graphics::sfg::host
