#pragma once

// The include files of some folders: where they are, and what they include.

#include <string>
#include <string_view>
#include <vector>

#include "tolmsdk/object_data_node.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// What the registry of include files does not tell: why a file gives no text, and where it names others.
/// Filled once, then only read.
class IncludeFiles {
public:
  struct Named {
    WString name;
    TextPosition position;  ///< of the name
  };
  /// An `#include` line that is left out of the text, but names no file.
  struct Nameless {
    std::string text;  ///< what is told of it
    TextPosition position;
  };
  struct File {
    std::string path;   ///< of the first of that name
    std::string fault;  ///< "it is a folder": why it cannot be read; empty for one that can
    std::vector<Named> includes;
    std::vector<Nameless> nameless;
  };

  /// Reads what is named "x.h" directly in the folder, whatever it is.
  void addFolder(const std::string& folder);

  /// Null for a name that is in no folder.
  const File* find(std::wstring_view name) const;
  /// By name.
  const Map<WString, File>& files() const noexcept { return files_; }

private:
  Map<WString, File> files_;
};

/// A name as a directive writes it without quotation marks, or with others, "<b.h>": "b.h".
std::string bareIncludeName(std::string_view written);

/// What something is that should be a file: "it is a folder", "it is a link to nothing"; empty for a file.
std::string whyNoFile(const std::string& path);

}  // namespace TolmSDK::Graphics::sfg::host
