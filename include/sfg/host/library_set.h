#pragma once

// Fragments and include files that jobs share.

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "sfg/fragment_library.h"
#include "sfg/host/diagnostic.h"
#include "sfg/host/export.h"
#include "sfg/shader_includes.h"
#include "tolmsdk/host_interfaces.h"

namespace TolmSDK::Graphics::sfg::host {

class LoadedLibraries;

/// Where a set reads: the fragment libraries (`*.fraglib`) and include files (`*.h`) directly in some
/// folders. Of fragments with equal names that of a later folder counts. A folder of include files named
/// twice, however it is spelled, is read once.
struct LibraryFolders {
  std::vector<std::filesystem::path> libraries;
  std::vector<std::filesystem::path> includes;
  /// One of the libraries, as it is spelled there, whose fragments are meant to be replaced by those of later
  /// folders: nobody is told of it. Empty for none.
  std::filesystem::path standard = {};
};

/// A fragment of a set.
struct FragmentInfo {
  std::string name;
  std::string description;  ///< empty without one
  std::string file;
  std::size_t line = 0;
  std::size_t column = 0;

  /// "file:line:column".
  SFG_HOST_API std::string place() const;
};

/// What was in some folders when the set was loaded. Immutable, held by shared pointers, used by any number
/// of threads and jobs at once; sets know nothing of each other. Files are read while it is loaded, never
/// later.
class SFG_HOST_API LibrarySet {
public:
  /// Reads the folders. Throws InputError for a folder that is not there and for an unknown language; what is
  /// wrong inside library files is among the problems().
  static std::shared_ptr<const LibrarySet> load(const LibraryFolders& folders,
                                                const std::string& language = "dx11");
  /// Another set, of the same folders as they are now. Jobs over this one go on with it. Throws as load()
  /// does.
  std::shared_ptr<const LibrarySet> reload() const;

  LibrarySet(const LibrarySet&) = delete;
  LibrarySet& operator=(const LibrarySet&) = delete;
  ~LibrarySet();

  const LibraryFolders& folders() const noexcept { return folders_; }
  /// What was passed over, as the generator's messages, and warnings of what is said of ports and cannot be
  /// used, in the order of files. Lives as long as the set.
  std::span<const Diagnostic> problems() const noexcept;
  /// The fragments that did load, in order of names.
  std::vector<FragmentInfo> fragments() const;

  /// For the generator's own steps and for hosts that call it themselves. They live as long as the set.
  const FragmentLibrary& library() const noexcept;
  const ShaderIncludes& includes() const noexcept;
  const ILanguageTraits& language() const noexcept;

  /// For this library's own use.
  static std::shared_ptr<const LibrarySet> from(std::shared_ptr<const LoadedLibraries> loaded,
                                                const LibraryFolders& folders, const std::string& language);
  const std::shared_ptr<const LoadedLibraries>& loaded() const noexcept { return loaded_; }

private:
  LibrarySet(LibraryFolders folders, std::string language, std::shared_ptr<const LoadedLibraries> loaded);

  LibraryFolders folders_;
  std::string languageName_;
  std::shared_ptr<const LoadedLibraries> loaded_;
};

}  // namespace TolmSDK::Graphics::sfg::host
