#pragma once

// SHA-1 of texts: names of code, not a safeguard.

#include <string>
#include <string_view>

#include "tolmsdk/export.h"
#include "tolmsdk/types.h"

namespace TolmSDK {

/// SHA-1 (FIPS 180-4) of the text's UTF-8 bytes as 40 lower-case hexadecimal digits, the same for 16-bit and
/// 32-bit wide characters. A lone surrogate is hashed as U+FFFD.
TOLMSDK_API WString SHA1_GetStringHash(std::wstring_view text);
/// The same of bytes, as they are.
TOLMSDK_API std::string SHA1_GetBytesHash(std::string_view bytes);

}  // namespace TolmSDK
