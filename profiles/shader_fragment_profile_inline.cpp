#include "sfg/shader_fragment_profile_inline.h"

#include <set>
#include <string_view>
#include <utility>

#include "profiles/object_reader.h"
#include "sfg/fragment_profile_instance.h"
#include "sfg/size_limit.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

/// Calls `use(placeholder)` for every placeholder of the body, braces included, in order.
template <class Use>
void forEachPlaceholder(std::wstring_view body, Use&& use) {
  std::size_t open = body.find(L"{{");
  while (open != std::wstring_view::npos) {
    const std::size_t close = body.find(L"}}", open);
    if (close == std::wstring_view::npos) throw Exception(L"sfgError : Inline body {{ }} mismatch!");
    use(body.substr(open, close + 2 - open));
    open = body.find(L"{{", close);
  }
}

std::size_t countOccurrences(std::wstring_view text, std::wstring_view keyword) {
  std::size_t count = 0;
  for (std::size_t at = text.find(keyword); at != std::wstring_view::npos;
       at = text.find(keyword, at + keyword.size()))
    ++count;
  return count;
}

/// The rules' replacements as often as their keywords stand in the text: no replaced text is longer than the
/// text and this together.
std::size_t boundOfReplacements(std::wstring_view text, const KeywordReplacePattern& rules) {
  std::size_t bound = 0;
  for (std::size_t i = 0; i < rules.getKeywords().size(); ++i) {
    if (rules.getKeywords()[i].empty() || rules.getReplacements()[i].empty()) continue;
    bound += countOccurrences(text, rules.getKeywords()[i]) * rules.getReplacements()[i].size();
  }
  return bound;
}

/// The text with the rules applied; `capacity` is the length it is expected to reach.
WString replaced(const WString& text, const KeywordReplacePattern& rules, std::size_t capacity) {
  KeywordReplacer replacer;
  replacer.addReplacePattern(rules);
  WString out;
  out.reserve(capacity);
  replacer.appendReplaced(out, text);
  return out;
}

/// Length of the replaced text, without building it: rules may overlap, so each is applied with one character
/// as its replacement while all others remove their keyword.
std::size_t replacedLength(const WString& text, const KeywordReplacePattern& rules) {
  const Array<WString>& keywords = rules.getKeywords();
  const auto lengthWith = [&](std::size_t marked) {
    KeywordReplacePattern marks;
    for (std::size_t i = 0; i < keywords.size(); ++i)
      marks.addReplacePattern(keywords[i], WString(i == marked ? 1 : 0, L'x'));
    return replaced(text, marks, text.size()).size();
  };
  const std::size_t kept = lengthWith(kNotFound);
  std::size_t length = kept;
  for (std::size_t i = 0; i < keywords.size(); ++i)
    length += (lengthWith(i) - kept) * rules.getReplacements()[i].size();
  return length;
}

/// An expression is the instance's one output, without a type.
void setExpression(FragmentProfileInstance& instance, WString expression) {
  instance.setNumOutputs(1);
  instance.setOutput(0, WString(), std::move(expression));
}

}  // namespace

AShaderFragmentProfileInline::AShaderFragmentProfileInline()
    : AShaderFragmentProfile(EShaderFragmentProfileMode::Inline) {}

AShaderFragmentProfileInline::~AShaderFragmentProfileInline() = default;

bool AShaderFragmentProfileInline::loadImplementation(const IObjectDataNode* lines) {
  if (lines == nullptr) return false;
  requireKind(NodeKind::array, L"implementation", L"an array of strings", *lines);
  const IObjectDataNode* line = lines->elementOrNull(0);
  setFunctionBody(line == nullptr ? WString() : readString(L"implementation", *line));

  const WString& body = std::as_const(*this).getFunctionBody();
  if (body.empty()) throw Exception(L"sfgError : Function body is empty!");
  std::set<std::wstring_view> known;
  forEachPlaceholder(body, [&](std::wstring_view placeholder) {
    if (known.insert(placeholder).second) getFunctionParameters()->addInput(std::wstring_view(), placeholder);
  });
  if (!body.starts_with(L'(')) replaceBodyText(L'(' + body + L')');
  return true;
}

bool AShaderFragmentProfileInline::writeDefinition(CodeSnippetInstance&, AShaderCollapseContext&,
                                                   FragmentProfileInstance&) const {
  return true;
}

bool AShaderFragmentProfileInline::writeFunctionCall(WString&, AShaderCollapseContext&,
                                                     FragmentProfileInstance& instance,
                                                     const Array<WString>& inputValues,
                                                     const Array<WString>&) const {
  const ITextParameterList& parameters = *getFunctionParameters();
  const std::size_t count = parameters.getNumInputs();
  // Without placeholders the body stays as it is, uniform names included.
  if (count == 0) {
    setExpression(instance, getFunctionBody());
    return true;
  }
  if (count != inputValues.size())
    throw Exception(L"Inline body parameter count is not equal to the node input count!");

  KeywordReplacePattern rules;
  for (std::size_t i = 0; i < count; ++i) rules.addReplacePattern(parameters.getInputName(i), inputValues[i]);
  rules.addReplacePattern(instance.getUniformOriginal(), instance.getUniformNew());

  // An expression may double with every fragment it passes: its size is known before it is built.
  const WString& body = getFunctionBody();
  std::size_t length = body.size() + boundOfReplacements(body, rules);
  if (length > kMaximumTextLength) length = replacedLength(body, rules);
  checkTextLength(length);
  setExpression(instance, replaced(body, rules, length));
  return true;
}

}  // namespace TolmSDK::Graphics::sfg
