#pragma once

// Diagnostics for other programs.

#include <nlohmann/json.hpp>

#include "sfg/host/diagnostic.h"

namespace TolmSDK::Graphics::sfg::host {

/// A message is shown as an error.
inline const char* nameOf(Severity severity) {
  switch (severity) {
  case Severity::warning: return "warning";
  case Severity::note: return "note";
  case Severity::error:
  case Severity::message: break;
  }
  return "error";
}

inline nlohmann::ordered_json jsonOf(const Diagnostic& diagnostic) {
  return {{"file", diagnostic.file},
          {"line", diagnostic.line},
          {"column", diagnostic.column},
          {"severity", nameOf(diagnostic.severity)},
          {"identifier", diagnostic.identifier},
          {"text", diagnostic.text}};
}

}  // namespace TolmSDK::Graphics::sfg::host
