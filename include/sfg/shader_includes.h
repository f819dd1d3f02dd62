#pragma once

// The registry of include files.

#include <mutex>
#include <string_view>

#include "sfg/export.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Include files by name without folder, case-sensitive, each with the names it includes and its text without
/// the `#include` lines. One per process. Filled (addIncludePath, clear) while nothing else uses it; then any
/// number of threads may ask, getIncludesHash included. Nothing throws or reports errors.
class SFG_API ShaderIncludes {
public:
  static ShaderIncludes& Singleton();

  ShaderIncludes();
  virtual ~ShaderIncludes();
  ShaderIncludes(const ShaderIncludes&) = delete;
  ShaderIncludes& operator=(const ShaderIncludes&) = delete;

  /// Reads the `.h` files directly in a folder; a file whose name is known adds to the text that is there. An
  /// unreadable folder or file adds nothing.
  void addIncludePath(const wchar_t* path);
  /// Forgets all files, but not the hashes computed for them.
  void clear();

  /// The file's text; empty for an unknown name.
  const WString& getIncludeContent(const wchar_t* name) const;
  /// The names the file includes directly; empty for an unknown name.
  const Set<WString>& getAncestorIncludes(const wchar_t* name) const;

  /// Appends `name` and everything it includes to `out`, what is included first, each name that `done` does
  /// not hold once. Unknown names are appended too. A name whose visit is under way is not entered again.
  void createFlatIncludeArray(Array<WString>& out, Set<WString>& done, const WString& name) const;
  void createFlatIncludeArray(Array<WString>& out, Set<WString>& done, const Set<WString>& names) const;

  /// Hashes of the contents of the flat list, one after the other. A file's hash is computed once per
  /// process.
  WString getIncludesHash(const Set<WString>& names);

private:
  struct Include {
    WString content;
    Set<WString> includes;
  };
  class FlatWalk;

  const Include* findInclude(std::wstring_view name) const;

  Map<WString, Include> includes_;
  Map<WString, WString> hashCache_;
  std::mutex hashCacheMutex_;
  WString emptyContent_;
  Set<WString> emptySet_;
};

}  // namespace TolmSDK::Graphics::sfg
