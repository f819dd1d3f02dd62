#include "host/origins/unbalanced.h"

#include <vector>

#include "host/origins/code_tokens.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Where a block comment begins that no asterisk and slash ends.
std::optional<std::size_t> openComment(std::wstring_view code) {
  for (std::size_t at = code.find(L'/'); at != code.npos; at = code.find(L'/', at)) {
    if (code.substr(at, 2) == L"//") {
      at = code.find(L'\n', at);
    } else if (code.substr(at, 2) == L"/*") {
      const std::size_t begin = at;
      at = code.find(L"*/", at + 2);
      if (at == code.npos) return begin;
      at += 2;
    } else {
      ++at;
    }
    if (at == code.npos) break;
  }
  return std::nullopt;
}

/// Blanks in front of the line that holds the place; tabs count as two.
std::size_t indentOf(std::wstring_view code, std::size_t place) {
  std::size_t begin = place == 0 ? code.npos : code.rfind(L'\n', place - 1);
  begin = begin == code.npos ? 0 : begin + 1;
  std::size_t indent = 0;
  for (; begin < code.size() && (code[begin] == L' ' || code[begin] == L'\t'); ++begin)
    indent += code[begin] == L'\t' ? 2 : 1;
  return indent;
}

struct Open {
  std::size_t token = 0;
  bool isLoop = false;  ///< a parenthesis behind `for`
};

wchar_t closerOf(wchar_t open) { return open == L'(' ? L')' : open == L'[' ? L']' : L'}'; }

class Reader {
public:
  explicit Reader(std::wstring_view code) : code_(code), tokens_(tokensOf(code)) {}

  std::optional<Unbalanced> read() {
    if (hasConditionals()) {
      if (open_.empty()) return std::nullopt;
      return at(open_.back().token);
    }
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
      const wchar_t c = code_[tokens_[i].begin];
      if (c == L'(' || c == L'[' || c == L'{') {
        if (c == L'{' && hasOpenParenthesis()) return at(open_.back().token);
        open_.push_back({i, i != 0 && tokens_[i - 1].in(code_) == L"for"});
      } else if (c == L')' || c == L']' || c == L'}') {
        if (open_.empty()) return closing(i);
        if (closerOf(openedBy(open_.back())) != c) return c == L'}' ? at(open_.back().token) : closing(i);
        if (c == L'}') noteIndent(open_.back().token, i);
        open_.pop_back();
      } else if (c == L';' && hasOpenParenthesis() && !open_.back().isLoop) {
        return at(open_.back().token);
      }
    }
    if (open_.empty()) return std::nullopt;
    return at(suspect_ ? *suspect_ : open_.back().token);
  }

private:
  /// Whether there are any; those that are not closed are then the ones that are open.
  bool hasConditionals() {
    bool hasAny = false;
    for (std::size_t i = 0; i + 1 < tokens_.size(); ++i) {
      if (code_[tokens_[i].begin] != L'#') continue;
      const std::wstring_view word = tokens_[i + 1].in(code_);
      const bool opens = word == L"if" || word == L"ifdef" || word == L"ifndef";
      hasAny = hasAny || opens;
      if (opens) open_.push_back({i, false});
      if (word == L"endif" && !open_.empty()) open_.pop_back();
    }
    return hasAny;
  }
  wchar_t openedBy(const Open& open) const { return code_[tokens_[open.token].begin]; }
  bool hasOpenParenthesis() const { return !open_.empty() && openedBy(open_.back()) != L'{'; }

  /// A brace that is closed further left than it opened took the brace of another.
  void noteIndent(std::size_t open, std::size_t close) {
    if (suspect_) return;
    if (indentOf(code_, tokens_[close].begin) < indentOf(code_, tokens_[open].begin)) suspect_ = open;
  }

  Unbalanced at(std::size_t token) const { return {tokens_[token].begin, tokens_[token].in(code_), false}; }
  Unbalanced closing(std::size_t token) const {
    return {tokens_[token].begin, tokens_[token].in(code_), true};
  }

  std::wstring_view code_;
  CodeTokens tokens_;
  std::vector<Open> open_;
  std::optional<std::size_t> suspect_;
};

}  // namespace

std::optional<Unbalanced> findUnbalanced(std::wstring_view code) {
  if (const std::optional<std::size_t> comment = openComment(code))
    return Unbalanced{*comment, code.substr(*comment, 2), false};
  return Reader(code).read();
}

}  // namespace TolmSDK::Graphics::sfg::host
