#pragma once

// What fragments and graphs do alike with their ports.

#include <cstddef>
#include <string_view>

#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/parameter.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

using Ports = Array<RefPtr<AParameter const>>;

/// Index of the first port of exactly that name; the not-found value for null and for no match.
inline std::size_t findPort(const Ports& ports, const wchar_t* name) {
  if (name == nullptr) return kNotFound;
  const std::wstring_view wanted = name;
  for (std::size_t i = 0; i < ports.size(); ++i)
    if (ports[i]->getName() == wanted) return i;
  return kNotFound;
}

/// The structure's name for a structure, else the language's name of the type.
inline const WString& portType(const ILanguageTraits* traits, const AParameter& port) {
  return port.getType() == TypeID_struct ? port.getStructName() : traits->getTypeName(port.getType());
}

inline RefPtr<AParameter> makeStructPort(const WString& structName, const WString& name) {
  auto port = makeRef<AParameter>(TypeID_struct, name);
  port->setStructName(structName);
  return port;
}

}  // namespace TolmSDK::Graphics::sfg
