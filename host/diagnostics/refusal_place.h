#pragma once

// Where in the documents to look when the generator refuses a collapse.

#include <string>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// A place ("graph.json:3:5", or a file alone) and what is there: node, port, light.
struct RefusalPlace {
  std::string place;
  std::string text;
};

/// What the generator's message is about; `message` is empty for a collapse that answered null. Always names
/// at least the graph's file.
RefusalPlace findRefusalPlace(const CollapseJob& job, std::wstring_view message);

}  // namespace TolmSDK::Graphics::sfg::host
