#include "sfg/shader_fragment_profile_inline.h"

#include <algorithm>
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

/// What replaces what. Refers to its texts: values may be as long as the limit, and are not copied before it
/// is known that the result fits.
struct Rule {
  const WString& keyword;
  const WString& replacement;
};

/// The rules' replacements as often as their keywords stand in the text: no replaced text is longer than the
/// text and this together.
std::size_t boundOfReplacements(std::wstring_view text, const Array<Rule>& rules) {
  std::size_t bound = 0;
  for (const Rule& rule : rules) {
    if (rule.keyword.empty() || rule.replacement.empty()) continue;
    bound += countOccurrences(text, rule.keyword) * rule.replacement.size();
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

/// Length of the replaced text, without building it: rules may overlap, so those whose replacement's length
/// has a certain bit are applied with one character each while all others remove their keyword.
std::size_t replacedLength(const WString& text, const Array<Rule>& rules) {
  const auto lengthWith = [&](auto&& isMarked) {
    KeywordReplacePattern marks;
    for (const Rule& rule : rules)
      marks.addReplacePattern(rule.keyword, WString(isMarked(rule.replacement.size()) ? 1 : 0, L'x'));
    return replaced(text, marks, text.size()).size();
  };
  std::size_t longest = 0;
  for (const Rule& rule : rules) longest = std::max(longest, rule.replacement.size());
  const std::size_t kept = lengthWith([](std::size_t) { return false; });
  std::size_t length = kept;
  for (std::size_t bit = 1; bit <= longest; bit *= 2)
    length += (lengthWith([&](std::size_t size) { return (size & bit) != 0; }) - kept) * bit;
  return length;
}

/// The length of the replaced text, or one that it does not pass and that is within the limit.
std::size_t expectedLength(const WString& text, const Array<Rule>& rules) {
  constexpr std::size_t kFewRules = 16;  // the bound looks through the text for each
  if (rules.size() > kFewRules) return replacedLength(text, rules);
  const std::size_t bound = text.size() + boundOfReplacements(text, rules);
  return bound > kMaximumTextLength ? replacedLength(text, rules) : bound;
}

/// Applies the rules. Throws the size error, before anything is built, when the result would pass the limit.
WString applyRules(const WString& text, const Array<Rule>& rules) {
  const std::size_t length = expectedLength(text, rules);
  checkTextLength(length);
  KeywordReplacePattern pattern;
  for (const Rule& rule : rules) pattern.addReplacePattern(rule.keyword, rule.replacement);
  return replaced(text, pattern, length);
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

  Array<Rule> rules;
  for (std::size_t i = 0; i < count; ++i) rules.push_back({parameters.getInputName(i), inputValues[i]});
  const Array<WString>& uniforms = instance.getUniformOriginal();
  for (std::size_t i = 0; i < uniforms.size(); ++i)
    rules.push_back({uniforms[i], instance.getUniformNew()[i]});

  // An expression may double with every fragment it passes.
  setExpression(instance, applyRules(getFunctionBody(), rules));
  return true;
}

}  // namespace TolmSDK::Graphics::sfg
