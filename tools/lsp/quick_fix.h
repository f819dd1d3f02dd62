#pragma once

// Code actions: the name that was meant in place of the one that is there.

#include <string>
#include <utility>
#include <vector>

#include "tools/lsp/findings.h"
#include "tools/lsp/view.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// A finding of a document, as it was told.
struct ToldFinding {
  host::Diagnostic diagnostic;
  Json json;
};

/// CodeActions for the findings that touch the range.
Json quickFixes(const OpenDocument& document, const std::vector<ToldFinding>& findings, const Range& range,
                Encoding encoding, bool hasVersions);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
