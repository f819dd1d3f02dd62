#pragma once

// What a host does around a collapse: files read, graphs built, warnings found, shaders assembled.

#include <cstddef>
#include <filesystem>
#include <vector>

#include "benchmarks/case.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

/// The example materials, in order of their names; none when the working folder is not the repository's root.
std::vector<std::filesystem::path> exampleFiles();
/// An example over the standard library, which is loaded once: for the light loop, under the studio's lights.
Work makeExample(const std::filesystem::path& file);

// Loading, beside the JSON library's bare parse of the same bytes.

Work loadStandardLibrary(std::size_t);
Work loadGeneratedLibrary(std::size_t fragments);

/// A graph document of wired nodes is read, beside the JSON library's bare parse of the same bytes.
Work readGraph(std::size_t nodes);
/// A graph document of nodes that nothing uses is read and its graph built.
Work buildUnusedNodes(std::size_t nodes);
/// A library of files of 1,000 fragments each is loaded. `fragments` is a multiple of 1,000.
Work loadLargeLibrary(std::size_t fragments);

/// A graph of a host's own nodes is built.
Work buildHostGraph(std::size_t nodes);

// From a library file and a graph document to a complete shader: the chain of makeFunctions. All of it, then
// its parts.

Work filesToShader(std::size_t fragments);
Work readFiles(std::size_t fragments);
Work buildFromFiles(std::size_t fragments);
Work collapseFromFiles(std::size_t fragments);
Work assembleFromFiles(std::size_t fragments);

// Shapes that a careless step makes quadratic.

Work warnOfStructures(std::size_t count);    ///< of one fragment
Work warnOfHelpers(std::size_t count);       ///< of one fragment
Work warnOfProfiles(std::size_t count);      ///< of one fragment, under as many lights
Work assembleStructures(std::size_t count);  ///< with a uniform of each

}  // namespace TolmSDK::Graphics::sfg::benchmarks
