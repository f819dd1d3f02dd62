#pragma once

// Lints as they are found.

#include <string>
#include <utility>
#include <vector>

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/lints/linted_fragment.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

/// Puts lints at their places.
class LintList {
public:
  void at(Finding kind, const std::string& file, TextPosition position, std::string text) {
    lints_.push_back(diagnose(kind, Severity::warning, file, position, std::move(text)));
  }
  void add(Diagnostic lint) { lints_.push_back(std::move(lint)); }
  /// In the order of files, in each in that of its text.
  std::vector<Diagnostic> take();

private:
  std::vector<Diagnostic> lints_;
};

/// "fragment `noise`"
inline std::string named(const LintedFragment& fragment) { return "fragment " + inTicks(fragment.name); }

}  // namespace TolmSDK::Graphics::sfg::host
