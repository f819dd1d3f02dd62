#pragma once

// Turns the host's own graph, seen through accessors, into a fragment graph.

#include "sfg/export.h"
#include "sfg/shader_fragment_graph.h"
#include "tolmsdk/host_interfaces.h"

namespace TolmSDK::Graphics::sfg {

class SFG_API AShaderFragmentGraphBuilder {
public:
  /// A new graph of clones `n0`, `n1`, .. wired as the accessor says, with a reference count of zero; null
  /// for a null accessor. Throws Exception "sfgError : Failed to create fragment: %s!" (no such library
  /// fragment) and "sfgError : circular loop: %s!" with the node's fragment name, and one of its own for a
  /// null node and for a wire from a node that is not the graph's. Connections whose indexes do not fit are
  /// not made. Time grows with nodes plus wires; in a graph with a cycle each wire that is not made may cost
  /// as much again.
  AShaderFragmentGraph* build(const ILanguageTraits* traits, const IGraphAccessor* accessor);

  /// The partly built graph of a build that threw, for those who look for the reason; kept until the next
  /// build. Null after one that succeeded.
  const AShaderFragmentGraph* getAbandonedGraph() const noexcept { return abandonedGraph_.get(); }

private:
  RefPtr<IShaderFragment> createFragment(const ILanguageTraits* traits, const INodeAccessor* node,
                                         const wchar_t* instanceName);

  RefPtr<AShaderFragmentGraph> abandonedGraph_;
};

}  // namespace TolmSDK::Graphics::sfg
