#pragma once

// A host's own graph, with node classes of its own, as a job reads it: nothing is translated or copied.

#include <cstddef>
#include <string>
#include <vector>

#include "sfg/host/export.h"
#include "tolmsdk/host_interfaces.h"

namespace TolmSDK::Graphics::sfg::host {

/// The graph that the generator sees through the host's accessors, and what only a complete graph has. Nodes
/// are told apart by address, parameters are shared: an input that nothing feeds becomes a uniform that
/// starts with its parameter's default value, or a constant of the code where its flag says so.
///
/// Asked when a job is made of it and again while that collapses; in between it stays as it is, or the job
/// refuses it. Several jobs may ask it at once. All texts are UTF-8.
class SFG_HOST_API IHostGraph : public IGraphAccessor {
public:
  static constexpr std::size_t kNotFed = static_cast<std::size_t>(-1);

  ~IHostGraph() override;

  /// What messages and readable names call a node, each by a name of its own: "n0", "n1", .. unless the host
  /// knows better.
  virtual std::string getNodeName(std::size_t node) const;
  /// The graph input that feeds an input of a node, to which then no node is wired; kNotFed when none does,
  /// as here.
  virtual std::size_t getGraphInput(std::size_t node, std::size_t input) const;
  /// Uniforms that code names by itself; none here.
  virtual std::size_t getNumUniforms() const;
  virtual const AParameter* getUniform(std::size_t index) const;
  /// Names of the fragments that run before and behind the nodes; none here.
  virtual std::vector<std::string> getPreprocess() const;
  virtual std::vector<std::string> getPostprocess() const;
};

}  // namespace TolmSDK::Graphics::sfg::host
