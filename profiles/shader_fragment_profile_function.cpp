#include "sfg/shader_fragment_profile_function.h"

#include <string_view>
#include <utility>

#include "profiles/function_definition.h"
#include "profiles/object_reader.h"
#include "profiles/parameter_text.h"
#include "sfg/code_formatter.h"
#include "sfg/fragment_profile_instance.h"
#include "sfg/shader_collapse_context.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {

using namespace std::string_view_literals;

AShaderFragmentProfileFunction::AShaderFragmentProfileFunction()
    : AShaderFragmentProfileFunction(EShaderFragmentProfileMode::Function) {}

AShaderFragmentProfileFunction::AShaderFragmentProfileFunction(EShaderFragmentProfileMode mode)
    : AShaderFragmentProfile(mode) {}

AShaderFragmentProfileFunction::~AShaderFragmentProfileFunction() = default;

bool AShaderFragmentProfileFunction::loadImplementation(const IObjectDataNode* lines) {
  if (lines == nullptr) return false;

  // Everything up to the line with the first "{" is the prototype; what follows that brace is the body.
  WString prototype;
  WString firstLine;
  Array<WString> bodyLines;
  bool inBody = false;
  readStrings(L"implementation", *lines, [&](WString line) {
    if (inBody) {
      bodyLines.push_back(std::move(line));
      return;
    }
    prototype += line;
    const std::size_t brace = line.find(L'{');
    if (brace == WString::npos) return;
    firstLine.assign(line, brace + 1);
    inBody = true;
  });
  if (!setFunctionPrototype(prototype)) return false;

  WString body;
  CodeFormatter formatter(1);
  formatter.setResult(&body);
  trimWhiteSpaces(firstLine);
  if (!firstLine.empty()) formatter.addLine(firstLine);
  for (WString& line : bodyLines) formatter.addLine(line);

  // The function's own closing brace is written with the definition.
  const std::size_t end = body.rfind(L'}');
  if (end != WString::npos) body.resize(end);
  setFunctionBody(body);
  return true;
}

bool AShaderFragmentProfileFunction::writeDefinition(CodeSnippetInstance& out,
                                                     AShaderCollapseContext& context,
                                                     FragmentProfileInstance& instance) const {
  KeywordReplacePattern currentLight;
  if (stateVariables().contains(StateVariable_currentLight))
    currentLight.addReplacePattern(WString(L"sfg_currentLight"), context.getCurrentLightName());
  return FunctionDefinition(*this, context, instance).write(out, currentLight);
}

bool AShaderFragmentProfileFunction::writeFunctionCall(WString& out, AShaderCollapseContext& context,
                                                       FragmentProfileInstance& instance,
                                                       const Array<WString>& inputValues,
                                                       const Array<WString>& outputValues) const {
  out += L"    "sv;
  instance.appendFunctionName(out);
  out += L'(';
  if (!appendArguments(out, 8, *this, context, inputValues, outputValues)) return false;
  out += L");\n"sv;
  return true;
}

}  // namespace TolmSDK::Graphics::sfg
