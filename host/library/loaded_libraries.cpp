#include "host/library/loaded_libraries.h"

#include <filesystem>

#include "host/documents/diagnose.h"
#include "sfg/host/errors.h"
#include "tolmsdk/files.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

void requireFolder(const std::string& folder) {
  std::error_code error;
  if (std::filesystem::is_directory(folder, error)) return;
  throw InputError(std::filesystem::exists(folder, error) ? "`" + folder + "` is not a folder"
                                                          : "the folder `" + folder + "` does not exist");
}

void requireLanguage(const std::string& language) {
  const std::string known = toUtf8(LanguageDx11::kName);
  if (language != known) throw InputError("unknown language `" + language + "`; known is `" + known + "`");
}

}  // namespace

LoadedLibraries::LoadedLibraries(const std::vector<std::string>& libraryFolders,
                                 const std::vector<std::string>& includeFolders, const std::string& language)
    : includeFolders_(includeFolders) {
  requireLanguage(language);
  for (const std::string& folder : libraryFolders) requireFolder(folder);
  for (const std::string& folder : includeFolders) requireFolder(folder);

  language_ = makeRef<LanguageDx11>(&library_);
  // Includes first: a fragment's hash string holds those of its include files.
  loadIncludes();
  for (const std::string& folder : libraryFolders) loadFragments(folder);
}

/// Each folder once: read again, every file would hold its text twice.
void LoadedLibraries::loadIncludes() {
  Set<std::string> known;
  for (const std::string& folder : includeFolders_) {
    std::error_code error;
    const std::filesystem::path canonical = std::filesystem::canonical(folder, error);
    if (!known.insert(error ? folder : canonical.string()).second) continue;
    includes_.addIncludePath(fromUtf8(folder).c_str());
    keepIncludes(fromUtf8(folder));
  }
}

/// The files that the registry reads of a folder.
void LoadedLibraries::keepIncludes(const WString& folder) {
  for (const WString& file : EnumFiles(folder)) {
    const WString extension = GetExtension(file);
    if (extension == L"h" || extension == L"H") texts_.addInclude(GetFilename(file), toUtf8(file));
  }
}

void LoadedLibraries::loadFragments(const std::string& folder) {
  std::string current;
  FragmentLoading loading;
  loading.includes = &includes_;
  loading.onFile = [&](const WString& file) {
    files_.addFile(file);
    current = toUtf8(file);
    texts_.add(current);
  };
  loading.onFragment = [&](const WString& file, const WString& name, const IObjectDataNode& object) {
    files_.addFragment(file, name, object);
  };
  const TellProblem tell = [&](TextPosition position, const std::string& text) {
    problems_.push_back(diagnose(Severity::warning, current, position, text));
  };
  loading.onLoaded = [&](const IObjectDataNode& object, const IShaderFragment& fragment) {
    FragmentPorts ports = readPorts(object, fragment, *language_, tell);
    ports_.erase(fragment.key());
    if (!ports.ports.empty() || !ports.uniforms.empty()) ports_.emplace(fragment.key(), std::move(ports));
  };
  loading.onProblem = [&](std::wstring_view line) {
    problems_.push_back({Severity::message, current, 0, 0, toUtf8(line)});
  };
  library_.loadFragments(fromUtf8(folder).c_str(), loading);
}

std::string LoadedLibraries::includeFile(const WString& name) const {
  for (const std::string& folder : includeFolders_) {
    const std::filesystem::path file = std::filesystem::path(folder) / toUtf8(name);
    if (std::filesystem::exists(file)) return file.string();
  }
  return std::string();
}

}  // namespace TolmSDK::Graphics::sfg::host
