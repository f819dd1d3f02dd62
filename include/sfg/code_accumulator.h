#pragma once

// One output text to which many fragment instances contribute symbols: each is written once, clashing names
// are renamed.

#include <memory>

#include "sfg/code_snippet.h"
#include "sfg/collapse_observer.h"
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

  /// Appends to `out` the symbols of `code` that no earlier call wrote, with `pattern`, the symbols' own
  /// positional rules and `renamePattern` applied in that order; raw text is appended as it is, every time.
  ///
  /// The symbols of one name (overloads, a prototype and its function) are a *family*, families whose texts
  /// hold one another's names a *ring*: they are known together or written together. A ring is known when an
  /// earlier call wrote one with the same instance keys and the same renames in force of other names that its
  /// texts hold: it is skipped, and referred to under the names that one has. Otherwise each family is
  /// written under its own name or, when an earlier call met or gave that, under a new one. Names that differ
  /// from a family's own are handed back as rules of `renamePattern`; what is written is written with all of
  /// them. Takes time in proportion to the texts, the rules and the matches. Throws when the text would pass
  /// the size limit of generated code.
  void append(WString& out, const CodeSnippetInstance& code, const KeywordReplacePattern& pattern,
              KeywordReplacePattern& renamePattern);

  /// The same for the definition of `function`: where its code behind the parameter list calls a function
  /// under a name that an earlier call wrote one under, that name is copied as it stands, whatever the
  /// keyword rules. Answers what getRename(function) does then.
  const WString& appendDefinition(WString& out, const CodeSnippetInstance& code,
                                  const KeywordReplacePattern& pattern, KeywordReplacePattern& renamePattern,
                                  const WString& function);

  /// From now on keeps what each call wrote.
  void keepWritten();
  /// What the last call wrote, in order; nothing without keepWritten().
  const Array<WrittenSymbol>& getWritten() const noexcept;

  /// The name last used for `name`; `name` itself when it was never written.
  const WString& getRename(const WString& name) const;

  /// Back to the state of construction.
  void clear();

private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace TolmSDK::Graphics::sfg
