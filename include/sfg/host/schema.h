#pragma once

// What documents may hold, for editors and other tools.

#include <string>

#include "sfg/host/export.h"

namespace TolmSDK::Graphics::sfg::host {

enum class DocumentKind { library, graph, environment, manifest };

/// The JSON Schema (draft 2020-12, UTF-8) of a kind of document, made of the tables that the readers use: it
/// refuses keys that no reader knows, and values of another kind than they take. Keys that begin with "//"
/// are comments. Names are not followed: whether a node or fragment is there is the readers' business.
SFG_HOST_API std::string documentSchema(DocumentKind kind);

}  // namespace TolmSDK::Graphics::sfg::host
