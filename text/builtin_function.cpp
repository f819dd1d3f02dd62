#include "sfg/builtin_function.h"

#include "text/builtin_names.h"
#include "text/scan.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// Past any blanks and comments, also comments that stand side by side.
void skipToList(const ScopedText& text, std::size_t& pos) {
  for (std::size_t before = kNotFound; before != pos;) {
    before = pos;
    scan::skipWhitespaces(text, pos);
  }
}

/// Splits at every comma. What counts as one argument is odd, but stated: see BuiltinFunction::arguments.
void splitArguments(Array<ScopedText>& arguments, const ScopedText& inside) {
  ScopedText argument;
  for (std::size_t i = 0; i < inside.length; ++i) {
    const wchar_t c = inside.text[i];
    if (scan::isWhitespace(c)) continue;
    if (c == L',') {
      arguments.push_back(argument);
      argument = ScopedText();
      continue;
    }
    if (argument.empty()) argument.text = inside.text + i;
    ++argument.length;
  }
  if (!argument.empty()) arguments.push_back(argument);
}

}  // namespace

const UString sfg_isConnected(kIsConnectedName);
const UString sfg_isNotConnected(kIsConnectedName);
const UString sfg_shader(kShaderName);
const UString sfg_isFinalOutput(kIsFinalOutputName);

EBuiltinFunctionId getBuiltinFunctionId(const UString& name) { return findBuiltinFunctionId(name.view()); }

WString getBuiltinFunctionString(EBuiltinFunctionId id) {
  switch (id) {
  case eBuiltinFunctionUnknown: return L"sfg_unkown";
  case eBuiltinFunctionIsConnected:
  case eBuiltinFunctionIsNotConnected: return WString(kIsConnectedName);
  case eBuiltinFunctionShader: return WString(kShaderName);
  case eBuiltinFunctionIsFinalOutput: return WString(kIsFinalOutputName);
  }
  return {};
}

bool BuiltinFunction::parse(EBuiltinFunctionId callee, const ScopedText& text, std::size_t start,
                            std::size_t& pos) {
  id = callee;
  skipToList(text, pos);
  const ScopedText list = scan::getBracketBody(text, pos, L'(', L')');
  if (list.length < 2) return false;
  splitArguments(arguments, list.substr(1, list.length - 2));
  range = ScopedText(text.text + start, pos - start);
  return true;
}

}  // namespace TolmSDK::Graphics::sfg
