#pragma once

// What is wrong from one round of a build to the next.

#include <map>
#include <string>
#include <vector>

#include "sfg/host/diagnostic.h"

namespace TolmSDK::Graphics::sfg::tools {

/// What is told of each thing: a shader by its output, or whatever else can be wrong by a name of its own.
using Troubles = std::map<std::string, std::vector<host::Diagnostic>>;

bool hasErrors(const std::vector<host::Diagnostic>& diagnostics);

struct TroubleNews {
  std::vector<host::Diagnostic> come;  ///< all of things of which something new is told
  std::vector<std::string> gone;       ///< things that had errors and have none
};
TroubleNews compareTroubles(const Troubles& before, const Troubles& now);

}  // namespace TolmSDK::Graphics::sfg::tools
