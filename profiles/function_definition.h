#pragma once

// How the function-like profile modes write a definition.

#include <cstddef>
#include <memory>
#include <string_view>

#include "profiles/kept_code.h"
#include "profiles/parameter_text.h"
#include "profiles/shader_temporaries.h"
#include "sfg/code_snippet.h"
#include "sfg/fragment_profile_instance.h"
#include "sfg/keyword_replace.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tolmsdk/text_parameter_list.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Writes one instance's definition: "void NAME(", the parameters with those of the state variables, ")", and
/// the body in braces. Refers to its arguments: used at once and thrown away.
class FunctionDefinition {
public:
  FunctionDefinition(const AShaderFragmentProfile& profile, AShaderCollapseContext& context,
                     FragmentProfileInstance& instance)
      : profile_(profile), context_(context), instance_(instance) {}

  /// Constructs `out` over the definition, whose body has the rules of `first`, then those of the instance,
  /// applied. The instance's keyword rules serve this one definition and are cleared. False, with `out`
  /// untouched, when a state-variable parameter cannot be added.
  bool write(CodeSnippetInstance& out, const KeywordReplacePattern& first) const;

  /// The same for a body that `expand(CallerText&, start)` may then change, from its start in the text on.
  template <class Expand>
  bool writeExpanded(CodeSnippetInstance& out, Expand&& expand) const {
    ATextParameterList state;
    if (!addStateInputs(state, profile_, context_)) return false;
    Text text;
    writeHead(text, state);
    KeywordReplacer replacer;
    addRules(replacer, KeywordReplacePattern());
    appendBody(text, replacer);
    expand(static_cast<CallerText&>(text), bodyBegin(text));
    clearKeywordRules();
    finish(text);
    AShaderFragmentProfile::constructOwned(out, text.code, instance_.getBuiltinFunctionValueInBody());
    return true;
  }

private:
  static constexpr std::wstring_view kResult = L"void ";
  static constexpr std::wstring_view kOpening = L"{\n";
  static constexpr std::wstring_view kTail = L"}\n";

  struct Text : CallerText {
    std::size_t nameLength = 0;
    std::size_t body = 0;  // where its opening brace stands
  };

  void writeHead(Text& text, const ATextParameterList& state) const;
  void addRules(KeywordReplacer& replacer, const KeywordReplacePattern& first) const;
  void appendBody(Text& text, const KeywordReplacer& replacer) const;
  /// What the definition depends on beside the profile's own texts.
  CodeKey makeKey(const ATextParameterList& state, const KeywordReplacer& replacer) const;
  std::unique_ptr<CodeSnippet> make(const ATextParameterList& state, const KeywordReplacer& replacer,
                                    bool isKept) const;
  void clearKeywordRules() const;
  static std::size_t bodyBegin(const Text& text) { return text.body + kOpening.size(); }
  /// Numbers the temporaries of the body and closes it.
  static void finish(Text& text);
  bool isPlainFunction(const Text& text, const KeywordReplacer& replacer) const;

  const AShaderFragmentProfile& profile_;
  AShaderCollapseContext& context_;
  FragmentProfileInstance& instance_;
};

}  // namespace TolmSDK::Graphics::sfg
