// Code, the renames of one instance (up to the first line that is `--`, one a line) and of another in front
// of it: the parse loses nothing but blanks, and the accumulator writes each symbol of an instance once.

#include <algorithm>
#include <set>
#include <string_view>

#include "sfg/code_accumulator.h"
#include "sfg/code_snippet.h"
#include "tests/fuzz/fuzz_input.h"

namespace TolmSDK::Graphics::sfg {
namespace {

/// Takes the lines up to one that is `--` off the front; none when there is no such line.
Array<WString> takeRenames(std::wstring_view& text) {
  const std::size_t end = (L"\n" + std::wstring(text)).find(L"\n--\n");
  if (end == std::wstring::npos) return {};
  Array<WString> renames;
  if (end > 0)
    for (const std::wstring_view line : split(text.substr(0, end - 1), L'\n')) renames.emplace_back(line);
  text.remove_prefix(end + 3);
  return renames;
}

void requireNothingLost(const CodeSnippet& snippet) {
  WString expected;
  buildKey(expected, snippet.getCode());
  WString found;
  const wchar_t* end = snippet.getCode().data();
  std::size_t builtins = 0;
  for (std::size_t i = 0; i < snippet.getNumSymbols(); ++i) {
    const ShaderSymbol& symbol = snippet.getSymbol(i);
    require(symbol.getRange().text >= end && !symbol.getRange().empty(),
            "symbols stand in the order of the text");
    end = symbol.getRange().text + symbol.getRange().length;
    buildKey(found, symbol.getRange());
    builtins += symbol.getBuiltinFunctions().size();
    if (symbol.getKey().empty()) continue;
    const std::size_t last = snippet.findSymbol(symbol.getKey());
    require(last >= i && last < snippet.getNumSymbols(), "a key is found");
    require(snippet.getSymbol(last).getKey() == symbol.getKey(), "the key found is the key looked for");
  }
  require(found == expected, "every character but blanks belongs to a symbol");
  require(builtins == snippet.getBuiltinFunctions().size(), "the snippet gathers the calls of its symbols");
}

std::size_t lengthOfRawText(const CodeSnippetInstance& instance) {
  std::size_t length = 0;
  for (std::size_t i = 0; i < instance.getNumSymbols(); ++i)
    if (instance.getSymbol(i).getInstanceKey().empty()) length += instance.getSymbol(i).getText().length;
  return length;
}

/// Whether declarations are told apart by their blanks alone, as of `A Bc;` and `AB c;`.
bool hasSharedKeys(const CodeSnippetInstance& instance) {
  std::set<std::wstring_view> keys;
  for (std::size_t i = 0; i < instance.getNumSymbols(); ++i) {
    const std::wstring_view key = instance.getSymbol(i).getInstanceKey();
    if (!key.empty() && !keys.insert(key).second) return true;
  }
  return false;
}

void requireWrittenOnce(const CodeSnippetInstance& first, const CodeSnippetInstance& second) {
  CodeAccumulator accumulator;
  const KeywordReplacePattern none;
  WString out;
  for (const CodeSnippetInstance* instance : {&first, &second}) {
    KeywordReplacePattern renames;
    accumulator.append(out, *instance, none, renames);
  }
  // The first instance met no rename, so it is known as it was.
  KeywordReplacePattern renames;
  const std::size_t size = out.size();
  accumulator.append(out, first, none, renames);
  require(out.size() == size + lengthOfRawText(first), "known symbols are not written again");
  // Of equal keys the names of the first count.
  require(renames.empty() || hasSharedKeys(first), "known symbols keep their names");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace TolmSDK;
  using namespace TolmSDK::Graphics::sfg;
  const WString text = fromUtf8(bytesOf(data, size));
  std::wstring_view rest = text;
  const Array<WString> firstRenames = takeRenames(rest);
  const Array<WString> secondRenames = takeRenames(rest);

  CodeSnippet snippet;
  snippet.addCode(WString(rest));
  require(snippet.parse(), "code parses");
  requireNothingLost(snippet);
  CodeSnippetInstance first;
  first.construct(&snippet, firstRenames, false);
  CodeSnippetInstance second;
  second.construct(&snippet, secondRenames, false);
  require(first.getNumSymbols() == snippet.getNumSymbols(), "an instance has every symbol");
  requireWrittenOnce(first, second);
  return 0;
}
