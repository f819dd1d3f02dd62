#pragma once

// What a library set holds.

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "host/documents/fragment_names.h"
#include "host/documents/port_metadata.h"
#include "host/library/fragment_files.h"
#include "host/library/include_files.h"
#include "host/library/language_dx11.h"
#include "host/library/library_report.h"
#include "host/library/source_texts.h"
#include "sfg/fragment_library.h"
#include "sfg/host/diagnostic.h"
#include "sfg/shader_includes.h"

namespace TolmSDK::Graphics::sfg::host {

/// Fragments, include files and language as folders give them: of this object alone. Immutable once made; any
/// number of threads may use it. Not copied or moved: the language points at the library.
class LoadedLibraries {
public:
  /// Paths and names are UTF-8. Throws InputError for a folder that does not exist and for an unknown
  /// language. What is wrong inside library files is among the problems(). Fragments of the standard folder
  /// are replaced silently. `texts` are read in place of the library files of those paths.
  LoadedLibraries(const std::vector<std::string>& libraryFolders,
                  const std::vector<std::string>& includeFolders, const std::string& language,
                  const std::string& standardFolder = {},
                  const std::map<std::string, std::string>& texts = {});
  LoadedLibraries(const LoadedLibraries&) = delete;
  LoadedLibraries& operator=(const LoadedLibraries&) = delete;

  /// Fragments of this host's own, of which nobody is told: `library` (JSON) must load. For who makes these
  /// libraries, before anybody else has them.
  void addOwnFragments(std::string_view library);

  const FragmentLibrary& library() const noexcept { return library_; }
  const ShaderIncludes& includes() const noexcept { return includes_; }
  const LanguageDx11& language() const noexcept { return *language_; }
  const FragmentFiles& files() const noexcept { return files_; }
  /// What the fragments say of their ports and uniforms.
  const LibraryPorts& ports() const noexcept { return ports_; }
  /// Of all library and include files.
  const SourceTexts& texts() const noexcept { return texts_; }
  /// What is wrong or odd in the files, in their order.
  const std::vector<Diagnostic>& problems() const noexcept { return problems_; }
  /// Of a name that is no fragment of these: its failure, or which was meant.
  UnknownName whyUnknown(std::string_view name) const;
  /// Of the fragments that load, but of which no shader can be made.
  const Map<WString, Diagnostic>& faults() const noexcept { return faults_; }
  /// What the registry of include files does not tell.
  const IncludeFiles& includeFiles() const noexcept { return includeFiles_; }
  /// The include file of that name: in the first of the folders that has it, or empty.
  std::string includeFile(const WString& name) const;
  /// As they were given.
  const std::vector<std::string>& includeFolders() const noexcept { return includeFolders_; }

  /// What somebody makes of a library file's text and keeps here for others; made once, when it is asked for
  /// first. One kind of thing only.
  std::shared_ptr<const void> derived(const std::string& file,
                                      const std::function<std::shared_ptr<const void>()>& make) const;

private:
  void loadIncludes();
  void keepIncludes(const WString& folder);
  void loadFragments(const std::string& folder, LibraryReport& report,
                     const std::map<std::string, std::string>& texts);

  ShaderIncludes includes_;
  FragmentLibrary library_;
  RefPtr<LanguageDx11> language_;
  FragmentFiles files_;
  IncludeFiles includeFiles_;
  LibraryPorts ports_;
  SourceTexts texts_;
  std::vector<Diagnostic> problems_;
  Map<WString, Diagnostic> failures_;
  Map<WString, Diagnostic> faults_;
  bool lacksFile_ = false;
  std::vector<std::string> includeFolders_;
  mutable std::mutex derivedMutex_;
  mutable std::map<std::string, std::shared_ptr<const void>> derived_;
};

}  // namespace TolmSDK::Graphics::sfg::host
