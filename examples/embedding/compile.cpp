#include <iostream>

#include "embedding.h"

// The shader as a SPIR-V module, or what the compiler has against it and which fragments that comes from.
std::vector<std::uint32_t> compileOrExplain(const std::shared_ptr<const host::LibrarySet>& libraries) {
  host::CollapseOptions options;
  options.tool = host::CollapseTool::lightLoop;
  host::Job job(libraries, host::Document::from(describe()), options, host::Document::from(scene()));
  job.collapse();
  const host::Shader shader = job.assemble();
  try {
    return host::compileToSpirv(shader);
  } catch (const host::CompileError& error) {
    for (const host::Diagnostic& told : job.explain(shader, error)) {
      std::cerr << told.place() << ": " << told.text << '\n';
    }
    return {};
  }
}
