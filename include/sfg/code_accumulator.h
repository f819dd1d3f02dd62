#pragma once

// One output text to which many fragment instances contribute symbols: each is written once, clashing names
// are renamed.

#include <memory>

#include "sfg/code_snippet.h"
#include "sfg/export.h"
#include "sfg/keyword_replace.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Used by one thread during one collapse. Copying would only ever be a mistake.
class SFG_API CodeAccumulator {
public:
  CodeAccumulator();
  ~CodeAccumulator();
  CodeAccumulator(const CodeAccumulator&) = delete;
  CodeAccumulator& operator=(const CodeAccumulator&) = delete;

  /// Appends to `out` the symbols of `code` that were not written before, with `pattern`, the symbols' own
  /// positional rules and `renamePattern` applied in that order; raw text is appended as it is, every time. A
  /// symbol whose name an earlier call used gets a new one, and the rule is added to `renamePattern`. A
  /// symbol is known when its instance key and the renames in force that occur in its text are those of one
  /// written before: it is skipped, and referred to under the name that one has. Throws when the text would
  /// pass the size limit of generated code.
  void append(WString& out, const CodeSnippetInstance& code, const KeywordReplacePattern& pattern,
              KeywordReplacePattern& renamePattern);

  /// The name last used for `name`; `name` itself when it was never written.
  const WString& getRename(const WString& name) const;

  /// Back to the state of construction.
  void clear();

private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace TolmSDK::Graphics::sfg
