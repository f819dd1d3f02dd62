#pragma once

// The texts of a collapse's result.

#include <string_view>

#include "collapse/written_definitions.h"
#include "sfg/code_accumulator.h"
#include "sfg/fragment_profile_instance.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Appends to the body and, through one accumulator, to the predefines of a profile. Throws only when a text
/// would pass the size limit of generated code.
class ResultWriter {
public:
  explicit ResultWriter(AShaderFragmentProfile& profile) : profile_(&profile) {}

  void writeCode(std::wstring_view text);
  /// Text without a symbol (blanks and comments only) is dropped; preprocessor lines are kept.
  void writePredefine(const WString& text);
  void writePredefine(const CodeSnippetInstance& code, const KeywordReplacePattern& pattern,
                      KeywordReplacePattern& localPattern);
  /// Also renames the instance's function to the name it was written under.
  void writeDefinition(const CodeSnippetInstance& code, const KeywordReplacePattern& pattern,
                       FragmentProfileInstance& instance);

  /// From now on writtenSymbols() are those of the last call that wrote predefines or a definition.
  void keepWrittenSymbols() { accumulator_.keepWritten(); }
  const Array<WrittenSymbol>& writtenSymbols() const noexcept { return accumulator_.getWritten(); }

  /// Gives the function the name under which another instance wrote it; false when none did. The language
  /// names the types of state.
  bool takeWrittenDefinition(FragmentProfileInstance& instance, const ILanguageTraits* language);
  /// Of the definition that was to be taken last.
  void rememberWrittenDefinition(const FragmentProfileInstance& instance);

private:
  RefPtr<AShaderFragmentProfile> profile_;
  CodeAccumulator accumulator_;
  WrittenDefinitions definitions_;
};

}  // namespace TolmSDK::Graphics::sfg
