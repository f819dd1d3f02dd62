#pragma once

// Which token of a source each token of a text was made from.

#include <cstddef>
#include <string_view>
#include <vector>

#include "host/origins/code_tokens.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// Some tokens of a text, `last` is behind them.
struct TokenRange {
  std::wstring_view code;
  const CodeTokens* tokens = nullptr;
  std::size_t first = 0;
  std::size_t last = 0;

  std::wstring_view text(std::size_t index) const { return (*tokens)[index].in(code); }
  bool isName(std::size_t index) const { return (*tokens)[index].isName; }
};

inline TokenRange allOf(std::wstring_view code, const CodeTokens& tokens) {
  return {code, &tokens, 0, tokens.size()};
}

/// Where a token comes from.
struct TokenSource {
  std::size_t token = kNotFound;  ///< of the source
  /// It is that token, under the same name or another. False for text that was put in because of it.
  bool isExact = false;
};

/// Tells for each token of `text` which token of `source` it was made from: what the generator does to the
/// code of a fragment is done again, token by token. Names are renamed; calls of sfg_isConnected and
/// sfg_isFinalOutput become values; uses of sfg_shader become declarations and a call, or nothing; blocks
/// between light markers are repeated for each light. Where text and source differ in another way they are
/// brought together again at the next three tokens in common that are near. Takes time in proportion to both.
std::vector<TokenSource> alignTokens(const TokenRange& source, const TokenRange& text,
                                     std::size_t numLights = 0);

/// The same for the head of a function, from its result type to the parenthesis that closes the parameters,
/// which are matched by their names: the order may be another, qualifiers and semantics may be missing, and
/// parameters for state may have been added. Those come from the function's name.
std::vector<TokenSource> alignHeads(const TokenRange& source, const TokenRange& text);

}  // namespace TolmSDK::Graphics::sfg::host
