#include "host/job/color_steps.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::string spaceOf(const CollapseJob& job, const WString& fragment, const AParameter& port) {
  const PortMetadata* const said = findPort(job.libraries().ports(), fragment, port.getName());
  return said != nullptr ? said->space : std::string();
}

ColorStep stepThrough(const CollapseJob& job, const IShaderFragment& fragment) {
  ColorStep step;
  step.name = fragment.key();
  if (fragment.getNumInputs() != 0) step.taken = spaceOf(job, fragment.key(), *fragment.getInput(0));
  if (fragment.getNumOutputs() != 0) step.given = spaceOf(job, fragment.key(), *fragment.getOutput(0));
  return step;
}

}  // namespace

std::vector<ColorStep> colorSteps(const CollapseJob& job) {
  std::vector<ColorStep> steps;
  const GraphDocument& document = job.document();
  if (document.outputWires().empty()) return steps;
  const GraphNode::Wire& wire = document.outputWires()[0];
  if (wire.source != nullptr && wire.output < wire.source->getNumOutputs()) {
    steps.push_back({ColorStep::Kind::node, wire.source->name(), wire.source->position(), std::string(),
                     spaceOf(job, wire.source->fragmentName(), *wire.source->getOutput(wire.output))});
  }
  const bool isChained = job.settings().tool == CollapseTool::lightLoop;
  for (std::size_t i = 0; isChained && i < document.postprocess().size(); ++i) {
    const GraphDocument::ChainFragment& link = document.postprocess()[i];
    const RefPtr<IShaderFragment> ports =
        cloneWithPorts(*link.fragment, WString(), job.libraries().language());
    steps.push_back(stepThrough(job, *ports));
    steps.back().kind = ColorStep::Kind::postprocess;
    steps.back().position = link.position;
  }
  if (const IShaderFragment* const output = job.environment().getOutputFragment()) {
    steps.push_back(stepThrough(job, *output));
    steps.back().kind = ColorStep::Kind::output;
    steps.back().position = job.environment().outputPosition();
  }
  return steps;
}

std::string colorSpaceOf(const CollapseJob& job) {
  std::string space;
  for (const ColorStep& step : colorSteps(job)) {
    if (step.kind != ColorStep::Kind::output && !step.given.empty()) space = step.given;
  }
  return space;
}

}  // namespace TolmSDK::Graphics::sfg::host
