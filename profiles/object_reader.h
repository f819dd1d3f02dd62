#pragma once

// Reads typed values of the objects in fragment files; a value of another kind is an error that names its
// place.

#include <string_view>

#include "tolmsdk/object_data_node.h"
#include "tolmsdk/types.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {

/// Throws `sfgError : "KEY" must be EXPECTED, not KIND (line L, column C)!`.
[[noreturn]] void throwWrongKind(std::wstring_view key, std::wstring_view expected,
                                 const IObjectDataNode& found);

void requireKind(NodeKind kind, std::wstring_view key, std::wstring_view expected,
                 const IObjectDataNode& node);

/// The text of a string.
const WString& readString(std::wstring_view key, const IObjectDataNode& node);
/// A number, or a string that is one as a whole, as a 32-bit float.
float readFloat(std::wstring_view key, const IObjectDataNode& node);

/// Calls `use(text)` for each string of an array of strings; the text, a WString, is the caller's.
template <class Use>
void readStrings(std::wstring_view key, const IObjectDataNode& array, Use&& use) {
  requireKind(NodeKind::array, key, L"an array of strings", array);
  for (std::size_t i = 0, count = array.size(); i < count; ++i) {
    const IObjectDataNode* element = array.elementOrNull(i);
    requireKind(NodeKind::string, key, L"an array of strings", *element);
    use(fromUtf8(element->asUtf8()));
  }
}

}  // namespace TolmSDK::Graphics::sfg
