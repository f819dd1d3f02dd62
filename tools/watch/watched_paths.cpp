#include "tools/watch/watched_paths.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kNanoseconds = 1'000'000'000;

std::int64_t nanoseconds(const timespec& time) { return time.tv_sec * kNanoseconds + time.tv_nsec; }

bool isSameLetter(char a, char b) {
  const auto small = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return small(a) == small(b);
}

bool endsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() &&
         std::equal(end.begin(), end.end(), text.substr(text.size() - end.size()).begin(), isSameLetter);
}

/// Nothing for what is not there.
std::optional<FileState> stateOf(const std::string& file) {
  struct stat status = {};
  if (::stat(file.c_str(), &status) != 0) return std::nullopt;
  return FileState{nanoseconds(status.st_mtim), nanoseconds(status.st_ctim),
                   static_cast<std::uint64_t>(status.st_size), static_cast<std::uint64_t>(status.st_ino)};
}

void addFile(FileStates& states, const std::string& file) {
  if (const std::optional<FileState> state = stateOf(file)) states.emplace(file, *state);
}

/// Calls `visit` with the path of every entry; a folder that goes meanwhile has those that were seen.
template <class Visit>
void visitEntries(const std::string& folder, const Visit& visit) {
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    visit(at->path().string());
  }
}

fs::path absolutePath(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error).lexically_normal();
  return absolute.has_filename() ? absolute : absolute.parent_path();
}

/// The folder of the path and, for a symbolic link, of what it leads to.
void addParents(std::set<fs::path>& folders, const std::string& path) {
  const fs::path absolute = absolutePath(path);
  folders.insert(absolute.parent_path());
  std::error_code error;
  if (!fs::is_symlink(absolute, error)) return;
  const fs::path target = fs::canonical(absolute, error);
  if (!error) folders.insert(target.parent_path());
}

/// The folder, and the one that holds it, where it would come back under its name.
void addFolder(std::set<fs::path>& folders, const std::string& folder) {
  folders.insert(absolutePath(folder));
  addParents(folders, folder);
}

}  // namespace

HoldingFolders foldersOf(const WatchedPaths& paths) {
  std::set<fs::path> wanted;
  for (const std::string& file : paths.files) addParents(wanted, file);
  for (const std::string& folder : paths.folders) addFolder(wanted, folder);
  for (const auto& [folder, end] : paths.kinds) {
    addFolder(wanted, folder);
    visitEntries(folder, [&, &last = end](const std::string& path) {
      if (endsWith(path, last)) addParents(wanted, path);
    });
  }
  HoldingFolders found;
  std::error_code error;
  for (fs::path folder : wanted) {
    while (!fs::is_directory(folder, error) && folder.has_relative_path()) {
      found.isComplete = false;
      folder = folder.parent_path();
    }
    found.folders.insert(folder.string());
  }
  return found;
}

FileStates look(const WatchedPaths& paths) {
  FileStates states;
  for (const std::string& file : paths.files) addFile(states, file);
  for (const auto& [folder, end] : paths.kinds) {
    std::error_code error;
    if (fs::is_directory(folder, error)) states.emplace(folder, FileState());
    visitEntries(folder, [&, &wanted = end](const std::string& path) {
      if (endsWith(path, wanted)) addFile(states, path);
    });
  }
  for (const std::string& folder : paths.folders) {
    std::error_code error;
    if (fs::is_directory(folder, error)) states.emplace(folder, FileState());
    visitEntries(folder, [&](const std::string& path) { states.emplace(path, FileState()); });
  }
  return states;
}

std::vector<std::string> changedPaths(const FileStates& before, const FileStates& after) {
  std::vector<std::string> changed;
  auto a = before.begin();
  auto b = after.begin();
  while (a != before.end() || b != after.end()) {
    if (b == after.end() || (a != before.end() && a->first < b->first)) {
      changed.push_back((a++)->first);
    } else if (a == before.end() || b->first < a->first) {
      changed.push_back((b++)->first);
    } else {
      if (!(a->second == b->second)) changed.push_back(a->first);
      ++a;
      ++b;
    }
  }
  return changed;
}

}  // namespace TolmSDK::Graphics::sfg::tools
