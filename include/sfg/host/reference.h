#pragma once

// What documents and code may say, for people to read.

#include <string>

#include "sfg/host/export.h"

namespace TolmSDK::Graphics::sfg::host {

enum class ReferenceTopic { library, graph, environment, types, state, manifest };

/// Markdown, UTF-8: of a document a table of keys for each kind of object, made of the tables that the
/// readers use; all types; all state variables.
SFG_HOST_API std::string referenceText(ReferenceTopic topic);

}  // namespace TolmSDK::Graphics::sfg::host
