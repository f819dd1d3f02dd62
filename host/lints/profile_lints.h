#pragma once

// Profiles that are never chosen, or for nothing.

#include "host/lints/lint_list.h"

namespace TolmSDK::Graphics::sfg::host {

void lintProfiles(const LintedFile& file, const LintedFragment& fragment, LintList& lints);

}  // namespace TolmSDK::Graphics::sfg::host
