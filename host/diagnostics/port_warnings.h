#pragma once

// Warnings about what nodes are given.

#include "host/diagnostics/collapse_facts.h"
#include "host/diagnostics/warning_list.h"

namespace TolmSDK::Graphics::sfg::host {

/// For a result that is not assembled: graph inputs that a light loop names.
void warnOfGraphInputs(const CollapseFacts& facts, WarningList& warnings);

/// What an `inout` parameter is given must be a variable: neither a uniform nor a constant is one.
void warnOfInoutPorts(const CollapseFacts& facts, WarningList& warnings);

/// An input that nothing is wired to and nothing gives a value is 0, which is seldom meant. Not told of types
/// without values, which the host binds, and of inputs whose code asks whether they are connected.
void warnOfUnconnectedInputs(const CollapseFacts& facts, WarningList& warnings);

}  // namespace TolmSDK::Graphics::sfg::host
