#pragma once

// What is valid, but hardly what was meant: told of libraries and graphs without collapsing them.

#include <span>
#include <string>
#include <vector>

#include "host/job/collapse_job.h"
#include "host/library/loaded_libraries.h"
#include "sfg/host/diagnostic.h"

namespace TolmSDK::Graphics::sfg::host {

/// Warnings of the fragments that count and of the include files, each at the character it is about, in the
/// order of the files and of their text. `files`: only what is told of these library and include files, with
/// their paths as the libraries have them; all without any. What loading finds is among the libraries'
/// problems(), not here. Takes time in proportion to the texts. Any number of threads may ask at once.
std::vector<Diagnostic> lintLibraries(const LoadedLibraries& libraries,
                                      std::span<const std::string> files = {});

/// Warnings of the graph document of a job, collapsed or not, in the order of its text; none of a graph
/// without places. What a collapse finds is among findWarnings(), not here.
std::vector<Diagnostic> lintGraph(const CollapseJob& job);

}  // namespace TolmSDK::Graphics::sfg::host
