#pragma once

// Files and paths as wide text.

#include <string_view>

#include "tolmsdk/export.h"
#include "tolmsdk/types.h"

namespace TolmSDK {

/// Full paths of the regular files directly in `folder`, ordered by file name bytes. An unreadable or missing
/// folder has none.
TOLMSDK_API Array<WString> EnumFiles(std::wstring_view folder);

/// `noise` of `lib/noise.fraglib`.
TOLMSDK_API WString GetBaseName(std::wstring_view path);
/// `fraglib` of `lib/noise.fraglib`: the text behind the file name's last dot; empty without one.
TOLMSDK_API WString GetExtension(std::wstring_view path);
/// `noise.fraglib` of `lib/noise.fraglib`.
TOLMSDK_API WString GetFilename(std::wstring_view path);

/// Files larger than this (256 MiB) are refused: text in memory takes four times as much.
inline constexpr unsigned long long kMaximumTextFileSize = 1ull << 28;

/// Reads a UTF-8 file. A leading byte-order mark is dropped, each maximal ill-formed part becomes one U+FFFD,
/// line ends stay. On failure answers false, empties `text` and, when `error` is given, says why there.
TOLMSDK_API bool GetUTF8TextFileString(std::wstring_view path, WString& text, WString* error = nullptr);

}  // namespace TolmSDK
