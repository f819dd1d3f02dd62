// Rules, an empty line and a text through the replacer and its literal model. A rule is a line
// `keyword=replacement` or
// `@position,length=replacement`; the text behind the first NUL-like mark `|` lies behind the view.

#include <algorithm>
#include <cwchar>

#include "sfg/keyword_replace.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/model/library_rules.h"
#include "text/test_views.h"

namespace TolmSDK::Graphics::sfg {
namespace {

// The model takes time in proportion to the square of both.
constexpr std::size_t kMostRules = 24;
constexpr std::size_t kMostText = 2000;

void addRule(KeywordReplacePattern& pattern, std::wstring_view line) {
  const std::size_t equals = std::min(line.find(L'='), line.size());
  const WString keyword(line.substr(0, equals));
  const WString replacement(line.substr(std::min(equals + 1, line.size())));
  if (keyword.empty() || keyword[0] != L'@') return pattern.addReplacePattern(keyword, replacement);
  const std::vector<std::wstring_view> numbers = split(std::wstring_view(keyword).substr(1), L',');
  KeywordPosKey key;
  key.position = std::wcstoull(std::wstring(numbers.front()).c_str(), nullptr, 10);
  key.length = std::wcstoull(std::wstring(numbers.back()).c_str(), nullptr, 10);
  pattern.addReplacePattern(key, replacement);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace TolmSDK;
  using namespace TolmSDK::Graphics::sfg;
  const WString input = fromUtf8(bytesOf(data, size));
  std::wstring_view rest = input;
  KeywordReplacePattern pattern;
  for (std::size_t rules = 0; rules != kMostRules && !rest.empty() && rest[0] != L'\n'; ++rules) {
    const std::wstring_view line = rest.substr(0, rest.find(L'\n'));
    addRule(pattern, line);
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  }
  if (!rest.empty()) rest.remove_prefix(1);
  rest = rest.substr(0, kMostText);
  const std::size_t bar = std::min(rest.find(L'|'), rest.size());
  const LiveText text(rest.substr(0, bar), rest.substr(std::min(bar + 1, rest.size())));

  KeywordReplacer replacer;
  replacer.addReplacePattern(pattern);
  model::Replacer slow;
  slow.add(model::patternOf(pattern));
  WString out = L"old";
  replacer.appendAndReplace(out, text.view());
  std::wstring expected = L"old";
  slow.appendAndReplace(expected, model::viewOf(text.view()));
  require(std::wstring_view(out) == expected, "the replacer does what the model does");
  return 0;
}
