#pragma once

// Diagnostics at places of documents.

#include <string>
#include <utility>

#include "host/documents/diagnostic_kinds.h"
#include "sfg/host/diagnostic.h"
#include "sfg/host/errors.h"
#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

inline Diagnostic diagnose(Finding kind, Severity severity, std::string file, TextPosition position,
                           std::string text, std::string suggestion = {}) {
  return {severity,
          std::move(file),
          position.line,
          position.column,
          std::move(text),
          std::string(identifierOf(kind)),
          std::move(suggestion)};
}

inline InputError inputError(Finding kind, std::string file, TextPosition position,
                             const std::string& reason) {
  return {std::move(file), position, reason, std::string(identifierOf(kind))};
}

}  // namespace TolmSDK::Graphics::sfg::host
