#pragma once

// Parameters of functions in shader text.

#include <string_view>
#include <vector>

#include "host/lints/plain_code.h"

namespace TolmSDK::Graphics::sfg::host {

/// A parameter of a function. Tokens are those of its plain code.
struct CodeParameter {
  std::wstring_view type;  ///< its first word: "Texture2D" of `Texture2D<float4>`
  std::wstring_view name;
  std::size_t token = 0;  ///< of the name
  bool isOutput = false;  ///< `out`; an `inout` parameter is an input
  bool isInout = false;
  bool isArray = false;
};

/// The parameters between the parenthesis at `open` and the one that closes it.
std::vector<CodeParameter> readParameters(const PlainCode& code, std::size_t open, std::size_t close);

}  // namespace TolmSDK::Graphics::sfg::host
