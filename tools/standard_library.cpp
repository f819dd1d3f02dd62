#include "tools/standard_library.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

/// The running program; empty where the system does not tell.
fs::path runningProgram() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error);
}

bool haveSameFile(const fs::path& a, const fs::path& b) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(a, error)) {
    if (entry.path().extension() == ".h" && fs::exists(b / entry.path().filename(), error)) return true;
  }
  return false;
}

bool isAmong(const fs::path& folder, const std::vector<fs::path>& folders) {
  std::error_code error;
  return std::any_of(folders.begin(), folders.end(),
                     [&](const fs::path& other) { return fs::equivalent(folder, other, error); });
}

}  // namespace

std::optional<fs::path> findStandardLibrary() { return findStandardLibrary(runningProgram()); }

std::optional<fs::path> findStandardLibrary(const fs::path& program) {
  if (program.empty()) return std::nullopt;
  const fs::path folder = (program.parent_path() / SFG_LIBRARY_FROM_PROGRAM).lexically_normal();
  std::error_code error;
  if (!fs::is_directory(folder, error)) return std::nullopt;
  return folder;
}

void addStandardLibrary(host::LibraryFolders& folders, const std::optional<fs::path>& standard) {
  if (!standard) return;
  if (!isAmong(*standard, folders.libraries)) {
    folders.libraries.insert(folders.libraries.begin(), *standard);
    folders.standard = *standard;
  }
  const bool isReplaced = std::any_of(folders.includes.begin(), folders.includes.end(),
                                      [&](const fs::path& named) { return haveSameFile(*standard, named); });
  if (!isReplaced) folders.includes.insert(folders.includes.begin(), *standard);
}

}  // namespace TolmSDK::Graphics::sfg::tools
