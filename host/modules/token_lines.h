#pragma once

// A shader with one token in each line, for compilers that tell lines only.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// A character of names and numbers.
bool isWordPart(char c) noexcept;

/// The same tokens and preprocessor lines, and where each line stood: counted from 1, columns in code points.
struct TokenLines {
  struct Place {
    std::size_t line = 0;
    std::size_t column = 0;
  };
  std::string text;
  std::vector<Place> places;  ///< of line 1, 2, ..
};

TokenLines onTokenLines(std::string_view shader);

}  // namespace TolmSDK::Graphics::sfg::host
