#pragma once

// Where the tokens of a collapse's result come from.

#include <cstddef>
#include <deque>
#include <vector>

#include "host/job/collapse_job.h"
#include "host/origins/collapse_record.h"
#include "host/origins/fragment_code.h"
#include "host/origins/token_alignment.h"

namespace TolmSDK::Graphics::sfg::host {

/// Of one token.
struct TokenOrigin {
  enum class Kind { none, code, node, input };
  Kind kind = Kind::none;
  bool isExact = false;
  std::size_t writer = 0;              ///< of the record
  const FragmentCode* code = nullptr;  ///< of the kind `code`
  CodePart part = CodePart::implementation;
  std::size_t offset = 0;          ///< in the code's text; of the kind `input` its number
  std::size_t record = kNotFound;  ///< the record's code that holds it; none in the body
};

/// The tokens of a text with their origins, in order.
struct OriginText {
  std::vector<std::size_t> begins;
  std::vector<TokenOrigin> origins;

  /// Of the token that begins there; null for none.
  const TokenOrigin* find(std::size_t begin) const;
};

/// Finds the origins of predefines and body. Refers to its arguments.
class TokenOrigins {
public:
  TokenOrigins(const CollapseRecord& record, FragmentCodes& codes, std::size_t numLights)
      : record_(record), codes_(codes), numLights_(numLights) {}

  OriginText ofPredefines(std::wstring_view predefines);
  OriginText ofBody(std::wstring_view body);

private:
  class BodyReader;

  std::vector<TokenOrigin> ofCode(std::size_t record, const CodeTokens& tokens);
  std::vector<TokenSource> alignDefinition(const FragmentCode& code, const CollapseRecord::Code& written,
                                           const CodeTokens& tokens) const;
  const FragmentCode* codeOf(std::size_t writer, CodePart part);

  const CollapseRecord& record_;
  FragmentCodes& codes_;
  std::size_t numLights_;
};

}  // namespace TolmSDK::Graphics::sfg::host
