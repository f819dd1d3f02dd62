#pragma once

// Warnings about fragments' own code.

#include "host/diagnostics/collapse_facts.h"
#include "host/diagnostics/warning_list.h"

namespace TolmSDK::Graphics::sfg::host {

void warnOfCode(const CollapseFacts& facts, WarningList& warnings);

}  // namespace TolmSDK::Graphics::sfg::host
