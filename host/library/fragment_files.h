#pragma once

// Which file a fragment comes from.

#include <string>
#include <vector>

#include "sfg/shader_fragment.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// The fragment objects that were met while folders were loaded: of those with equal names the last one
/// counts, as in a library. Filled once, then only read.
class FragmentFiles {
public:
  struct NamedPlace {
    WString name;
    TextPosition position;
  };
  struct TypedPlace {
    WString type;
    WString parameter;
    TextPosition position;  ///< of the type in the code
  };
  struct Entry {
    std::string file;
    TextPosition position;
    WString description;                 ///< the fragment object's "description"; empty without one
    std::vector<NamedPlace> includes;    ///< that its profiles name
    std::vector<TypedPlace> structures;  ///< parameters of its code whose types are none of the language's
    /// "file:line:column".
    std::string place() const;
  };

  void addFile(const WString& file);
  void addFragment(const WString& file, const WString& name, const IObjectDataNode& object);
  /// What the code of a fragment tells that was added and has loaded.
  void addCode(const IObjectDataNode& object, const IShaderFragment& fragment);

  /// Null for a fragment that no file holds.
  const Entry* find(const WString& fragment) const;
  /// By fragment name.
  const Map<WString, Entry>& entries() const noexcept { return entries_; }
  /// All library files, in the order in which they were loaded.
  const std::vector<std::string>& files() const noexcept { return files_; }

private:
  Map<WString, Entry> entries_;
  std::vector<std::string> files_;
};

}  // namespace TolmSDK::Graphics::sfg::host
