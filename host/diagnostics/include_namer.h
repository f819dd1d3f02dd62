#pragma once

// Who includes a file.

#include <optional>
#include <string>
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

/// The include files of one collapse and who names them. Refers to the job.
class IncludeNamers {
public:
  explicit IncludeNamers(const CollapseJob& job);

  /// All that the result includes, those that others include first.
  const Array<WString>& names() const noexcept { return names_; }
  /// The first fragment of the collapse that names the file, or the first include file.
  std::optional<IncludeNamer> find(const WString& name) const;
  /// From the one that names the file up to a fragment, this many at most.
  std::vector<IncludeNamer> chain(const WString& name, std::size_t most) const;

private:
  std::optional<IncludeNamer> findIn(const IShaderFragment& fragment, const WString& name) const;

  const CollapseJob& job_;
  const LoadedLibraries& libraries_;
  Array<WString> names_;
};

}  // namespace TolmSDK::Graphics::sfg::host
