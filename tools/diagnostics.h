#pragma once

// Diagnostics of the commands: lower case, no full stop, code in backticks, on the standard error stream.

#include <iosfwd>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "sfg/host/diagnostic.h"
#include "tools/source_view.h"

namespace TolmSDK::Graphics::sfg::tools {

/// How much is shown: `standard` is full where the stream is a terminal.
enum class Detail { standard, brief, full };

/// Writes one diagnostic a line: "PLACE: error: text [identifier]", with "sfg" for an empty place; in full
/// the line of the file, and a caret, behind it. What was shown is not shown again. Colours only where the
/// stream is a terminal that wants them.
class Diagnostics {
public:
  Diagnostics(std::ostream& out, bool colours, bool showsLines = false)
      : out_(out), colours_(colours), showsLines_(showsLines) {}
  Diagnostics(const Diagnostics&) = delete;
  Diagnostics& operator=(const Diagnostics&) = delete;
  ~Diagnostics() { release({}); }
  /// The standard error stream.
  static Diagnostics standard();
  /// Whether that is one on which a line can be written over.
  static bool isTerminal();

  void setDetail(Detail detail) { detail_ = detail; }
  /// What is shown at once when something else is, in front of it, unless that tells the same again: then
  /// only there, beside what follows from it.
  void hold(std::span<const host::Diagnostic> diagnostics);
  void show(const host::Diagnostic& diagnostic);
  void show(std::span<const host::Diagnostic> diagnostics);
  /// An error of the command itself.
  void error(const std::string& place, const std::string& text, const std::string& identifier) {
    show(host::Diagnostic{host::Severity::error, place, 0, 0, text, identifier});
  }
  /// What the command does.
  void note(const std::string& place, const std::string& text, const std::string& identifier) {
    show(host::Diagnostic{host::Severity::note, place, 0, 0, text, identifier});
  }
  /// A line of somebody else, as it stands.
  void plain(const std::string& text);

private:
  void release(std::span<const host::Diagnostic> next);
  void write(const host::Diagnostic& diagnostic);

  std::ostream& out_;
  bool colours_;
  bool showsLines_;
  Detail detail_ = Detail::standard;
  std::vector<host::Diagnostic> held_;
  std::set<std::string> shown_;
  SourceView sources_;
};

}  // namespace TolmSDK::Graphics::sfg::tools
