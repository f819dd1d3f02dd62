#pragma once

// The pages of a site.

#include <map>
#include <string>

#include "tools/site/model.h"

namespace TolmSDK::Graphics::sfg::site {

/// Bytes by name, from the root of the site: pages, their style and script. Every link leads to another of
/// these or to one of the pictures that the site names; nothing is fetched from elsewhere.
std::map<std::string, std::string> pagesOf(const Site& site);

/// A name as that of a file, which no other name has on any file system: letters, digits, `_` and `-`, and a
/// number where `taken` has it already.
std::string fileNameOf(const std::string& name, std::map<std::string, int>& taken);

/// The names of the fragments' files, without ending, in their order.
std::vector<std::string> fragmentFiles(const Site& site);

}  // namespace TolmSDK::Graphics::sfg::site
