#include "host/lints/plain_code.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Where the line of `pos` ends, lines continued by a backslash included.
std::size_t endOfLine(std::wstring_view text, std::size_t pos) {
  for (std::size_t end = text.find(L'\n', pos); end != text.npos; end = text.find(L'\n', end + 1)) {
    std::size_t last = end;
    if (last > pos && text[last - 1] == L'\r') --last;
    if (last == pos || text[last - 1] != L'\\') return end;
  }
  return text.size();
}

class Separator {
public:
  Separator(std::wstring_view text, const CodeTokens& tokens) : text_(text), tokens_(tokens) {
    code_.text = text;
  }

  PlainCode run() {
    while (next_ < tokens_.size()) {
      const wchar_t c = text_[tokens_[next_].begin];
      if (c == L'#' && startsLine()) {
        takeDirective();
      } else if (c == L'"') {
        skipString();
      } else {
        code_.tokens.push_back(tokens_[next_++]);
      }
    }
    return std::move(code_);
  }

private:
  /// Nothing but blanks and comments stands in front of the token in its line.
  bool startsLine() const {
    if (next_ == 0) return true;
    const std::size_t before = tokens_[next_ - 1].end;
    return text_.substr(before, tokens_[next_].begin - before).find(L'\n') != text_.npos;
  }

  void takeDirective() {
    PlainCode::Directive directive;
    directive.begin = tokens_[next_].begin;
    const std::size_t end = endOfLine(text_, tokens_[next_].begin);
    ++next_;
    if (next_ < tokens_.size() && tokens_[next_].isName && tokens_[next_].begin < end)
      directive.name = tokens_[next_++].in(text_);
    while (next_ < tokens_.size() && tokens_[next_].begin < end) directive.tokens.push_back(tokens_[next_++]);
    code_.directives.push_back(std::move(directive));
  }

  void skipString() {
    const std::size_t open = tokens_[next_].begin;
    const std::size_t line = std::min(text_.find(L'\n', open), text_.size());
    std::size_t close = open + 1;
    while (close < line && text_[close] != L'"') close += text_[close] == L'\\' ? 2 : 1;
    if (close >= line) code_.isCertain = false;
    while (next_ < tokens_.size() && tokens_[next_].begin <= close) ++next_;
    // What looks like a comment inside a string was taken for one.
    const std::wstring_view inside = text_.substr(open, std::min(close, line) - open);
    if (inside.find(L"//") != inside.npos || inside.find(L"/*") != inside.npos) code_.isCertain = false;
  }

  std::wstring_view text_;
  const CodeTokens& tokens_;
  PlainCode code_;
  std::size_t next_ = 0;
};

}  // namespace

PlainCode plainCode(std::wstring_view text, const CodeTokens& tokens) {
  return Separator(text, tokens).run();
}

}  // namespace TolmSDK::Graphics::sfg::host
