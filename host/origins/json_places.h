#pragma once

// Places of characters inside the strings of a JSON text.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

/// A text and where its lines begin. Refers to the text.
class JsonPlaces {
public:
  explicit JsonPlaces(std::string_view utf8);

  /// The place of character `index` of the string that begins at `literal`; behind the last character it is
  /// that of the closing quotation mark. Escapes count as the characters they stand for. Where no string
  /// begins there it is `literal`.
  TextPosition inString(TextPosition literal, std::size_t index) const;

private:
  std::size_t byteAt(TextPosition place) const;

  std::string_view text_;
  std::vector<std::size_t> lines_;    // code points in front of each line
  std::vector<std::size_t> strides_;  // bytes in front of each code point whose number is a multiple
};

}  // namespace TolmSDK::Graphics::sfg::host
