#pragma once

// What is valid input, but cannot become right code.

#include <string>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

struct Warning {
  std::string place;  ///< "graph.json:3:5": in the graph, the environment or a fragment library
  std::string text;
};

/// The warnings of a job that has run, each cause once, in the order of nodes, lights and fragments.
/// `completeShader`: the result is assembled, so that graph inputs of a light loop are declared around it.
std::vector<Warning> findWarnings(const CollapseJob& job, bool completeShader);

}  // namespace TolmSDK::Graphics::sfg::host
