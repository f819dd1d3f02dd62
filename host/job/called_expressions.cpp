#include "host/job/called_expressions.h"

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

/// Whether the code has a parameter in that place and calls it as a function.
bool callsInput(const IShaderFragmentProfile* profile, std::size_t input) {
  const auto* const ours = dynamic_cast<const AShaderFragmentProfile*>(profile);
  if (ours == nullptr) return false;
  const ITextParameterList& parameters = *ours->getFunctionParameters();
  return input < parameters.getNumInputs() && ours->hasShaderFunctions(parameters.getInputName(input));
}

class CalledExpressionSearch {
public:
  explicit CalledExpressionSearch(const CollapseJob& job)
      : document_(job.document()), surface_(job), reachable_(reachableNodes(document_)) {
    profiles_.resize(document_.getNumNodes());
    for (const std::size_t node : reachable_) {
      const IShaderFragment* const fragment =
          job.libraries().language().findFragment(document_.node(node).fragmentName());
      if (fragment != nullptr) profiles_[node] = &surface_.profilesOf(*fragment);
    }
  }

  Set<Input> run() {
    for (const std::size_t node : reachable_) searchNode(node);
    return std::move(found_);
  }

private:
  void searchNode(std::size_t node) {
    const Array<GraphNode::Wire>& wires = document_.node(node).wires();
    for (std::size_t i = 0; i < wires.size(); ++i) {
      if (wires[i].source != nullptr && callsExpression(node, i, wires[i].source->index()))
        found_.emplace(node, i);
    }
  }

  /// Whether there is a name under which the node calls its input and the source is an expression.
  bool callsExpression(std::size_t node, std::size_t input, std::size_t source) const {
    if (profiles_[node] == nullptr || profiles_[source] == nullptr) return false;
    const SurfaceProfiles& caller = *profiles_[node];
    const SurfaceProfiles& called = *profiles_[source];
    const auto isFound = [&](const IShaderFragmentProfile* calling,
                             const IShaderFragmentProfile* expression) {
      return isInline(expression) && callsInput(calling, input);
    };
    std::size_t known = caller.named.size();
    for (const auto& [name, profile] : caller.named) {
      if (isFound(profile, called.under(name))) return true;
    }
    for (const auto& [name, profile] : called.named) {
      if (caller.named.contains(name)) continue;
      if (isFound(caller.other, profile)) return true;
      ++known;
    }
    return known < surface_.profileNames().size() && isFound(caller.other, called.other);
  }

  const GraphDocument& document_;
  EvaluatedSurface surface_;
  std::vector<std::size_t> reachable_;
  std::vector<const SurfaceProfiles*> profiles_;  ///< one per node; null for those nothing reaches
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
  return diagnose(Severity::error, document.file(), wire.position, text);
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
