#include "host/library/prototype_fault.h"

#include <algorithm>
#include <array>
#include <map>
#include <vector>

#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "tolmsdk/read_limits.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::array<std::wstring_view, 5> kQualifiers = {L"in", L"out", L"inout", L"const", L"uniform"};

bool isQualifier(std::wstring_view word) {
  return std::find(kQualifiers.begin(), kQualifiers.end(), word) != kQualifiers.end();
}

/// The qualifier that a word in front of a type may have been meant for.
std::string_view meantQualifier(std::string_view word) {
  if (word == "In") return "in";
  constexpr std::array<std::string_view, 5> kLikely = {"out", "inout", "const", "uniform"};
  const std::string_view meant = nearestName(word, kLikely);
  return meant.size() + 1 >= word.size() ? meant : std::string_view();
}

bool isLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_'; }
bool isPartOfName(wchar_t c) { return isLetter(c) || (c >= L'0' && c <= L'9'); }

struct Word {
  std::size_t index = 0;
  std::wstring_view text;
};

class PrototypeReader {
public:
  explicit PrototypeReader(std::wstring_view line) : line_(line), text_(withBlankComments(line)) {}

  PrototypeFault read() {
    const std::size_t open = text_.find(L'(');
    if (open == text_.npos) return {lastCharacter(), "`(` is missing behind the function's name"};
    constexpr std::size_t kResult = std::wstring_view(L"void ").size();
    const std::wstring_view head = std::wstring_view(text_).substr(0, open);
    if (head.size() < kResult || head.find_first_not_of(L" \t", kResult) == head.npos)
      return {open, "the function has no name in front of `(`"};
    const std::size_t close = text_.find(L')', open);
    // The generator takes all lines in front of `{` as one.
    const std::size_t comment = line_.find(L"//", open);
    if (close == text_.npos && comment != line_.npos)
      return {comment, "this comment hides the parameters behind it: write it between `/*` and `*/`"};
    if (close == text_.npos) return {open, "`(` is not closed"};
    return readParameters(open + 1, close);
  }

private:
  static PrototypeFault none() { return {}; }
  static std::string ticks(std::wstring_view text) { return inTicks(WString(text)); }

  std::size_t lastCharacter() const {
    const std::size_t last = text_.find_last_not_of(L" \t");
    return last == text_.npos ? 0 : last;
  }
  bool isBlank(std::size_t begin, std::size_t end) const {
    return std::all_of(text_.begin() + static_cast<std::ptrdiff_t>(begin),
                       text_.begin() + static_cast<std::ptrdiff_t>(end),
                       [](wchar_t c) { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n'; });
  }

  PrototypeFault readParameters(std::size_t begin, std::size_t end) {
    if (isBlank(begin, end)) return none();
    std::size_t depth = 0;
    std::size_t first = begin;
    for (std::size_t i = begin; i <= end; ++i) {
      if (i < end && text_[i] == L'<') ++depth;
      if (i < end && text_[i] == L'>' && depth > 0) --depth;
      if (i < end && (depth > 0 || text_[i] != L',')) continue;
      if (isBlank(first, i)) {
        const bool isFirst = first == begin;
        return {isFirst ? i : first - 1,
                std::string("a parameter is missing ") + (isFirst ? "in front of `,`" : "behind `,`")};
      }
      PrototypeFault fault = readParameter(first, i);
      if (!fault.text.empty()) return fault;
      first = i + 1;
    }
    return none();
  }

  PrototypeFault readParameter(std::size_t begin, std::size_t end) {
    std::vector<Word> words;
    std::size_t depth = 0;
    for (std::size_t i = begin; i < end;) {
      const wchar_t c = text_[i];
      if (isLetter(c)) {
        const std::size_t start = i;
        while (i < end && isPartOfName(text_[i])) ++i;
        if (depth == 0) words.push_back({start, std::wstring_view(text_).substr(start, i - start)});
        continue;
      }
      if (c == L'<') ++depth;
      if (c == L'>' && depth > 0) --depth;
      if (depth == 0 && c == L':') break;
      if (depth == 0 && c == L'=')
        return {i, "a parameter has no value in the code; give it one as `value` in `ports`"};
      if (depth == 0 && c == L'[') return {i, "a parameter cannot be an array"};
      if (depth == 0 && c != L'>' && !isBlank(i, i + 1))
        return {i, "unexpected " + ticks(std::wstring_view(text_).substr(i, 1)) + " in a parameter"};
      ++i;
    }
    return readWords(words, begin);
  }

  PrototypeFault readWords(const std::vector<Word>& words, std::size_t begin) {
    std::size_t first = 0;
    while (first < words.size() && isQualifier(words[first].text)) ++first;
    if (words.empty()) return {begin, "a parameter needs a type and a name"};
    if (first == words.size()) return {words.back().index, ticks(words.back().text) + " is no parameter"};
    if (first + 1 == words.size()) {
      const Word& only = words[first];
      return {only.index, "the parameter " + ticks(only.text) + " needs a type and a name"};
    }
    for (std::size_t i = first + 1; i < words.size(); ++i) {
      if (isQualifier(words[i].text))
        return {words[i].index, "`,` is missing in front of " + ticks(words[i].text)};
    }
    if (words.size() - first > 2) {
      const std::string word = toUtf8(words[first].text);
      if (const std::string_view meant = meantQualifier(word); !meant.empty())
        return {words[first].index, "unexpected " + ticks(words[first].text) + didYouMean(meant)};
    }
    const Word& name = words.back();
    if (!names_.emplace(name.text, name.index).second)
      return {name.index, "the name " + ticks(name.text) + " is given to two parameters"};
    const std::size_t most = readLimits().parameters;
    if (names_.size() > most)
      return {name.index, "a function has at most " + std::to_string(most) + " parameters: give it fewer"};
    return none();
  }

  const std::wstring_view line_;
  const WString text_;
  std::map<std::wstring_view, std::size_t> names_;
};

}  // namespace

WString withBlankComments(std::wstring_view text) {
  WString blank(text);
  for (std::size_t i = 0; i + 1 < blank.size(); ++i) {
    if (blank[i] != L'/' || (blank[i + 1] != L'/' && blank[i + 1] != L'*')) continue;
    const bool isBlock = blank[i + 1] == L'*';
    const std::size_t close = isBlock ? blank.find(L"*/", i + 2) : blank.find(L'\n', i + 2);
    const std::size_t end = close == blank.npos ? blank.size() : isBlock ? close + 2 : close;
    std::fill(blank.begin() + static_cast<std::ptrdiff_t>(i),
              blank.begin() + static_cast<std::ptrdiff_t>(end), L' ');
    i = end - 1;
  }
  return blank;
}

PrototypeFault prototypeFault(std::wstring_view line) { return PrototypeReader(line).read(); }

}  // namespace TolmSDK::Graphics::sfg::host
