#include "host/diagnostics/faulty_fragments.h"

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"

namespace TolmSDK::Graphics::sfg::host {

std::vector<Diagnostic> findFaultyFragments(const CollapseJob& job) {
  const Map<WString, Diagnostic>& faults = job.libraries().faults();
  std::vector<Diagnostic> found;
  Set<WString> told;
  const auto look = [&](const WString& fragment, const std::string& user, const std::string& file,
                        TextPosition position) {
    const auto fault = faults.find(fragment);
    if (fault == faults.end() || !told.insert(fragment).second) return;
    found.push_back(diagnose(Finding::notLoaded, Severity::error, file, position,
                             user + " uses the fragment " + inTicks(fragment) +
                                 ", of which no shader can be made: see " + fault->second.place()));
  };
  if (faults.empty()) return found;
  for (std::size_t i = 0; i < job.document().getNumNodes(); ++i) {
    const GraphNode& node = job.document().node(i);
    look(node.fragmentName(), "node " + inTicks(node.name()), job.document().file(), node.fragmentPosition());
  }
  for (const ShadingEnvironment::Light& light : job.environment().lights())
    look(light.fragment->key(), "light " + inTicks(light.name), job.environment().file(), light.position);
  return found;
}

}  // namespace TolmSDK::Graphics::sfg::host
