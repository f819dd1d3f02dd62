#pragma once

// What a person is told, as data.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "sfg/host/export.h"

namespace TolmSDK::Graphics::sfg::host {

/// How a diagnostic is shown. A message is a line of the generator's own, shown as it stands.
enum class Severity { error, warning, note, message };

/// One thing to tell. Lower case, no full stop, code in backticks (but in messages). Texts are UTF-8.
struct Diagnostic {
  Severity severity = Severity::error;
  /// A file, or the name of a document in memory; empty where nothing can be pointed at.
  std::string file;
  /// Counted from 1, columns in code points; zero where they are not known.
  std::size_t line = 0;
  std::size_t column = 0;
  std::string text;
  /// What kind of thing is told, "unknown-key": one of diagnosticKinds(), the same in every version.
  std::string identifier;
  /// The name that was meant in place of the one at the place, for who mends it; the text says it, too. Empty
  /// where none comes to mind.
  std::string suggestion = {};

  /// "graph.json:3:14", "generated:3", "graph.json", or empty.
  SFG_HOST_API std::string place() const;
  bool operator==(const Diagnostic&) const = default;
};

/// A kind of diagnostic. Texts last as long as the program.
struct DiagnosticKind {
  std::string_view identifier;  ///< letters and dashes
  std::string_view meaning;
};
/// All kinds that this library and its command tell.
SFG_HOST_API std::span<const DiagnosticKind> diagnosticKinds() noexcept;

}  // namespace TolmSDK::Graphics::sfg::host
