#include "host/lints/lints.h"

#include <algorithm>

#include "host/lints/lint_list.h"
#include "host/lints/use_lints.h"

namespace TolmSDK::Graphics::sfg::host {

std::vector<Diagnostic> lintLibraries(const LoadedLibraries& libraries, std::span<const std::string> files) {
  const auto isAsked = [&](const std::string& file) {
    return files.empty() || std::find(files.begin(), files.end(), file) != files.end();
  };
  LintList lints;
  for (const std::string& name : libraries.files().files()) {
    if (!isAsked(name)) continue;
    const LintedFile file(libraries, name);
    for (const LintedFragment& fragment : file.fragments) {
      lintInputs(file, fragment, lints);
      lintUniforms(file, fragment, lints);
    }
  }
  return lints.take();
}

std::vector<Diagnostic> lintGraph(const CollapseJob&) { return {}; }

}  // namespace TolmSDK::Graphics::sfg::host
