#pragma once

// docs/diagnostics.md as data.

#include <map>
#include <set>
#include <string>
#include <vector>

namespace TolmSDK::test {

/// Files that are told of, or not.
struct PageExample {
  bool isTold = true;
  std::size_t line = 0;  ///< of the page
  /// Kinds that are told beside the one of the section.
  std::set<std::string> beside;
  /// What is run: "collapse graph.json -L ."; empty where the files speak for themselves.
  std::string command;
  std::map<std::string, std::string> files;
};

struct PageSection {
  std::string identifier;
  bool hasText = false;
  std::vector<PageExample> examples;
};

struct DiagnosticsPage {
  /// Files of all examples that hold no file of that name.
  std::map<std::string, std::string> files;
  std::vector<PageSection> sections;
};

/// Reads the page: a section begins with "### `identifier`", an example in it with a paragraph that starts
/// with "Told" or "Not told", a file with a line "`name`:" in front of its fenced text. Files in front of the
/// first section belong to all examples.
DiagnosticsPage readDiagnosticsPage(const std::string& text);

}  // namespace TolmSDK::test
