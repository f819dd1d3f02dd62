#include "host/build/graph_search.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "host/documents/document_kind.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;
using Parts = std::vector<std::string_view>;

bool isPattern(std::string_view text) { return text.find_first_of("*?") != text.npos; }

Parts partsOf(std::string_view path) {
  Parts parts;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    if (end != 0) parts.push_back(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return parts;
}

/// Matches a sequence against one with wildcards for any number of elements. Only the last of them is ever
/// taken back, so the time is at most the product of the lengths.
template <class Sequence, class IsAny, class Matches>
bool matchesWith(const Sequence& pattern, const Sequence& text, const IsAny& isAny, const Matches& matches) {
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::size_t p = 0;
  std::size_t t = 0;
  std::size_t any = kNone;
  std::size_t taken = 0;
  while (t < text.size()) {
    if (p < pattern.size() && isAny(pattern[p])) {
      any = p++;
      taken = t;
    } else if (p < pattern.size() && matches(pattern[p], text[t])) {
      ++p;
      ++t;
    } else if (any != kNone) {
      p = any + 1;
      t = ++taken;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && isAny(pattern[p])) ++p;
  return p == pattern.size();
}

bool matchesName(std::string_view pattern, std::string_view name) {
  return matchesWith(
      pattern, name, [](char c) { return c == '*'; }, [](char a, char b) { return a == '?' || a == b; });
}

/// A folder, and what is left of the pattern below it.
struct Start {
  std::string folder;
  std::string rest;
};
Start startOf(const std::string& path) {
  const std::size_t wildcard = path.find_first_of("*?");
  const std::size_t slash = path.rfind('/', wildcard);
  if (slash == path.npos) return {".", path};
  return {slash == 0 ? "/" : path.substr(0, slash), path.substr(slash + 1)};
}

bool isGraph(const std::string& file) {
  std::error_code error;
  if (!fs::is_regular_file(file, error)) return false;
  std::ifstream stream(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  return kindOfKeys(rootKeys(text)) == DocumentKind::graph;
}

std::string withoutExtension(const fs::path& path) {
  return (path.parent_path() / path.stem()).generic_string();
}

/// Walks a folder.
class Walk {
public:
  /// `levels` of folders; `pattern` empty for all `*.json`.
  Walk(std::string root, std::string pattern, std::size_t levels)
      : root_(std::move(root)), pattern_(std::move(pattern)), levels_(levels) {}

  GraphSearch run() {
    std::vector<Folder> folders{{std::string(), 1}};
    while (!folders.empty() && search_.fault.empty()) {
      const Folder next = std::move(folders.back());
      folders.pop_back();
      enter(next, folders);
    }
    std::sort(search_.graphs.begin(), search_.graphs.end(),
              [](const FoundGraph& a, const FoundGraph& b) { return a.file < b.file; });
    std::sort(search_.searched.begin(), search_.searched.end());
    return std::move(search_);
  }

private:
  struct Folder {
    std::string path;  ///< below the root
    std::size_t level;
  };

  std::string inRoot(const std::string& path) const {
    if (path.empty()) return root_;
    return root_ == "." ? path : (fs::path(root_) / path).string();
  }

  void enter(const Folder& folder, std::vector<Folder>& folders) {
    const std::string path = inRoot(folder.path);
    search_.searched.push_back(path);
    std::error_code error;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
      const std::string name = entry->path().filename().string();
      const std::string below = folder.path.empty() ? name : folder.path + "/" + name;
      std::error_code ignored;
      if (entry->symlink_status(ignored).type() == fs::file_type::directory) {
        if (folder.level < levels_ && !name.starts_with(".")) folders.push_back({below, folder.level + 1});
      } else if (isWanted(below) && isGraph(inRoot(below))) {
        search_.graphs.push_back({inRoot(below), withoutExtension(below)});
      }
    }
    if (error) search_.fault = "the folder `" + path + "` cannot be read: " + error.message();
  }

  bool isWanted(const std::string& below) const {
    return pattern_.empty() ? fs::path(below).extension() == ".json" : matchesPattern(pattern_, below);
  }

  std::string root_;
  std::string pattern_;
  std::size_t levels_;
  GraphSearch search_;
};

GraphSearch searchPattern(const std::string& path) {
  const Start start = startOf(path);
  const Parts parts = partsOf(start.rest);
  const bool isDeep = std::find(parts.begin(), parts.end(), "**") != parts.end();
  return Walk(start.folder, start.rest, isDeep ? static_cast<std::size_t>(-1) : parts.size()).run();
}

}  // namespace

bool matchesPattern(std::string_view pattern, std::string_view path) {
  return matchesWith(
      partsOf(pattern), partsOf(path), [](std::string_view part) { return part == "**"; }, matchesName);
}

GraphSearch findGraphs(const std::string& path) {
  std::error_code error;
  if (fs::is_directory(path, error)) {
    GraphSearch search = Walk(path, std::string(), static_cast<std::size_t>(-1)).run();
    if (search.graphs.empty() && search.fault.empty())
      search.fault = "no graph is in the folder `" + path + "`";
    return search;
  }
  if (fs::exists(path, error)) return {{{path, fs::path(path).stem().string()}}, {}, {}};
  if (!isPattern(path)) return {{}, {}, "`" + path + "` does not exist"};
  GraphSearch search = searchPattern(path);
  if (search.graphs.empty() && search.fault.empty()) search.fault = "no graph matches `" + path + "`";
  return search;
}

}  // namespace TolmSDK::Graphics::sfg::host
