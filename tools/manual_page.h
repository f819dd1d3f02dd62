#pragma once

// The manual page.

#include <string>
#include <vector>

#include "tools/option_table.h"

namespace TolmSDK::Graphics::sfg::tools {

/// sfg(1) in the man macros; `version` stands in its foot.
std::string manualPage(const std::vector<CommandEntry>& table, const std::string& version);

}  // namespace TolmSDK::Graphics::sfg::tools
