#pragma once

// Where in the documents to look when the generator refuses a collapse.

#include <string_view>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// What the generator's message is about, at its place: node, port, light; `message` is empty for a collapse
/// that answered null. An error that says all there is to say; or a note, behind what it follows from, when
/// that is a fragment that did not load; or a note alone where nothing better is known than the file or an
/// output ("collapse-place").
std::vector<Diagnostic> findRefusalPlace(const CollapseJob& job, std::wstring_view message);

}  // namespace TolmSDK::Graphics::sfg::host
