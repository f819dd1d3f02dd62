#pragma once

// Who includes a file.

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// Who names an include file, and where.
struct IncludeNamer {
  std::string file;
  TextPosition position;
  std::string who;    ///< "fragment `noise`", "this include file"
  WString byInclude;  ///< the name of the include file that names it; empty for a fragment
};

/// The include files of one collapse and who names them. Refers to the job. Takes time in
/// proportion to all that name one; an answer takes none.
class IncludeNamers {
public:
  explicit IncludeNamers(const CollapseJob& job);
  IncludeNamers(const IncludeNamers&) = delete;  // its places point into it
  IncludeNamers& operator=(const IncludeNamers&) = delete;

  /// All that the result includes, those that others include first.
  const Array<WString>& names() const noexcept { return names_; }
  /// The first fragment of the collapse that names the file, or the first include file.
  std::optional<IncludeNamer> find(const WString& name) const;
  /// From the one that names the file up to a fragment, this many at most.
  std::vector<IncludeNamer> chain(const WString& name, std::size_t most) const;

private:
  /// Where a name stands: in a fragment, or in an include file.
  struct Place {
    const IShaderFragment* fragment = nullptr;
    const WString* include = nullptr;
    const std::string* file = nullptr;
    TextPosition position;
  };

  void addFragments(const CollapseJob& job);
  void addFragment(const LoadedLibraries& libraries, const IShaderFragment& fragment);
  void addFiles(const LoadedLibraries& libraries);

  Array<WString> names_;
  /// By the name that stands there, the first one of each.
  std::unordered_map<std::wstring_view, Place> places_;
};

}  // namespace TolmSDK::Graphics::sfg::host
