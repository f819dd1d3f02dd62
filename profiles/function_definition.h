#pragma once

// How the function-like profile modes write a definition.

#include <cstddef>

#include "sfg/code_snippet.h"
#include "sfg/fragment_profile_instance.h"
#include "sfg/keyword_replace.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tolmsdk/text_parameter_list.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Writes one instance's definition. Refers to its arguments: used at once and thrown away.
class FunctionDefinition {
public:
  FunctionDefinition(const AShaderFragmentProfile& profile, AShaderCollapseContext& context,
                     FragmentProfileInstance& instance)
      : profile_(profile), context_(context), instance_(instance) {}

  /// Constructs `out` over "void NAME(", the parameters with those of the state variables, ")", and the body
  /// in braces. The body has the rules of `first`, then those of the instance, applied; `expand(text, start)`
  /// may then change the text from the body's start on. The instance's keyword rules serve this one
  /// definition and are cleared. False, with `out` untouched, when a state-variable parameter cannot be
  /// added.
  template <class Expand>
  bool write(CodeSnippetInstance& out, const KeywordReplacePattern& first, Expand&& expand) const {
    ATextParameterList parameters(*profile_.getFunctionParameters());
    if (!context_.addStateVariableParameters(&parameters, &profile_)) return false;

    WString text;
    text.reserve(profile_.getFunctionBody().size() + kTypicalHeadLength);
    text += L"void ";
    text += instance_.getFunctionName();
    text += L'(';
    parameters.writeParameters(text, L"    ", true);
    text += L")\n{\n";

    const std::size_t body = text.size();
    appendBody(text, first);
    instance_.getKeywordReplacePattern().clearReplacePattern();
    expand(text, body);
    text += L"}\n";
    AShaderFragmentProfile::constructOwned(out, text, instance_.getBuiltinFunctionValueInBody());
    return true;
  }

private:
  static constexpr std::size_t kTypicalHeadLength = 256;

  void appendBody(WString& text, const KeywordReplacePattern& first) const {
    KeywordReplacer replacer;
    replacer.addReplacePattern(first);
    replacer.addReplacePattern(instance_.getKeywordReplacePattern());
    replacer.addReplacePattern(instance_.getUniformReplacePattern());
    replacer.addReplacePattern(instance_.getShaderReplacePattern());
    replacer.appendReplaced(text, profile_.getFunctionBody());
  }

  const AShaderFragmentProfile& profile_;
  AShaderCollapseContext& context_;
  FragmentProfileInstance& instance_;
};

}  // namespace TolmSDK::Graphics::sfg
