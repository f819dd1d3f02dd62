#pragma once

// Structures of one name and several texts.

#include "host/lints/include_index.h"
#include "host/lints/lint_list.h"

namespace TolmSDK::Graphics::sfg::host {

/// Gathers the structures of all files, then tells of those that differ and are types of ports: which of them
/// a wire carries depends on what else is in the graph.
class StructureLints {
public:
  explicit StructureLints(const IncludeIndex& includes);

  void add(const LintedFile& file);
  void tell(LintList& lints) const;

private:
  struct Text {
    WString tokens;  ///< a blank between them
    std::string file;
    TextPosition position;
  };

  Map<WString, std::vector<Text>> texts_;
  Set<WString> portTypes_;
};

}  // namespace TolmSDK::Graphics::sfg::host
