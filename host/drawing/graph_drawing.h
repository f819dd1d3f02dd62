#pragma once

// A graph as a person looks at it: boxes with ports, and wires.

#include <cstddef>
#include <string>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// Texts are UTF-8.
struct DrawnPort {
  std::string name;
  std::string type;
  std::string value;  ///< what an input has that nobody wires: "0.5", of a constant "= 4"; empty without one
};

struct DrawnNode {
  enum class Kind { node, graphInputs, graphOutputs, graphUniforms, light, preprocess, postprocess, output };
  Kind kind = Kind::node;
  std::string name;
  std::string fragment;               ///< empty for the graph's own boxes
  std::vector<std::string> profiles;  ///< those that wrote code: "default, level 100"
  bool isLit = false;                 ///< reads the current light
  bool isBelowLit = false;            ///< fed by one that does
  bool isUnused = false;              ///< of a node: no output of the graph reaches it
  std::vector<DrawnPort> inputs;
  std::vector<DrawnPort> outputs;
  std::string picture = {};  ///< file that shows what it computes; empty without one
};

/// From an output to an input, by their numbers.
struct DrawnWire {
  std::size_t from = 0;
  std::size_t output = 0;
  std::size_t to = 0;
  std::size_t input = 0;
};

/// Nodes in the order of the document, then the graph's own boxes, lights and chains, each chain in the order
/// in which it runs.
struct GraphDrawing {
  std::vector<DrawnNode> nodes;
  std::vector<DrawnWire> wires;
};

/// Of a job that has run. The graph is collapsed once more, to see which profiles write code.
GraphDrawing drawGraph(const CollapseJob& job);

}  // namespace TolmSDK::Graphics::sfg::host
