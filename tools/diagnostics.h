#pragma once

// Diagnostics of the commands: lower case, no full stop, code in backticks, on the standard error stream.

#include <iosfwd>
#include <span>
#include <string>

#include "sfg/host/diagnostic.h"

namespace TolmSDK::Graphics::sfg::tools {

/// Writes one diagnostic a line: "PLACE: error: text", with "sfg" for an empty place. Colours only where the
/// stream is a terminal that wants them.
class Diagnostics {
public:
  Diagnostics(std::ostream& out, bool colours) : out_(out), colours_(colours) {}
  /// The standard error stream.
  static Diagnostics standard();

  void error(const std::string& place, const std::string& text) { write(place, "error", "\033[1;31m", text); }
  void warning(const std::string& place, const std::string& text) {
    write(place, "warning", "\033[1;35m", text);
  }
  void note(const std::string& place, const std::string& text) { write(place, "note", "\033[1;36m", text); }
  void show(std::span<const host::Diagnostic> diagnostics);
  /// A line of somebody else, as it stands.
  void plain(const std::string& text);

private:
  void write(const std::string& place, const char* kind, const char* colour, const std::string& text);

  std::ostream& out_;
  bool colours_;
};

}  // namespace TolmSDK::Graphics::sfg::tools
