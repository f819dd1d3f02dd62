#pragma once

// A registry of counted objects by name.

#include <string_view>

#include "tolmsdk/export.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/types.h"

namespace TolmSDK {

/// Keeps one reference on each registered object. Filled by one thread, then read by any number.
class TOLMSDK_API ResourceLibrary {
public:
  ResourceLibrary();
  ~ResourceLibrary();
  ResourceLibrary(const ResourceLibrary&) = delete;
  ResourceLibrary& operator=(const ResourceLibrary&) = delete;

  /// Registers `object` under `name`, replacing (and releasing) an object of the same name. A null object is
  /// refused with false.
  bool registerResource(const WString& name, IRefObject* object);
  /// The object of that name, or null. Adds no reference.
  IRefObject* acquireResource(std::wstring_view name) const;

  /// All registered names in order of text.
  Array<WString> getResourceNames() const;

private:
  Map<WString, RefPtr<IRefObject>> resources_;
};

}  // namespace TolmSDK
