#include "host/lints/lints.h"

#include "host/documents/document_reader.h"
#include "host/lints/graph_lints.h"
#include "host/lints/include_index.h"
#include "host/lints/include_lints.h"
#include "host/lints/lint_list.h"
#include "host/lints/name_lints.h"
#include "host/lints/output_lints.h"
#include "host/lints/profile_lints.h"
#include "host/lints/structure_lints.h"
#include "host/lints/use_lints.h"

namespace TolmSDK::Graphics::sfg::host {

std::vector<Diagnostic> lintLibraries(const LoadedLibraries& libraries, std::span<const std::string> files) {
  const Set<std::string> asked(files.begin(), files.end());
  const auto isAsked = [&](const std::string& file) { return asked.empty() || asked.contains(file); };
  const IncludeIndex includes(libraries);
  StructureLints structures(includes);
  LintList lints;
  for (const std::string& name : libraries.files().files()) {
    const LintedFile file(libraries, name);
    structures.add(file);
    if (!isAsked(name)) continue;
    for (const LintedFragment& fragment : file.fragments) {
      lintProfiles(file, fragment, lints);
      lintOutputs(file, fragment, includes, lints);
      lintInputs(file, fragment, includes, lints);
      lintBuiltinUses(file, fragment, lints);
      lintUniforms(file, fragment, lints);
      lintNames(file, fragment, lints);
      lintStatements(file, fragment, lints);
      lintIncludes(libraries, file, fragment, includes, lints);
    }
  }
  for (const IncludeIndex::File& file : includes.files())
    if (isAsked(file.path)) lintIncludeFile(libraries, file, includes, lints);

  LintList ofStructures;
  structures.tell(ofStructures);
  for (Diagnostic& lint : ofStructures.take())
    if (isAsked(lint.file)) lints.add(std::move(lint));
  return lints.take();
}

std::vector<Diagnostic> lintGraph(const LoadedLibraries& libraries, const Document& graph) {
  if (!graph.hasPlaces()) return {};
  LintList lints;
  try {
    const DocumentReader reader(graph);
    lintGraphObject(libraries, reader.root(), reader.file(), lints);
  } catch (const InputError&) {
    // Told by whoever reads the document.
  }
  return lints.take();
}

}  // namespace TolmSDK::Graphics::sfg::host
