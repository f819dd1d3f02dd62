#include <algorithm>
#include <filesystem>
#include <set>

#include "host/check/finding_list.h"
#include "host/documents/diagnose.h"
#include "host/documents/document_kind.h"
#include "host/documents/document_reader.h"
#include "host/documents/load_error.h"
#include "host/library/include_files.h"
#include "sfg/host/check.h"
#include "text/ascii.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;

bool hasExtension(const fs::path& file, std::string_view extension) {
  return equalsIgnoringCase(file.extension().string(), extension);
}
bool isLibrary(const fs::path& file) { return hasExtension(file, ".fraglib"); }

std::optional<DocumentKind> kindOf(const IObjectDataNode& root) {
  if (root.kind() != NodeKind::object) return std::nullopt;
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < root.size(); ++i) keys.push_back(toUtf8(root.memberName(i)));
  return kindOfKeys(keys);
}

RefPtr<IObjectDataNode> load(const Document& document, WString& error) {
  const RefPtr<IObjectDataNode> root(createJsonNode());
  const bool isLoaded = document.isFile() ? root->loadFromFile(fromUtf8(document.name()))
                                          : root->loadFromText(fromUtf8(*document.text()));
  if (!isLoaded) error = root->getLoadError();
  return root;
}

bool holdsIncludes(const std::string& folder) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    if (hasExtension(entry->path(), ".h")) return true;
  return false;
}

/// Gathers files, each once.
class PathCollector {
public:
  void addPath(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(fs::symlink_status(path, error))) {
      throw inputError(Finding::unreadableFile, path, {}, "there is no such file or folder");
    }
    if (fs::is_directory(status)) {
      addFolder(path);
    } else {
      addFile(path, true);
    }
  }

  CheckPaths take() {
    for (std::vector<std::string>* const list :
         {&found_.files.libraries, &found_.files.graphs, &found_.files.environments})
      std::sort(list->begin(), list->end());
    for (const std::string& folder : libraryFolders_) {
      found_.folders.libraries.emplace_back(folder);
      if (holdsIncludes(folder)) found_.folders.includes.emplace_back(folder);
    }
    found_.problems = sortedFindings(groupsOf(found_.problems));
    return std::move(found_);
  }

private:
  void addFolder(const std::string& folder) {
    std::vector<std::string> folders{folder};
    while (!folders.empty()) {
      const std::string next = std::move(folders.back());
      folders.pop_back();
      std::error_code error;
      for (fs::directory_iterator entry(next, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code ignored;
        if (entry->symlink_status(ignored).type() == fs::file_type::directory) {
          folders.push_back(entry->path().string());
        } else if (isLibrary(entry->path()) || hasExtension(entry->path(), ".json")) {
          addFile(entry->path().string(), false);
        }
      }
      if (error) tell(Finding::unreadableFolder, next, {}, "the folder cannot be read: " + error.message());
    }
  }

  void addFile(const std::string& file, bool isNamed) {
    if (!known_.insert(file).second) return;
    if (isLibrary(file)) {
      const fs::path folder = fs::path(file).parent_path();
      libraryFolders_.insert(folder.empty() ? "." : folder.string());
      found_.files.libraries.push_back(folder.empty() ? (fs::path(".") / file).string() : file);
      return;
    }
    if (const std::string fault = whyNoFile(file); !fault.empty())
      return tell(Finding::unreadableFile, file, {}, "it cannot be read: " + fault);
    WString error;
    const RefPtr<IObjectDataNode> root = load(Document::fromFile(file), error);
    if (!error.empty()) {
      const LoadError cause = documentError(toUtf8(error));
      return tell(cause.kind, file, cause.position, cause.text);
    }
    const std::optional<DocumentKind> kind = kindOf(*root);
    if (kind == DocumentKind::graph) {
      found_.files.graphs.push_back(file);
    } else if (kind == DocumentKind::environment) {
      found_.files.environments.push_back(file);
    } else if (isNamed) {
      tell(Finding::wrongKind, file, root->position(),
           "this is no fragment library (`*.fraglib`), no graph and no environment");
    }
  }

  void tell(Finding kind, const std::string& file, TextPosition position, const std::string& text) {
    found_.problems.push_back(diagnose(kind, Severity::error, file, position, text));
  }

  CheckPaths found_;
  std::set<std::string> known_;
  std::set<std::string> libraryFolders_;
};

}  // namespace

std::optional<DocumentKind> documentKindOf(const Document& document) {
  if (isLibrary(document.name())) return DocumentKind::library;
  WString error;
  const RefPtr<IObjectDataNode> root = load(document, error);
  return error.empty() ? kindOf(*root) : std::nullopt;
}

CheckPaths findCheckPaths(std::span<const std::string> paths) {
  PathCollector collector;
  for (const std::string& path : paths) collector.addPath(path);
  return collector.take();
}

}  // namespace TolmSDK::Graphics::sfg::host
