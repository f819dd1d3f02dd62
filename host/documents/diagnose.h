#pragma once

// Diagnostics at places of documents.

#include <string>
#include <utility>

#include "sfg/host/diagnostic.h"
#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

inline Diagnostic diagnose(Severity severity, std::string file, TextPosition position, std::string text) {
  return {severity, std::move(file), position.line, position.column, std::move(text)};
}

}  // namespace TolmSDK::Graphics::sfg::host
