#pragma once

// Which kinds of diagnostics some files deserve.

#include <set>
#include <string>

namespace TolmSDK::test {

/// All that is told of the files in a folder: of its libraries and include files, and of "graph.json" under
/// the environment "scene.json", up to the compiler; lints among them.
std::set<std::string> toldOfFiles(const std::string& folder);

/// All that the command tells, run in the folder with these arguments.
std::set<std::string> toldByCommand(const std::string& folder, const std::string& arguments);

}  // namespace TolmSDK::test
