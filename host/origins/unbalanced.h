#pragma once

// Brackets and comments that do not close.

#include <cstddef>
#include <optional>
#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

struct Unbalanced {
  std::size_t place = 0;
  std::wstring_view token;  ///< a bracket of the text, "/*", or the "#" of a conditional
  bool closes = false;      ///< a bracket that closes nothing
};

/// The first mistake of a text. Of braces that enclose each other the one is named whose closing brace stands
/// further left than the line that opened it. Of text with preprocessor conditionals only these are judged:
/// its brackets may stand in branches.
std::optional<Unbalanced> findUnbalanced(std::wstring_view code);

}  // namespace TolmSDK::Graphics::sfg::host
