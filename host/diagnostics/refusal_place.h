#pragma once

// Where in the documents to look when the generator refuses a collapse.

#include <string>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// A note at the place that the generator's message is about, which says what is there: node, port, light;
/// `message` is empty for a collapse that answered null. Always names at least the graph's file.
Diagnostic findRefusalPlace(const CollapseJob& job, std::wstring_view message);

}  // namespace TolmSDK::Graphics::sfg::host
