#pragma once

// What pictures need of graph and environment documents besides a collapse.

#include <string>
#include <vector>

namespace pictures {

/// Names of a graph's nodes and their fragments, in order; nothing of a text that is no graph.
struct NodeName {
  std::string name;
  std::string fragment;
};
std::vector<NodeName> nodesOf(const std::string& graph);

/// The "interface" outputs of a node, as name and type; empty where it has none.
struct OutputPort {
  std::string name;
  std::string type;
};
std::vector<OutputPort> interfaceOutputs(const std::string& graph, const std::string& node);

/// The same graph with that output of a node as its only one, and nothing behind it.
std::string withOutput(const std::string& graph, const std::string& node, const std::string& output,
                       const std::string& type);

/// What a library file says of a port; empty where it says nothing.
struct PortWords {
  std::string kind;
  std::string space;
};
PortWords portWords(const std::string& library, const std::string& fragment, const std::string& port);

/// The same environment with one more light.
std::string withLight(const std::string& environment, const std::string& name, const std::string& fragment,
                      const std::string& profile);

}  // namespace pictures
