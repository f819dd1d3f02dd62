#pragma once

// The language server on two streams.

#include <iosfwd>

#include "tools/lsp/workspace.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// Reads messages until "exit" or the end of the input; answers the exit status. Three threads: one reads, so
/// that a request can be cancelled while it waits, one checks documents, and this one answers.
int serve(std::istream& in, std::ostream& out, const Settings& settings);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
