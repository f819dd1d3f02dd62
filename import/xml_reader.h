#pragma once

// Reads XML files into a tree of elements.

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "import/element.h"

namespace TolmSDK::Graphics::sfg::materialx {

/// The text of a file, or nothing when it cannot be read.
using FileText = std::function<std::optional<std::string>(const std::filesystem::path&)>;
FileText readFromDisk();

struct XmlReading {
  /// Where included files are looked for behind the folder of the file that includes them.
  std::vector<std::filesystem::path> folders;
  FileText textOf = readFromDisk();
};

/// Adds the elements of the file, and of those that it includes, to the tree's root: each file once. What is
/// broken is told, and what stands in front of it is kept. An included file keeps its own scope. Nesting of
/// elements ends at 256 levels. Answers false when the file itself cannot be read.
bool readXml(const std::filesystem::path& file, const XmlReading& reading, ElementTree& tree,
             Reports& reports);

}  // namespace TolmSDK::Graphics::sfg::materialx
