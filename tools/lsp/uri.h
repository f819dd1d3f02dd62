#pragma once

// "file:" addresses and paths.

#include <filesystem>
#include <optional>
#include <string>

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// The path of a "file:" address; nothing for another.
std::optional<std::filesystem::path> pathOf(const std::string& uri);
/// The address of an absolute path.
std::string uriOf(const std::filesystem::path& path);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
