#pragma once

// What a compiler says, in words that lead to the mistake.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/origins/code_tokens.h"
#include "sfg/host/errors.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// A mistake in a text.
struct ToldMistake {
  std::string text;
  std::size_t token = kNotFound;  ///< of the text; none when the message has no place
  bool isBehind = false;          ///< at the end of the token
  bool isSyntax = false;          ///< brackets that do not fit may be behind it
  std::string unknown;            ///< the name, when it is one that nobody declares
  bool isFunction = false;        ///< that name is called
};

/// Reads messages about one text. Refers to it.
class CompileMessages {
public:
  explicit CompileMessages(std::wstring_view text);

  /// The first message is the cause; those behind it follow from it.
  ToldMistake describe(const std::vector<CompilerMessage>& messages) const;

  const CodeTokens& tokens() const noexcept { return tokens_; }
  /// Line and column of a character, counted from 1.
  std::pair<std::size_t, std::size_t> placeOf(std::size_t offset) const;

private:
  class Words;

  std::size_t tokenOf(const CompilerMessage& message, std::wstring_view name) const;

  std::wstring_view text_;
  CodeTokens tokens_;
  std::vector<std::size_t> lines_;
};

/// What HLSL itself declares: functions and types.
const std::vector<std::string_view>& languageNames();

/// The name of the list that is meant by one that code does not know: what other shading languages call so,
/// or the nearest, when it is near; empty otherwise.
std::string meantName(const std::string& wrong, const std::vector<std::string>& names);

}  // namespace TolmSDK::Graphics::sfg::host
