#pragma once

// Indentation of generated code by brace depth.

#include "sfg/export.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Writes lines with their leading whitespace replaced by one tab per brace level. Every brace counts, also
/// in comments and strings; surplus closing braces drive the level below zero. Neither copied nor moved: it
/// may point at its own result.
class SFG_API CodeFormatter {
public:
  /// Starts at a level; a negative one counts as 0.
  explicit CodeFormatter(int indent = 0);
  CodeFormatter(const CodeFormatter&) = delete;
  CodeFormatter& operator=(const CodeFormatter&) = delete;

  /// Writes one line and a line feed. Removes the leading whitespace of the caller's string too. Throws, with
  /// nothing written, when the result would pass the size limit of generated code.
  void addLine(WString& line);
  /// The same for a NUL-terminated text; null is ignored.
  void addLine(const wchar_t* line);

  /// Redirects the output to a string that outlives this; false for null, which changes nothing.
  bool setResult(WString* result);
  const WString& getResult() const { return *result_; }

private:
  void addIdent(WString& s, int count);
  int getNextLineIdent(const WString& line, int indent);

  WString lineBuffer_;
  WString ownResult_;
  WString* result_;
  int indent_;
};

}  // namespace TolmSDK::Graphics::sfg
