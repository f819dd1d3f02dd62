#pragma once

// Outputs of a build.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/build/file_stamps.h"

namespace TolmSDK::Graphics::sfg::host {

/// As replaceFile() of `sfg/host/output.h`; `stamp` is that of the file that was written, also when another
/// process replaces it at once.
std::optional<std::string> replaceStamped(const std::filesystem::path& target, std::string_view bytes,
                                          const std::filesystem::path& folder, FileStamp& stamp);

}  // namespace TolmSDK::Graphics::sfg::host
