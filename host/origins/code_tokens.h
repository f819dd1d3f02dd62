#pragma once

// Shader text as tokens.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// A name, a number, or one character of anything else.
struct CodeToken {
  std::size_t begin = 0;
  std::size_t end = 0;
  bool isName = false;

  std::size_t size() const noexcept { return end - begin; }
  std::wstring_view in(std::wstring_view code) const { return code.substr(begin, end - begin); }
};

using CodeTokens = std::vector<CodeToken>;

/// The tokens of shader text from `from` on, places counted from the start of `code`. Blanks and comments are
/// no tokens; a comment that is not closed goes up to the end.
CodeTokens tokensOf(std::wstring_view code, std::size_t from = 0);

/// The index of the token at the place or, between tokens, of the next one.
std::size_t tokenAt(const CodeTokens& tokens, std::size_t place);

/// The index behind the bracket that closes the one at `open`; the number of tokens when none does.
std::size_t behindBrackets(std::wstring_view code, const CodeTokens& tokens, std::size_t open);

}  // namespace TolmSDK::Graphics::sfg::host
