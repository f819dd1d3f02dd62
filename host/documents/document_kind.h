#pragma once

// What kind of document a JSON text is, told by the keys of its root object.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sfg/host/schema.h"

namespace TolmSDK::Graphics::sfg::host {

/// The kind that knows most of the keys, or keys near to them; nothing where none knows any.
std::optional<DocumentKind> kindOfKeys(const std::vector<std::string>& keys);

/// The keys of the root object as they are written, in time in proportion to the text. A text that is no JSON
/// gives those that it has up to its fault; one whose root is no object has none.
std::vector<std::string> rootKeys(std::string_view json);

}  // namespace TolmSDK::Graphics::sfg::host
