#pragma once

// The graphs that the benchmarks collapse, made by calls, in any size.

#include <cstddef>
#include <filesystem>
#include <vector>

#include "host/language_dx11.h"
#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_graph.h"
#include "tolmsdk/host_interfaces.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

/// A graph with everything a collapse of it needs. The fragments' definitions are made once; collapses only
/// read them.
struct GraphCase {
  RefPtr<AShaderFragmentGraph> graph;
  RefPtr<IShadingEnvironment const> environment;
  RefPtr<IShaderOptions const> options;
  RefPtr<ILanguageTraits const> language;
  bool lightLoop = false;
  std::size_t fragments = 0;  ///< members of the graph plus lights
};

/// A chain of `count` uses of one small function: one wired input, one uniform.
GraphCase makeChain(std::size_t count);
/// `count` rungs, each feeding both inputs of the next: 2^count paths.
GraphCase makeLadder(std::size_t count);
/// A balanced tree of `count` uses of a two-input function.
GraphCase makeTree(std::size_t count);
/// `count` distinct fragments in a chain, each with a function and a helper of its own, about 500 characters
/// each.
GraphCase makeFunctions(std::size_t count);
/// A lit surface of 20 fragments under `count` lights.
GraphCase makeLights(std::size_t count);

/// The example materials, in order of their names; none when the working folder is not the repository's root.
std::vector<std::filesystem::path> exampleFiles();
/// An example over the standard library, which is loaded once: for the light loop, under the studio's lights.
GraphCase loadExample(const std::filesystem::path& file);

}  // namespace TolmSDK::Graphics::sfg::benchmarks
