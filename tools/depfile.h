#pragma once

// Dependency files for Make and Ninja.

#include <span>
#include <string>

namespace TolmSDK::Graphics::sfg::tools {

/// "TARGET: FILE.."
std::string writeDepfile(const std::string& target, std::span<const std::string> files);

}  // namespace TolmSDK::Graphics::sfg::tools
