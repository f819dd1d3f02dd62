#include "host/diagnostics/include_namer.h"

#include <unordered_set>

#include "host/documents/document_reader.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

IncludeNamers::IncludeNamers(const CollapseJob& job) {
  Set<WString> done;
  job.libraries().includes().createFlatIncludeArray(names_, done, job.result()->getProfile(0)->includes());
  addFragments(job);
  addFiles(job.libraries());
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
  const auto found = places_.find(name);
  if (found == places_.end()) return std::nullopt;
  const Place& place = found->second;
  if (place.fragment == nullptr)
    return IncludeNamer{*place.file, place.position, "this include file", *place.include};
  return IncludeNamer{*place.file, place.position, "fragment " + inTicks(place.fragment->key()), {}};
}

void IncludeNamers::addFragments(const CollapseJob& job) {
  const LoadedLibraries& libraries = job.libraries();
  const AShaderFragmentGraph& graph = *job.graph();
  std::unordered_set<std::wstring_view> seen;
  const auto add = [&](const IShaderFragment* fragment) {
    if (fragment != nullptr && seen.insert(fragment->key()).second) addFragment(libraries, *fragment);
  };
  for (std::size_t i = 0; i < graph.getNumFragments(); ++i) add(graph.getFragment(i));
  for (std::size_t i = 0; i < graph.getNumPostprocessFragments(); ++i) add(graph.getPostprocessFragment(i));
  for (const ShadingEnvironment::Light& light : job.environment().lights()) add(light.fragment.get());
  add(job.environment().getOutputFragment());
}

void IncludeNamers::addFragment(const LoadedLibraries& libraries, const IShaderFragment& fragment) {
  const FragmentFiles::Entry* const entry = libraries.files().find(fragment.key());
  if (entry == nullptr) return;
  for (const FragmentFiles::NamedPlace& include : entry->includes) {
    places_.try_emplace(include.name, Place{&fragment, nullptr, &entry->file, include.position});
  }
  // Some kinds of code include what their text does not name.
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
    for (const WString& name : fragment.getProfile(i)->includes())
      places_.try_emplace(name, Place{&fragment, nullptr, &entry->file, entry->position});
  }
}

void IncludeNamers::addFiles(const LoadedLibraries& libraries) {
  for (const WString& other : names_) {
    const IncludeFiles::File* const file = libraries.includeFiles().find(other);
    if (file == nullptr) continue;
    for (const IncludeFiles::Named& named : file->includes)
      places_.try_emplace(named.name, Place{nullptr, &other, &file->path, named.position});
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
