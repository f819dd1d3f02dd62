#pragma once

// The parameters of generated functions as text.

#include <string_view>
#include <utility>

#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_profile_base.h"
#include "text/pieces.h"
#include "tolmsdk/text_parameter_list.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Appends parameters one by one in the form of ITextParameterList::writeParameters, without a list.
class ParameterWriter {
public:
  /// The prefix of each line is so many blanks, eight at most. Refers to the text.
  ParameterWriter(WString& out, std::size_t blanks)
      : out_(out), lineBegin_(kLineBegin.substr(0, 2 + blanks)) {}

  void writeName(std::wstring_view name) {
    out_ += beginLine();
    out_ += name;
  }
  void writeDeclaration(std::wstring_view direction, std::wstring_view type, std::wstring_view name) {
    const std::wstring_view blank = type.empty() ? L"" : L" ";
    appendPieces(out_, beginLine(), direction, type, blank, name);
  }

private:
  static constexpr std::wstring_view kLineBegin = L",\n        ";

  /// The comma belongs to the line before.
  std::wstring_view beginLine() { return std::exchange(isFirst_, false) ? lineBegin_.substr(1) : lineBegin_; }

  WString& out_;
  std::wstring_view lineBegin_;
  bool isFirst_ = true;
};

/// The inputs that the profile's state variables add to its own. False when one cannot be added.
inline bool addStateInputs(ATextParameterList& list, const AShaderFragmentProfile& profile,
                           const AShaderCollapseContext& context) {
  if (profile.stateVariables().empty() && profile.customStateVariables().empty()) return true;
  return context.addStateVariableParameters(&list, &profile);
}

/// Appends the declaration of a profile's parameters: its inputs, those of its state variables, its outputs.
inline void appendDeclaredParameters(WString& out, std::size_t blanks, const AShaderFragmentProfile& profile,
                                     const ATextParameterList& state) {
  const ITextParameterList& own = *profile.getFunctionParameters();
  ParameterWriter writer(out, blanks);
  for (std::size_t i = 0; i < own.getNumInputs(); ++i)
    writer.writeDeclaration(L"", own.getInputType(i), own.getInputName(i));
  for (std::size_t i = 0; i < state.getNumInputs(); ++i)
    writer.writeDeclaration(L"", state.getInputType(i), state.getInputName(i));
  for (std::size_t i = 0; i < own.getNumOutputs(); ++i)
    writer.writeDeclaration(L"out ", own.getOutputType(i), own.getOutputName(i));
}

/// Appends the arguments of a call in the same order.
inline bool appendArguments(WString& out, std::size_t blanks, const AShaderFragmentProfile& profile,
                            const AShaderCollapseContext& context, const Array<WString>& inputValues,
                            const Array<WString>& outputValues) {
  ATextParameterList state;
  if (!addStateInputs(state, profile, context)) return false;
  ParameterWriter writer(out, blanks);
  for (const WString& value : inputValues) writer.writeName(value);
  for (std::size_t i = 0; i < state.getNumInputs(); ++i) writer.writeName(state.getInputName(i));
  for (const WString& value : outputValues) writer.writeName(value);
  return true;
}

}  // namespace TolmSDK::Graphics::sfg
