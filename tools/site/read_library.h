#pragma once

// A site's data, out of a library set and folders of graphs.

#include <filesystem>
#include <vector>

#include "sfg/host/library_set.h"
#include "tools/site/model.h"

namespace TolmSDK::Graphics::sfg::site {

/// Every fragment and include file of the set, and every graph and environment directly in the folders. What
/// is no such document is passed over. Throws host::InputError for a folder that is not there.
Site readSite(const host::LibrarySet& libraries, const std::vector<std::filesystem::path>& exampleFolders);

/// Six digits at most.
std::string numberText(double number);

}  // namespace TolmSDK::Graphics::sfg::site
