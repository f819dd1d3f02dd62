#include "sfg/host/library_set.h"

#include "host/library/loaded_libraries.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::vector<std::string> textsOf(const std::vector<std::filesystem::path>& paths) {
  std::vector<std::string> texts;
  for (const std::filesystem::path& path : paths) texts.push_back(path.string());
  return texts;
}

}  // namespace

std::string FragmentInfo::place() const {
  return Diagnostic{Severity::note, file, line, column, {}, {}}.place();
}

LibrarySet::LibrarySet(LibraryFolders folders, std::string language,
                       std::shared_ptr<const LoadedLibraries> loaded)
    : folders_(std::move(folders)), languageName_(std::move(language)), loaded_(std::move(loaded)) {}
LibrarySet::~LibrarySet() = default;

std::shared_ptr<const LibrarySet> LibrarySet::load(const LibraryFolders& folders,
                                                   const std::string& language) {
  return from(std::make_shared<const LoadedLibraries>(textsOf(folders.libraries), textsOf(folders.includes),
                                                      language, folders.standard.string()),
              folders, language);
}

std::shared_ptr<const LibrarySet> LibrarySet::from(std::shared_ptr<const LoadedLibraries> loaded,
                                                   const LibraryFolders& folders,
                                                   const std::string& language) {
  return std::shared_ptr<const LibrarySet>(new LibrarySet(folders, language, std::move(loaded)));
}

std::shared_ptr<const LibrarySet> LibrarySet::reload() const { return load(folders_, languageName_); }

std::span<const Diagnostic> LibrarySet::problems() const noexcept { return loaded_->problems(); }

std::vector<FragmentInfo> LibrarySet::fragments() const {
  std::vector<FragmentInfo> fragments;
  for (const auto& [name, entry] : loaded_->files().entries()) {
    if (loaded_->language().findFragment(name) == nullptr) continue;
    fragments.push_back(
        {toUtf8(name), toUtf8(entry.description), entry.file, entry.position.line, entry.position.column});
  }
  return fragments;
}

const FragmentLibrary& LibrarySet::library() const noexcept { return loaded_->library(); }
const ShaderIncludes& LibrarySet::includes() const noexcept { return loaded_->includes(); }
const ILanguageTraits& LibrarySet::language() const noexcept { return loaded_->language(); }

}  // namespace TolmSDK::Graphics::sfg::host
