#pragma once

// Warnings about the pre-process and post-process chains.

#include "host/diagnostics/collapse_facts.h"
#include "host/diagnostics/warning_list.h"

namespace TolmSDK::Graphics::sfg::host {

/// The default tool evaluates no post-process fragments; colours that are encoded for the screen twice are
/// too bright.
void warnOfChains(const CollapseFacts& facts, WarningList& warnings);

}  // namespace TolmSDK::Graphics::sfg::host
