#include <iostream>

#include "embedding.h"

// One job: the graph and the scene become one function, and the function a complete shader.
host::Shader shade(const std::shared_ptr<const host::LibrarySet>& libraries) {
  host::CollapseOptions options;
  options.tool = host::CollapseTool::lightLoop;
  host::Job job(libraries, host::Document::from(describe()), options, host::Document::from(scene()));
  try {
    job.collapse();
  } catch (const host::CollapseError& error) {
    for (const host::Diagnostic& told : error.diagnostics()) std::cerr << told.text << '\n';
    throw;
  }
  for (const host::Diagnostic& told : job.warnings()) std::cerr << told.place() << ": " << told.text << '\n';
  return job.assemble(host::ShaderStage::pixel);
}
