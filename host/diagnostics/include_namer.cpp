#include "host/diagnostics/include_namer.h"

#include "host/documents/document_reader.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

IncludeNamers::IncludeNamers(const CollapseJob& job) : job_(job), libraries_(job.libraries()) {
  Set<WString> done;
  libraries_.includes().createFlatIncludeArray(names_, done, job.result()->getProfile(0)->includes());
}

std::vector<IncludeNamer> IncludeNamers::chain(const WString& name, std::size_t most) const {
  std::vector<IncludeNamer> all;
  Set<WString> seen;
  WString next = name;
  while (all.size() < most && seen.insert(next).second) {
    std::optional<IncludeNamer> namer = find(next);
    if (!namer) break;
    next = namer->byInclude;
    all.push_back(std::move(*namer));
    if (next.empty()) break;
  }
  return all;
}

std::optional<IncludeNamer> IncludeNamers::find(const WString& name) const {
  const AShaderFragmentGraph& graph = *job_.graph();
  std::optional<IncludeNamer> found;
  const auto look = [&](const IShaderFragment* fragment) {
    if (!found && fragment != nullptr) found = findIn(*fragment, name);
  };
  for (std::size_t i = 0; i < graph.getNumFragments(); ++i) look(graph.getFragment(i));
  for (std::size_t i = 0; i < graph.getNumPostprocessFragments(); ++i) look(graph.getPostprocessFragment(i));
  for (const ShadingEnvironment::Light& light : job_.environment().lights()) look(light.fragment.get());
  look(job_.environment().getOutputFragment());
  if (found) return found;

  for (const WString& other : names_) {
    const IncludeFiles::File* const file = libraries_.includeFiles().find(other);
    if (file == nullptr) continue;
    for (const IncludeFiles::Named& named : file->includes) {
      if (named.name == name) return IncludeNamer{file->path, named.position, "this include file", other};
    }
  }
  return std::nullopt;
}

std::optional<IncludeNamer> IncludeNamers::findIn(const IShaderFragment& fragment,
                                                  const WString& name) const {
  const FragmentFiles::Entry* const entry = libraries_.files().find(fragment.key());
  if (entry == nullptr) return std::nullopt;
  const std::string who = "fragment " + inTicks(fragment.key());
  for (const FragmentFiles::NamedPlace& include : entry->includes) {
    if (include.name == name) return IncludeNamer{entry->file, include.position, who, {}};
  }
  // Some kinds of code include what their text does not name.
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
    if (fragment.getProfile(i)->includes().contains(name))
      return IncludeNamer{entry->file, entry->position, who, {}};
  }
  return std::nullopt;
}

}  // namespace TolmSDK::Graphics::sfg::host
