#pragma once

// Places inside the strings of a library file.

#include <string_view>

#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

/// Where a character of a string stands in its file, when what must be escaped has its short form.
inline TextPosition positionIn(const IObjectDataNode& string, std::size_t index) {
  TextPosition position = string.position();
  ++position.column;
  const std::wstring_view before = std::wstring_view(string.asString()).substr(0, index);
  for (const wchar_t c : before) position.column += c == L'"' || c == L'\\' || c < L' ' ? 2 : 1;
  return position;
}

}  // namespace TolmSDK::Graphics::sfg::host
