#pragma once

// What readers below this host say of a document: place and reason apart, as diagnostics show them.

#include <string>
#include <string_view>

#include "host/documents/diagnostic_kinds.h"
#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

struct LoadError {
  Finding kind = Finding::wrongValue;
  TextPosition position;  ///< nowhere when the message tells none
  std::string text;
  std::string suggestion = {};  ///< in place of what stands there
};

/// Of "line 3, column 4: expected a value", for a document that is no JSON or cannot be read.
LoadError documentError(std::string_view message);
/// Of the same form for a parameter object. A name that is no type is followed by what types there are.
LoadError parameterError(std::string_view message);

}  // namespace TolmSDK::Graphics::sfg::host
