#pragma once

// What becomes of names and statements when a fragment is used beside others.

#include "host/lints/lint_list.h"

namespace TolmSDK::Graphics::sfg::host {

/// Uniforms and helpers whose names occur inside other identifiers.
void lintNames(const LintedFile& file, const LintedFragment& fragment, LintList& lints);
/// Statements of the predefines that are written for every use.
void lintStatements(const LintedFile& file, const LintedFragment& fragment, LintList& lints);

}  // namespace TolmSDK::Graphics::sfg::host
