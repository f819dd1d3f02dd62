#pragma once

#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// Of a name that is not among the known ones: the nearest of them if it is near, and all of them, a dozen at
/// most.
std::string knownNamesHint(const std::string& name, const std::vector<std::string>& known);

}  // namespace TolmSDK::Graphics::sfg::host
