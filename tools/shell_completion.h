#pragma once

// Completion of the command line, as the shells read it.

#include <string>
#include <vector>

#include "tools/option_table.h"

namespace TolmSDK::Graphics::sfg::tools {

/// A script for the shell that completes commands, options, their choices, files and folders.
std::string bashCompletion(const std::vector<CommandEntry>& table);
std::string zshCompletion(const std::vector<CommandEntry>& table);
std::string fishCompletion(const std::vector<CommandEntry>& table);

}  // namespace TolmSDK::Graphics::sfg::tools
