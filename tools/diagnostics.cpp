#include "tools/diagnostics.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// NO_COLOR (https://no-color.org) and a dumb terminal switch colours off.
bool wantsColours() {
  const char* const noColour = std::getenv("NO_COLOR");
  return (noColour == nullptr || *noColour == '\0') && Diagnostics::isTerminal();
}

struct Kind {
  const char* word;
  const char* colour;
};

const Kind& kindOf(host::Severity severity) {
  static constexpr Kind kError = {"error", "\033[1;31m"};
  static constexpr Kind kWarning = {"warning", "\033[1;35m"};
  static constexpr Kind kNote = {"note", "\033[1;36m"};
  if (severity == host::Severity::warning) return kWarning;
  return severity == host::Severity::note ? kNote : kError;
}

/// With the same severity or as an error.
bool isToldAgain(host::Diagnostic held, const host::Diagnostic& other) {
  if (other.severity == host::Severity::error) held.severity = other.severity;
  return held == other;
}

}  // namespace

bool Diagnostics::isTerminal() {
  const char* const terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) != 0 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

Diagnostics Diagnostics::standard() {
  return Diagnostics(std::cerr, wantsColours(), isatty(STDERR_FILENO) != 0);
}

void Diagnostics::hold(std::span<const host::Diagnostic> diagnostics) {
  held_.insert(held_.end(), diagnostics.begin(), diagnostics.end());
}

void Diagnostics::release(std::span<const host::Diagnostic> next) {
  for (const host::Diagnostic& held : held_) {
    const auto tellsIt = [&held](const host::Diagnostic& other) { return isToldAgain(held, other); };
    if (std::none_of(next.begin(), next.end(), tellsIt)) write(held);
  }
  held_.clear();
}

void Diagnostics::show(std::span<const host::Diagnostic> diagnostics) {
  release(diagnostics);
  for (const host::Diagnostic& diagnostic : diagnostics) write(diagnostic);
}

void Diagnostics::show(const host::Diagnostic& diagnostic) { show({&diagnostic, 1}); }

void Diagnostics::write(const host::Diagnostic& diagnostic) {
  if (diagnostic.severity == host::Severity::message) {
    out_ << diagnostic.text << '\n' << std::flush;
    return;
  }
  const Kind& kind = kindOf(diagnostic.severity);
  const std::string place = diagnostic.place();
  const std::string start = (place.empty() ? std::string("sfg") : place) + ": ";
  const std::string end = diagnostic.text + " [" + diagnostic.identifier + "]\n";
  if (!shown_.insert(start + kind.word + end).second) return;
  out_ << start;
  if (colours_) {
    out_ << kind.colour << kind.word << ":\033[0m " << end;
  } else {
    out_ << kind.word << ": " << end;
  }
  if (detail_ == Detail::full || (detail_ == Detail::standard && showsLines_)) {
    out_ << sources_.show(diagnostic.file, diagnostic.line, diagnostic.column);
  }
  out_ << std::flush;
}

void Diagnostics::plain(const std::string& text) {
  release({});
  out_ << text << '\n' << std::flush;
}

}  // namespace TolmSDK::Graphics::sfg::tools
