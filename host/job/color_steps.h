#pragma once

// In which space colours are on their way from the graph to the screen.

#include <string>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// Something that the colours of the graph's first output pass through, or come from.
struct ColorStep {
  enum class Kind { node, postprocess, output };
  Kind kind = Kind::node;
  WString name;           ///< of the node, else of the fragment
  TextPosition position;  ///< in the graph; of the environment's output fragment there
  /// What the libraries say of the ports: "linear", "srgb", "data"; empty where they say nothing.
  std::string taken;  ///< empty for a node
  std::string given;
};

/// The node, the post-process fragments that the job's tool evaluates, and the environment's output fragment,
/// which whoever shows the pixel evaluates. Each takes colours at its first input and gives them at its first
/// output. None without outputs.
std::vector<ColorStep> colorSteps(const CollapseJob& job);

/// Of the colours that the generated function writes to its first output; empty where no step says it.
std::string colorSpaceOf(const CollapseJob& job);

}  // namespace TolmSDK::Graphics::sfg::host
