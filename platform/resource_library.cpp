#include "tolmsdk/resource_library.h"

namespace TolmSDK {

ResourceLibrary::ResourceLibrary() = default;

ResourceLibrary::~ResourceLibrary() = default;

bool ResourceLibrary::registerResource(const WString& name, IRefObject* object) {
  if (object == nullptr) return false;
  resources_[name] = object;
  return true;
}

IRefObject* ResourceLibrary::acquireResource(std::wstring_view name) const {
  const auto found = resources_.find(name);
  return found == resources_.end() ? nullptr : found->second.get();
}

Array<WString> ResourceLibrary::getResourceNames() const {
  Array<WString> names;
  names.reserve(resources_.size());
  for (const auto& [name, object] : resources_) names.push_back(name);
  return names;
}

}  // namespace TolmSDK
