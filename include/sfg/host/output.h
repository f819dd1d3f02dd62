#pragma once

// Files that appear as a whole.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "sfg/host/export.h"

namespace TolmSDK::Graphics::sfg::host {

/// Writes the bytes to a file of its own in `folder` (empty: that of the target) and gives that the target's
/// name: readers see the old or the new contents, and a failure leaves the old, and nothing else. Permissions
/// of a file that is replaced are kept. Nothing, or the system's words for why it failed. Any number of
/// threads and processes may write one target; the last one wins.
SFG_HOST_API std::optional<std::string> replaceFile(const std::filesystem::path& target,
                                                    std::string_view bytes,
                                                    const std::filesystem::path& folder = {});

}  // namespace TolmSDK::Graphics::sfg::host
