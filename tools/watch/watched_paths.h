#pragma once

// What is looked at again and again, and how it looked.

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace TolmSDK::Graphics::sfg::tools {

/// Paths are UTF-8. None need exist.
struct WatchedPaths {
  /// Counts by its contents.
  std::set<std::string> files;
  /// The names in these folders count.
  std::set<std::string> folders;
  /// Of these folders, files count by name and contents whose names end so, in small or capital letters:
  /// folder and end.
  std::set<std::pair<std::string, std::string>> kinds;

  bool operator==(const WatchedPaths&) const = default;
};

/// Where changes of watched paths show.
struct HoldingFolders {
  /// Absolute. In place of a folder that is not there stands the nearest one above it that is.
  std::set<std::string> folders;
  bool isComplete = true;  ///< all of them are there

  bool operator==(const HoldingFolders&) const = default;
};
/// The folders that hold any of it, and those that hold what symbolic links among it lead to.
HoldingFolders foldersOf(const WatchedPaths& paths);

/// How a file looks from outside. Another version of it differs in something, also one that was renamed to it
/// or has its former time.
struct FileState {
  std::int64_t modified = 0;  ///< nanoseconds
  std::int64_t changed = 0;   ///< the same, of the entry
  std::uint64_t size = 0;
  std::uint64_t number = 0;  ///< of the file on its device

  bool operator==(const FileState&) const = default;
};

/// By path. Names that only count as names have the state of a file that was never made.
using FileStates = std::map<std::string, FileState>;

/// What is there now. Reads no file.
FileStates look(const WatchedPaths& paths);

/// The paths that are in only one of the two, or differ; in order.
std::vector<std::string> changedPaths(const FileStates& before, const FileStates& after);

}  // namespace TolmSDK::Graphics::sfg::tools
