#pragma once

// Warnings about lit nodes and lights.

#include "host/diagnostics/collapse_facts.h"
#include "host/diagnostics/warning_list.h"

namespace TolmSDK::Graphics::sfg::host {

void warnOfLights(const CollapseFacts& facts, WarningList& warnings);

}  // namespace TolmSDK::Graphics::sfg::host
