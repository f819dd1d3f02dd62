#pragma once

// What a library set holds.

#include <string>
#include <vector>

#include "host/documents/port_metadata.h"
#include "host/library/fragment_files.h"
#include "host/library/language_dx11.h"
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
  /// language. What is wrong inside library files is among the problems().
  LoadedLibraries(const std::vector<std::string>& libraryFolders,
                  const std::vector<std::string>& includeFolders, const std::string& language);
  LoadedLibraries(const LoadedLibraries&) = delete;
  LoadedLibraries& operator=(const LoadedLibraries&) = delete;

  const FragmentLibrary& library() const noexcept { return library_; }
  const ShaderIncludes& includes() const noexcept { return includes_; }
  const LanguageDx11& language() const noexcept { return *language_; }
  const FragmentFiles& files() const noexcept { return files_; }
  /// What the fragments say of their ports and uniforms.
  const LibraryPorts& ports() const noexcept { return ports_; }
  /// Of all library and include files.
  const SourceTexts& texts() const noexcept { return texts_; }
  const std::vector<Diagnostic>& problems() const noexcept { return problems_; }
  /// The include file of that name: in the first of the folders that has it, or empty.
  std::string includeFile(const WString& name) const;
  /// As they were given.
  const std::vector<std::string>& includeFolders() const noexcept { return includeFolders_; }

private:
  void loadIncludes();
  void keepIncludes(const WString& folder);
  void loadFragments(const std::string& folder);

  ShaderIncludes includes_;
  FragmentLibrary library_;
  RefPtr<LanguageDx11> language_;
  FragmentFiles files_;
  LibraryPorts ports_;
  SourceTexts texts_;
  std::vector<Diagnostic> problems_;
  std::vector<std::string> includeFolders_;
};

}  // namespace TolmSDK::Graphics::sfg::host
