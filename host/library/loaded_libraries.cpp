#include "host/library/loaded_libraries.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "sfg/host/errors.h"
#include "text/ascii.h"
#include "tolmsdk/files.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;

/// A folder beside the one that is missing, with a name that is near.
std::string nearFolder(const std::string& folder) {
  const fs::path path = fs::path(folder).lexically_normal();
  const fs::path wanted = path.has_filename() ? path : path.parent_path();
  const std::string name = wanted.filename().string();
  std::vector<std::string> names;
  std::error_code error;
  const fs::path parent = wanted.has_parent_path() ? wanted.parent_path() : fs::path(".");
  for (fs::directory_iterator entry(parent, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code ignored;
    if (entry->is_directory(ignored)) names.push_back(entry->path().filename().string());
  }
  std::sort(names.begin(), names.end());
  const std::string_view near = nearestName(name, names);
  return near.empty() ? std::string() : (wanted.parent_path() / near).string();
}

void requireFolder(const std::string& folder) {
  std::error_code error;
  if (!fs::is_directory(folder, error)) {
    throw inputError(Finding::unknownFolder, std::string(), {},
                     fs::exists(folder, error) ? inTicks(folder) + " is not a folder"
                                               : "the folder " + inTicks(folder) + " does not exist" +
                                                     didYouMean(nearFolder(folder)));
  }
  const fs::directory_iterator entries(folder, error);
  if (error) {
    throw inputError(Finding::unreadableFolder, std::string(), {},
                     "the folder " + inTicks(folder) + " cannot be read: " + error.message());
  }
}

void requireLanguage(const std::string& language) {
  const std::string known = toUtf8(LanguageDx11::kName);
  if (language == known) return;
  throw inputError(Finding::unknownLanguage, std::string(), {},
                   "unknown language " + inTicks(language) + knownNameHint(language, known));
}

bool isLibraryName(const fs::path& file) { return equalsIgnoringCase(file.extension().string(), ".fraglib"); }

/// Paths of what is named as a library in the folder and is no file.
std::vector<std::string> noLibraries(const std::string& folder) {
  std::vector<std::string> paths;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code ignored;
    if (isLibraryName(entry->path()) && !entry->is_regular_file(ignored))
      paths.push_back(entry->path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

/// Uniforms that stand for something else already.
void tellUniformNames(const IObjectDataNode& object, const IShaderFragment& fragment, const TellProblem& tell,
                      const TellProblem& tellFault) {
  const IObjectDataNode* const uniforms = object.member(L"uniforms");
  if (uniforms == nullptr) return;
  Set<WString> inputs;
  Set<WString> outputs;
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
    const ITextParameterList& list = *fragment.getProfile(i)->getFunctionParameters();
    for (std::size_t k = 0; k < list.getNumInputs(); ++k) inputs.insert(list.getInputName(k));
    for (std::size_t k = 0; k < list.getNumOutputs(); ++k) outputs.insert(list.getOutputName(k));
  }
  Set<WString> names;
  for (std::size_t i = 0; i < uniforms->size(); ++i) {
    const IObjectDataNode* const name = uniforms->elementOrNull(i)->member(L"name");
    if (name == nullptr) continue;
    const WString& text = name->asString();
    const std::string told = "fragment " + inTicks(fragment.key()) + ": the uniform name " + inTicks(text);
    if (!names.insert(text).second) {
      tell(Finding::repeatedName, name->position(), told + " is used twice");
    } else if (outputs.contains(text)) {
      // The code assigns it, which no uniform takes.
      tellFault(Finding::repeatedName, name->position(), told + " is the name of a port, too");
    } else if (inputs.contains(text)) {
      tell(Finding::repeatedName, name->position(), told + " is the name of a port, too");
    }
  }
}

}  // namespace

LoadedLibraries::LoadedLibraries(const std::vector<std::string>& libraryFolders,
                                 const std::vector<std::string>& includeFolders, const std::string& language,
                                 const std::string& standardFolder,
                                 const std::map<std::string, std::string>& texts)
    : includeFolders_(includeFolders) {
  requireLanguage(language);
  for (const std::string& folder : libraryFolders) requireFolder(folder);
  for (const std::string& folder : includeFolders) requireFolder(folder);

  language_ = makeRef<LanguageDx11>(&library_);
  // Includes first: a fragment's hash string holds those of its include files.
  loadIncludes();
  LibraryReport report(files_);
  for (const std::string& folder : libraryFolders) {
    report.startFolder(folder == standardFolder);
    loadFragments(folder, report, texts);
  }
  problems_ = report.take();
  failures_ = report.failures();
  faults_ = report.faults();
  lacksFile_ = report.lacksFile();
}

/// Each folder once: read again, every file would hold its text twice.
void LoadedLibraries::loadIncludes() {
  Set<std::string> known;
  for (const std::string& folder : includeFolders_) {
    std::error_code error;
    const std::filesystem::path canonical = std::filesystem::canonical(folder, error);
    if (!known.insert(error ? folder : canonical.string()).second) continue;
    includes_.addIncludePath(fromUtf8(folder).c_str());
    includeFiles_.addFolder(folder);
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

void LoadedLibraries::loadFragments(const std::string& folder, LibraryReport& report,
                                    const std::map<std::string, std::string>& texts) {
  for (const std::string& path : noLibraries(folder)) report.addNoFile(path, whyNoFile(path));

  FragmentLoading loading;
  loading.includes = &includes_;
  WString given;
  loading.textOf = [&](const WString& file) -> const WString* {
    const auto text = texts.find(toUtf8(file));
    if (text == texts.end()) return nullptr;
    given = fromUtf8(text->second);
    return &given;
  };
  loading.onFile = [&](const WString& file) {
    report.startFile(file);
    files_.addFile(file);
    const std::string path = toUtf8(file);
    if (const auto text = texts.find(path); text != texts.end()) {
      texts_.add(path, text->second);
    } else {
      texts_.add(path);
    }
  };
  loading.isFragment = [](const WString& name) {
    return !isCommentKey(name) && name != fromUtf8(kSchemaKey);
  };
  loading.onFragment = [&](const WString& file, const WString& name, const IObjectDataNode& object) {
    report.addFragment(name, object);
    files_.addFragment(file, name, object);
  };
  const TellProblem tell = [&](Finding kind, TextPosition position, const std::string& text) {
    report.addPortProblem(kind, position, text);
  };
  loading.onLoaded = [&](const IObjectDataNode& object, const IShaderFragment& fragment) {
    files_.addCode(object, fragment);
    tellUniformNames(object, fragment, tell,
                     [&](Finding kind, TextPosition position, const std::string& text) {
                       report.addFault(kind, position, text);
                     });
    FragmentPorts ports = readPorts(object, fragment, *language_, tell);
    ports_.erase(fragment.key());
    if (!ports.ports.empty() || !ports.uniforms.empty()) ports_.emplace(fragment.key(), std::move(ports));
  };
  loading.onFailure = [&](const FragmentLoadFailure& failure) { report.addFailure(failure); };
  library_.loadFragments(fromUtf8(folder).c_str(), loading);
}

void LoadedLibraries::addOwnFragments(std::string_view library) {
  FragmentLoading loading;
  loading.includes = &includes_;
  loading.onFailure = [](const FragmentLoadFailure& failure) {
    throw std::logic_error("the host's own fragments: " + toUtf8(failure.reason));
  };
  library_.loadText(L"own.fraglib", fromUtf8(library), loading);
}

std::shared_ptr<const void>
LoadedLibraries::derived(const std::string& file,
                         const std::function<std::shared_ptr<const void>()>& make) const {
  const std::lock_guard<std::mutex> lock(derivedMutex_);
  const auto known = derived_.find(file);
  if (known != derived_.end()) return known->second;
  return derived_.emplace(file, make()).first->second;
}

UnknownName LoadedLibraries::whyUnknown(std::string_view name) const {
  const auto failure = failures_.find(fromUtf8(name));
  if (failure != failures_.end()) {
    return {Finding::notLoaded,
            "the fragment " + inTicks(name) + " cannot be loaded: see " + failure->second.place(),
            {},
            {},
            failure->second};
  }
  NearName search(name);
  std::vector<std::string> names;
  names.reserve(files_.entries().size());
  for (const auto& [known, entry] : files_.entries()) search.offer(names.emplace_back(toUtf8(known)));
  std::string hint = didYouMean(search.nearest());
  if (hint.empty() && lacksFile_) hint = "; not all libraries could be read";
  return {Finding::unknownFragment, "unknown fragment " + inTicks(name), hint, std::string(search.nearest())};
}

std::string LoadedLibraries::includeFile(const WString& name) const {
  for (const std::string& folder : includeFolders_) {
    const std::filesystem::path file = std::filesystem::path(folder) / toUtf8(name);
    if (std::filesystem::exists(file)) return file.string();
  }
  return std::string();
}

}  // namespace TolmSDK::Graphics::sfg::host
