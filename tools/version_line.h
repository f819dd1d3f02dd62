#pragma once

#include <string>

namespace TolmSDK::Graphics::sfg::tools {

// One line for a person that says which versions are running: "sfg 0.1.0", or "sfg 0.1.0, platform 0.2.0"
// where the two libraries that were loaded differ.
[[nodiscard]] std::string versionLine();

}  // namespace TolmSDK::Graphics::sfg::tools
