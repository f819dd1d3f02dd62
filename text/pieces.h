#pragma once

// Short texts appended together.

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Appends texts one behind the other; `out` grows once. None of them views `out`.
template <class... Texts>
void appendPieces(WString& out, const Texts&... texts) {
  const std::size_t before = out.size();
  out.resize(before + (std::wstring_view(texts).size() + ...));
  wchar_t* end = out.data() + before;
  const auto append = [&end](std::wstring_view text) { end = std::copy(text.begin(), text.end(), end); };
  (append(texts), ...);
}

}  // namespace TolmSDK::Graphics::sfg
