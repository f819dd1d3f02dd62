#include "tools/diagnostics.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string_view>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// NO_COLOR (https://no-color.org) and a dumb terminal switch colours off.
bool wantsColours() {
  const char* const noColour = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  if (noColour != nullptr && *noColour != '\0') return false;
  return isatty(STDERR_FILENO) != 0 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

}  // namespace

Diagnostics Diagnostics::standard() { return Diagnostics(std::cerr, wantsColours()); }

void Diagnostics::show(std::span<const host::Diagnostic> diagnostics) {
  for (const host::Diagnostic& diagnostic : diagnostics) {
    switch (diagnostic.severity) {
    case host::Severity::error: error(diagnostic.place(), diagnostic.text); break;
    case host::Severity::warning: warning(diagnostic.place(), diagnostic.text); break;
    case host::Severity::note: note(diagnostic.place(), diagnostic.text); break;
    case host::Severity::message: plain(diagnostic.text); break;
    }
  }
}

void Diagnostics::plain(const std::string& text) { out_ << text << '\n' << std::flush; }

void Diagnostics::write(const std::string& place, const char* kind, const char* colour,
                        const std::string& text) {
  const std::string line = (place.empty() ? std::string("sfg") : place) + ": ";
  if (colours_) {
    out_ << line << colour << kind << ":\033[0m " << text << '\n' << std::flush;
  } else {
    out_ << line << kind << ": " << text << '\n' << std::flush;
  }
}

}  // namespace TolmSDK::Graphics::sfg::tools
