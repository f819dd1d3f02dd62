#pragma once

// Warnings as they are found.

#include <string>
#include <utility>
#include <vector>

#include "host/documents/diagnostic_kinds.h"
#include "host/job/collapse_job.h"
#include "host/origins/fragment_code.h"

namespace TolmSDK::Graphics::sfg::host {

/// Puts warnings at their places.
class WarningList {
public:
  explicit WarningList(const CollapseJob& job) : job_(job) {}

  void atGraph(Finding kind, TextPosition position, const std::string& text);
  void atEnvironment(Finding kind, TextPosition position, const std::string& text);
  void atLight(Finding kind, const ShadingEnvironment::Light& light, const std::string& text);
  /// About a fragment's own code, at its place in the library.
  void atFragment(Finding kind, const IShaderFragment& fragment, const std::string& text);
  /// At that offset of its code; where its library does not hold the code (null), at the fragment.
  void atCode(Finding kind, const IShaderFragment& fragment, const FragmentCode* code, std::size_t offset,
              const std::string& text);

  std::vector<Diagnostic> take() { return std::move(warnings_); }

private:
  const CollapseJob& job_;
  std::vector<Diagnostic> warnings_;
};

/// "node `mix`"
std::string named(const GraphNode& node);

}  // namespace TolmSDK::Graphics::sfg::host
