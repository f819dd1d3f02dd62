#pragma once

// What the include files of some libraries declare.

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "host/library/loaded_libraries.h"
#include "host/lints/declarations.h"

namespace TolmSDK::Graphics::sfg::host {

/// Made once, then only read. Refers to the libraries.
class IncludeIndex {
public:
  struct File {
    WString name;      ///< by which it is included
    std::string path;  ///< of several of one name the first
    WString text;
    CodeTokens tokens;
    PlainCode code;
    Declarations declared;
    std::vector<IncludeFiles::Named> includes;  ///< with places in the file
    std::vector<std::size_t> lines;             ///< where they begin in the text

    TextPosition placeOf(std::size_t offset) const;
  };

  explicit IncludeIndex(const LoadedLibraries& libraries);

  /// In the order of their names.
  const std::deque<File>& files() const noexcept { return files_; }
  /// Null for a name that is no readable include file, or one of several files.
  const File* find(std::wstring_view name) const;
  /// Whether a name, and all that is included through it, is known and certain.
  bool isComplete(std::wstring_view name) const;

  /// Of all files: whether a function of that name writes the argument, and whether there is one at all.
  const std::vector<bool>* findFunction(std::wstring_view name) const;
  /// Null also where files differ.
  const Declarations::Structure* findStructure(std::wstring_view name) const;
  const Declarations::Macro* findMacro(std::wstring_view name) const;

  /// The files that declare one of the names, and those that include such files.
  Set<const File*> filesOf(const Set<std::wstring_view>& names) const;

private:
  void add(const WString& name, const IncludeFiles::File& file, const LoadedLibraries& libraries);
  void findIncomplete();

  std::deque<File> files_;
  Map<std::wstring_view, const File*> byName_;
  Map<std::wstring_view, std::vector<const File*>> declaring_;
  Map<std::wstring_view, std::vector<const File*>> including_;
  Map<std::wstring_view, std::vector<bool>> functions_;
  Map<std::wstring_view, const Declarations::Structure*> structures_;
  Map<std::wstring_view, Declarations::Macro> macros_;
  Set<std::wstring_view> incomplete_;
};

}  // namespace TolmSDK::Graphics::sfg::host
