#pragma once

// Shader text apart from its preprocessor lines and strings.

#include <string_view>
#include <vector>

#include "host/origins/code_tokens.h"

namespace TolmSDK::Graphics::sfg::host {

struct PlainCode {
  /// One preprocessor line, continued ones included.
  struct Directive {
    std::wstring_view name;  ///< "define"; empty for a lone `#`
    CodeTokens tokens;       ///< behind the name
    std::size_t begin = 0;   ///< of the `#` in the text
  };

  std::wstring_view text;
  CodeTokens tokens;
  std::vector<Directive> directives;
  /// False where a string does not end in its line, so that nothing behind it is certain.
  bool isCertain = true;

  std::wstring_view word(std::size_t token) const { return tokens[token].in(text); }
  bool isName(std::size_t token) const { return token < tokens.size() && tokens[token].isName; }
  /// Whether the token is that character.
  bool is(std::size_t token, wchar_t c) const {
    return token < tokens.size() && tokens[token].size() == 1 && text[tokens[token].begin] == c;
  }
  /// Whether the token is a name that names no member: there is no dot in front of it.
  bool isFreeName(std::size_t token) const { return isName(token) && (token == 0 || !is(token - 1, L'.')); }
};

/// `tokens` are those of the text, which must live as long as the result.
PlainCode plainCode(std::wstring_view text, const CodeTokens& tokens);

}  // namespace TolmSDK::Graphics::sfg::host
