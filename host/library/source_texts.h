#pragma once

// The texts of library and include files as they were when a set was loaded.

#include <string>
#include <vector>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// Bytes of files, kept so that places inside their texts can still be counted when the files have changed.
/// Filled once, then only read.
class SourceTexts {
public:
  /// A file that cannot be read is left out.
  void add(const std::string& file);
  /// The same with another text than the file's.
  void add(const std::string& file, std::string text);
  /// An include file, found by name from now on; those of one name are kept in order.
  void addInclude(const WString& name, const std::string& file);

  /// Without a byte-order mark; null for a file that was not added.
  const std::string* find(const std::string& file) const;
  /// By file.
  const Map<std::string, std::string>& all() const noexcept { return texts_; }
  /// The files whose texts are behind each other under that name.
  const std::vector<std::string>& includeFiles(const WString& name) const;

private:
  Map<std::string, std::string> texts_;
  Map<WString, std::vector<std::string>> includes_;
};

}  // namespace TolmSDK::Graphics::sfg::host
