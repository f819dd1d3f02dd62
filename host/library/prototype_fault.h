#pragma once

// What is wrong in front of a function's body, which the generator takes or refuses as a whole.

#include <cstddef>
#include <string>
#include <string_view>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

struct PrototypeFault {
  std::size_t index = 0;  ///< in the text
  std::string text;       ///< empty when nothing is wrong
};

/// Of `void name(parameters)`: the first fault, at the character that is meant. Also of texts that the
/// generator takes though they are hardly meant: `float2 uv out float3 result` is one input for it.
PrototypeFault prototypeFault(std::wstring_view text);

/// The text with blanks in place of comments; a comment that is not closed reaches to the end of its text.
WString withBlankComments(std::wstring_view text);

}  // namespace TolmSDK::Graphics::sfg::host
