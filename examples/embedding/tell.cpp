#include <sfg/host/schema.h>
#include <sfg/host/suggest.h>

#include <fstream>

#include "embedding.h"

namespace {

// "graph.json:3:14: unknown key `node` of a graph; did you mean `nodes`? [unknown-key]"
std::string line(const host::Diagnostic& told) {
  const std::string place = told.place();
  return (place.empty() ? "" : place + ": ") + told.text + " [" + told.identifier + "]";
}

}  // namespace

// All that is to be told of a graph as a person wrote it, for a list under an editor.
std::vector<std::string> tell(const std::shared_ptr<const host::LibrarySet>& libraries,
                              const std::string& text) {
  std::vector<std::string> lines;
  const auto add = [&lines](std::span<const host::Diagnostic> diagnostics) {
    for (const host::Diagnostic& told : diagnostics) lines.push_back(line(told));
  };
  try {
    host::Job job(libraries, host::Document::fromText(text, "graph.json"));
    add(job.problems());
    add(job.errors());
    job.collapse();
    add(job.warnings());
  } catch (const host::InputError& error) {
    lines.push_back(line(error.diagnostic()));
    add(error.related());
  } catch (const host::CollapseError& error) {
    add(error.diagnostics());
  }
  return lines;
}

// The fragment that a person meant who typed `name` into the host's own dialog; empty when none is near.
std::string meant(const host::LibrarySet& libraries, const std::string& name) {
  std::vector<std::string> known;
  for (const host::FragmentInfo& fragment : libraries.fragments()) known.push_back(fragment.name);
  return host::suggest(name, known);
}

// With a schema, editors complete the keys of documents and underline wrong ones.
void writeSchemas(const std::filesystem::path& folder) {
  std::ofstream(folder / "library.schema.json") << host::documentSchema(host::DocumentKind::library);
  std::ofstream(folder / "graph.schema.json") << host::documentSchema(host::DocumentKind::graph);
  std::ofstream(folder / "environment.schema.json") << host::documentSchema(host::DocumentKind::environment);
}
