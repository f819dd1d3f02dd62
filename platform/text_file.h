#pragma once

// Whole files as bytes.

#include <filesystem>
#include <string>
#include <string_view>

#include "tolmsdk/types.h"

namespace TolmSDK {

/// The system's form of a path given as wide text.
std::filesystem::path toPath(std::wstring_view path);

/// Reads a file of at most ReadLimits::fileBytes, without its byte-order mark. On failure answers false,
/// leaves `bytes` empty and says why in `error`.
bool readTextFile(std::wstring_view path, std::string& bytes, WString& error);

/// The message for a text above ReadLimits::fileBytes.
WString tooLargeMessage();

}  // namespace TolmSDK
