#pragma once

// Conversion between wide text (16-bit or 32-bit wide characters) and UTF-8.

#include <string>
#include <string_view>

#include "tolmsdk/export.h"
#include "tolmsdk/types.h"

namespace TolmSDK {

/// UTF-8 of a wide text; a lone surrogate or a value that is no code point becomes U+FFFD.
TOLMSDK_API std::string toUtf8(std::wstring_view text);

/// Wide text of UTF-8 bytes; each maximal ill-formed part becomes one U+FFFD. A byte-order mark is kept.
TOLMSDK_API WString fromUtf8(std::string_view bytes);

}  // namespace TolmSDK
