#pragma once

// Which file a fragment comes from.

#include <string>
#include <vector>

#include "tolmsdk/object_data_node.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// An index over the fragment libraries of some folders, read anew from the files: of fragments with equal
/// names the last one counts, as in a library. Files that do not load are passed over. Immutable.
class FragmentFiles {
public:
  struct Entry {
    std::string file;
    TextPosition position;
    WString description;  ///< the fragment object's "description"; empty without one
    /// "file:line:column".
    std::string place() const;
  };

  explicit FragmentFiles(const std::vector<std::string>& folders);

  /// Null for a fragment that no file holds.
  const Entry* find(const WString& fragment) const;
  /// By fragment name.
  const Map<WString, Entry>& entries() const noexcept { return entries_; }

private:
  Map<WString, Entry> entries_;
};

/// The fragment library files ("fraglib" in any case) of a folder, in the order in which they load.
std::vector<std::string> fragmentLibraryFiles(const std::string& folder);

}  // namespace TolmSDK::Graphics::sfg::host
