#pragma once

// The graphs that the benchmarks collapse, made by calls, in any size. Every fragment has ports of its own,
// as those that are read from files have.

#include <cstddef>

#include "benchmarks/case.h"
#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_graph.h"
#include "tolmsdk/host_interfaces.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

/// A graph with everything a collapse of it needs. The fragments' definitions are made once; collapses only
/// read them.
struct GraphCase {
  RefPtr<IShaderFragmentGraph const> graph;
  RefPtr<IShadingEnvironment const> environment;
  RefPtr<IShaderOptions const> options;
  RefPtr<ILanguageTraits const> language;
  bool lightLoop = false;
  std::size_t fragments = 0;    ///< members of the graph plus lights
  double nestedCharacters = 0;  ///< of all expressions, where one holds the other; else 0
};

/// One collapse by a tool of its own. Throws when it answers null.
RefPtr<IShaderFragment> collapse(const GraphCase& graphCase);
/// Its round is one collapse.
Work collapseWork(GraphCase graphCase);

// Graphs as hosts make them.

/// Uses of one small function: one wired input, one uniform.
GraphCase makeChain(std::size_t count);
/// Rungs that each feed both inputs of the next: 2^count paths.
GraphCase makeLadder(std::size_t count);
/// A balanced tree of uses of a two-input function.
GraphCase makeTree(std::size_t count);
/// Distinct fragments in a chain, each with a function and a helper of its own, about 500 characters each.
GraphCase makeFunctions(std::size_t count);
/// A lit surface of 20 fragments under `count` lights.
GraphCase makeLights(std::size_t count);

// Shapes that a careless step makes quadratic.

GraphCase makeUniforms(std::size_t count);         ///< of one fragment
GraphCase makePlaceholders(std::size_t count);     ///< of one expression
GraphCase makeBuiltinCalls(std::size_t count);     ///< in one body
GraphCase makeShaderCalls(std::size_t count);      ///< of one fragment in one body
GraphCase makeClashingHelpers(std::size_t count);  ///< two fragments with `count` helpers of equal names
GraphCase makeInlineChain(std::size_t count);      ///< each expression holds the one below
GraphCase makeLitInlineChain(std::size_t count);   ///< the same under 8 lights
GraphCase
makeAlternatingLights(std::size_t count);  ///< `count` lights of two profiles over a chain of `count`
GraphCase
makeUnknownProfile(std::size_t count);     ///< `count` lights of a profile that no fragment of the chain has
GraphCase makeOutputs(std::size_t count);  ///< of one fragment, each read by another
GraphCase makePreprocess(std::size_t count);  ///< pre-process fragments
GraphCase
makePostprocess(std::size_t count);  ///< post-process fragments under a light, each feeding the next

// Under `count` lights, amid a chain of `count`.
GraphCase makeChangingCaller(std::size_t count);  ///< calls its source under every second light
GraphCase makeCallerProfiles(std::size_t count);  ///< a caller with a profile for each light
GraphCase
makeCalledProfiles(std::size_t count);           ///< a fragment that is called, with a profile for each light
GraphCase makeLitProfiles(std::size_t count);    ///< a lit fragment with a profile for each light
GraphCase makeOwnExpression(std::size_t count);  ///< of a host's own class
GraphCase makeLightLevels(std::size_t count);    ///< lights of one fragment with `count` levels of detail

/// Looks each of the levels of detail of a fragment up.
Work findLevels(std::size_t count);
/// Functions, expressions and callers of functions by turns, each reading the one below twice, all reading
/// the current light, under 4 lights.
GraphCase makeLitLadder(std::size_t count);
GraphCase makeUnlitLadder(std::size_t count);  ///< the same without lights, by the other tool

}  // namespace TolmSDK::Graphics::sfg::benchmarks
