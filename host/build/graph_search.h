#pragma once

// Graphs by patterns and in folders.

#include <string>
#include <string_view>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

struct FoundGraph {
  std::string file;
  std::string name;  ///< of outputs: without folder and extension, but with the folders that were searched
};

struct GraphSearch {
  std::vector<FoundGraph> graphs;     ///< by file name
  std::vector<std::string> searched;  ///< folders whose contents decide what is found
  std::string fault;                  ///< why nothing is found; empty where something is
};

/// What a path stands for: a file for itself; a folder for the graphs in it and below; a pattern for those
/// among the files that match it, where `*` stands for any part of a name, `?` for a letter, and `**` for any
/// folders. Other JSON documents in folders are passed over. Links to folders are not followed.
GraphSearch findGraphs(const std::string& path);

/// Whether the path matches the pattern, part by part.
bool matchesPattern(std::string_view pattern, std::string_view path);

}  // namespace TolmSDK::Graphics::sfg::host
