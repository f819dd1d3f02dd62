#include "host/called_expressions.h"

#include <utility>

#include "host/document_reader.h"
#include "host/evaluated_surface.h"
#include "sfg/shader_fragment_profile_base.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Node and input.
using Input = std::pair<std::size_t, std::size_t>;

bool isInline(const IShaderFragmentProfile* profile) {
  return profile != nullptr && profile->getMode() == EShaderFragmentProfileMode::Inline;
}

/// Whether the code has a parameter in that place and calls it as a function.
bool callsInput(const AShaderFragmentProfile& profile, std::size_t input) {
  const ITextParameterList& parameters = *profile.getFunctionParameters();
  return input < parameters.getNumInputs() && profile.hasShaderFunctions(parameters.getInputName(input));
}

class Search {
public:
  explicit Search(const CollapseJob& job)
      : job_(job), document_(job.document()), reachable_(reachableNodes(document_)) {
    fragments_.resize(document_.getNumNodes());
    for (const std::size_t node : reachable_) {
      fragments_[node] = job.libraries().language().findFragment(document_.node(node).fragmentName());
    }
  }

  Set<Input> run() {
    for (const WString& name : surfaceProfileNames(job_)) {
      chooseProfiles(name);
      for (const std::size_t node : reachable_) searchNode(node);
    }
    return std::move(found_);
  }

private:
  void chooseProfiles(const WString& name) {
    profiles_.assign(document_.getNumNodes(), nullptr);
    for (const std::size_t node : reachable_) {
      if (fragments_[node] == nullptr) continue;
      profiles_[node] = chooseProfile(job_, *fragments_[node], name, job_.options().getSurfaceLOD());
    }
  }

  void searchNode(std::size_t node) {
    const auto* const profile = dynamic_cast<const AShaderFragmentProfile*>(profiles_[node]);
    if (profile == nullptr) return;
    const Array<GraphNode::Wire>& wires = document_.node(node).wires();
    for (std::size_t i = 0; i < wires.size(); ++i) {
      if (wires[i].source == nullptr || !isInline(profiles_[wires[i].source->index()])) continue;
      if (callsInput(*profile, i)) found_.emplace(node, i);
    }
  }

  const CollapseJob& job_;
  const GraphDocument& document_;
  std::vector<std::size_t> reachable_;
  std::vector<const IShaderFragment*> fragments_;        ///< one per node; null for those nothing reaches
  std::vector<const IShaderFragmentProfile*> profiles_;  ///< one per node, under the current name
  Set<Input> found_;
};

CalledExpression describe(const GraphDocument& document, const Input& input) {
  const GraphNode& node = document.node(input.first);
  const GraphNode::Wire& wire = node.wires()[input.second];
  const std::string text = "input " + inTicks(node.getInput(input.second)->getName()) + " of node " +
                           inTicks(node.name()) + " calls its source through `sfg_shader`, but node " +
                           inTicks(wire.source->name()) + " (fragment " +
                           inTicks(wire.source->fragmentName()) +
                           ") is an inline expression, which cannot be called; wire a function fragment";
  return {InputError(document.file(), wire.position, text).place(), text};
}

std::string listed(const std::vector<CalledExpression>& wires) {
  std::string text;
  for (const CalledExpression& wire : wires) {
    text += (text.empty() ? "" : "\n") + wire.place + ": " + wire.text;
  }
  return text;
}

}  // namespace

CalledExpressionError::CalledExpressionError(std::vector<CalledExpression> wires)
    : std::runtime_error(listed(wires)), wires_(std::move(wires)) {}

std::vector<CalledExpression> findCalledExpressions(const CollapseJob& job) {
  std::vector<CalledExpression> wires;
  for (const Input& input : Search(job).run()) wires.push_back(describe(job.document(), input));
  return wires;
}

}  // namespace TolmSDK::Graphics::sfg::host
