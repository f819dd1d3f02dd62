#include "tools/lsp/workspace.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <utility>

#include "sfg/host/errors.h"
#include "tools/standard_library.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

namespace fs = std::filesystem;

// Of a workspace.
constexpr int kDeepest = 4;
constexpr std::size_t kMostEntries = 20000;

std::vector<std::string> textsOf(const Json& array, std::vector<std::string> otherwise) {
  if (!array.is_array()) return otherwise;
  std::vector<std::string> texts;
  for (const Json& text : array) {
    if (text.is_string()) texts.push_back(text.get<std::string>());
  }
  return texts;
}

bool isPassedOver(const fs::path& folder) {
  const std::string name = folder.filename().string();
  return name.starts_with(".") || name == "build" || name == "node_modules";
}

/// The folders below a root that hold fragment libraries, and those that hold include files beside them.
void searchFolders(const fs::path& root, std::set<fs::path>& libraries, std::set<fs::path>& headers) {
  std::error_code error;
  std::size_t entries = 0;
  fs::recursive_directory_iterator entry(root, fs::directory_options::skip_permission_denied, error);
  for (const fs::recursive_directory_iterator end; !error && entry != end && entries < kMostEntries;
       entry.increment(error), ++entries) {
    std::error_code ignored;
    if (entry->is_directory(ignored)) {
      if (entry.depth() + 1 >= kDeepest || isPassedOver(entry->path())) entry.disable_recursion_pending();
    } else if (entry->path().extension() == ".fraglib") {
      libraries.insert(entry->path().parent_path());
    } else if (entry->path().extension() == ".h") {
      headers.insert(entry->path().parent_path());
    }
  }
}

void addFolder(std::vector<fs::path>& folders, const fs::path& folder) {
  std::error_code error;
  const bool isKnown = std::any_of(folders.begin(), folders.end(), [&](const fs::path& other) {
    return other == folder || fs::equivalent(other, folder, error);
  });
  if (!isKnown) folders.push_back(folder);
}

bool isWellFormed(const std::string& text) { return Json::accept(text); }

}  // namespace

Settings withOptions(Settings settings, const Json& options) {
  settings.libraryFolders = textsOf(memberOf(options, "libraries"), std::move(settings.libraryFolders));
  settings.includeFolders = textsOf(memberOf(options, "includes"), std::move(settings.includeFolders));
  settings.language = stringOf(options, "language", settings.language);
  settings.environment = stringOf(options, "environment", settings.environment);
  if (const Json& standard = memberOf(options, "standardLibrary"); standard.is_boolean())
    settings.withoutStandard = !standard.get<bool>();
  return settings;
}

Workspace::Workspace(Settings settings, const OpenDocuments& documents)
    : settings_(std::move(settings)), documents_(documents) {}

void Workspace::setSettings(Settings settings) {
  settings_ = std::move(settings);
  invalidateFolders();
}

void Workspace::setRoots(std::vector<fs::path> roots) {
  roots_ = std::move(roots);
  invalidateFolders();
}

void Workspace::invalidate() { isLoaded_ = false; }

void Workspace::invalidateFolders() {
  isLoaded_ = false;
  folders_.reset();
}

const host::LibraryFolders& Workspace::folders() {
  if (!folders_) findFolders();
  return *folders_;
}

void Workspace::findFolders() {
  const auto absolute = [&](const std::string& folder) {
    const fs::path path = (base() / folder).lexically_normal();
    return path.has_filename() ? path : path.parent_path();
  };
  host::LibraryFolders folders;
  for (const std::string& folder : settings_.libraryFolders) addFolder(folders.libraries, absolute(folder));
  for (const std::string& folder : settings_.includeFolders) addFolder(folders.includes, absolute(folder));
  if (settings_.libraryFolders.empty()) {
    std::set<fs::path> libraries;
    std::set<fs::path> headers;
    for (const fs::path& root : roots_) searchFolders(root, libraries, headers);
    for (const fs::path& folder : libraries) {
      addFolder(folders.libraries, folder);
      if (settings_.includeFolders.empty() && headers.count(folder) != 0) addFolder(folders.includes, folder);
    }
  }
  for (const auto& [uri, document] : documents_) {
    const fs::path file(document.name());
    std::error_code error;
    if (file.extension() == ".fraglib" && file.is_absolute() && fs::is_directory(file.parent_path(), error))
      addFolder(folders.libraries, file.parent_path());
  }
  if (!settings_.withoutStandard) addStandardLibrary(folders, findStandardLibrary());
  folders_ = std::move(folders);
}

/// What relative paths are relative to.
fs::path Workspace::base() const { return roots_.empty() ? fs::current_path() : roots_.front(); }

std::string Workspace::pathInFolders(const std::string& file) {
  const fs::path path(file);
  for (const fs::path& folder : folders().libraries) {
    std::error_code error;
    if (path.parent_path() == folder || fs::equivalent(path.parent_path(), folder, error))
      return (folder / path.filename()).string();
  }
  return file;
}

fs::path Workspace::environment() const {
  if (settings_.environment.empty()) return {};
  return (base() / settings_.environment).lexically_normal();
}

const Catalog* Workspace::catalog() {
  load();
  return catalog_.get();
}

std::shared_ptr<const host::Checker> Workspace::checker() {
  load();
  return checker_;
}

void Workspace::load() {
  if (isLoaded_) return;
  isLoaded_ = true;
  files_.clear();
  std::map<std::string, std::string> texts;
  for (const auto& [uri, document] : documents_) {
    if (fs::path(document.name()).extension() != ".fraglib") continue;
    const std::string& text = document.text().buffer().text();
    const std::string path = pathInFolders(document.name());
    if (isWellFormed(text)) {
      texts.emplace(path, text);
    } else if (const auto before = texts_.find(path); before != texts_.end()) {
      texts.insert(*before);
    }
  }
  texts_ = std::move(texts);
  try {
    host::CheckOptions options;
    options.folders = folders();
    options.language = settings_.language;
    options.texts = texts_;
    if (const fs::path lights = environment(); !lights.empty()) {
      const OpenDocument* const open = findOpen(lights.string());
      options.environment = open != nullptr
                                ? host::Document::fromText(open->text().buffer().text(), open->name())
                                : host::Document::fromFile(lights);
    }
    options.cache = cache_;
    checker_ = std::make_shared<const host::Checker>(std::move(options));
    catalog_ = std::make_unique<Catalog>(checker_->libraries(),
                                         [this](const std::string& file) { return textOf(file); });
    problem_.clear();
  } catch (const host::InputError& error) {
    problem_ = error.what();
    catalog_.reset();
    checker_.reset();
  }
}

const OpenDocument* Workspace::findOpen(const std::string& file) const {
  const fs::path path(file);
  for (const auto& [uri, document] : documents_) {
    const fs::path other(document.name());
    std::error_code error;
    if (other == path || (other.filename() == path.filename() && fs::equivalent(other, path, error)))
      return &document;
  }
  return nullptr;
}

const ScannedText* Workspace::textOf(const std::string& file) {
  if (const OpenDocument* const document = findOpen(file)) return &document->text();
  const auto known = files_.find(file);
  if (known != files_.end()) return known->second.get();
  std::ifstream stream(file, std::ios::binary);
  std::unique_ptr<ScannedText> text;
  std::error_code error;
  if (stream && fs::is_regular_file(file, error)) {
    text = std::make_unique<ScannedText>(
        std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()));
  }
  return files_.emplace(file, std::move(text)).first->second.get();
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
