#pragma once

// What is valid, but hardly what was meant: found in the text of libraries and graphs, without a collapse.

#include <span>
#include <string>
#include <vector>

#include "host/library/loaded_libraries.h"
#include "sfg/host/diagnostic.h"
#include "sfg/host/document.h"

namespace TolmSDK::Graphics::sfg::host {

/// Warnings of the fragments that count and of the include files, each at the character it is about, in the
/// order of the files and of their text. `files`: only what is told of these library and include files, with
/// their paths as the libraries have them; of all without any. What loading finds is among the libraries'
/// problems(), not here. Any number of threads may ask at once.
std::vector<Diagnostic> lintLibraries(const LoadedLibraries& libraries,
                                      std::span<const std::string> files = {});

/// Warnings of a graph document, in the order of its text; none of one that cannot be read, of one without
/// places, and of what a collapse refuses or warns of.
std::vector<Diagnostic> lintGraph(const LoadedLibraries& libraries, const Document& graph);

}  // namespace TolmSDK::Graphics::sfg::host
