#pragma once

// Which of the three documents a text is.

#include <optional>
#include <string>

#include "sfg/host/schema.h"
#include "tools/lsp/json_scan.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// By the file's extension, else by "$schema" and the keys at the top, mistyped ones too. Nothing for another
/// JSON file. `languageId` is what the editor calls it.
std::optional<host::DocumentKind> kindOf(const std::string& path, const std::string& languageId,
                                         const JsonScan& scan);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
