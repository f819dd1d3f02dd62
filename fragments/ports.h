#pragma once

// Ports of fragments and graphs: found by name, how their types are written, and what feeds them.

#include <cstddef>
#include <string_view>

#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_graph.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/parameter.h"
#include "tolmsdk/type_id.h"
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

/// The language's name of the type; a structure is written by its own name.
inline const WString& typeText(const ILanguageTraits& language, const AParameter& parameter) {
  return parameter.getType() == TypeID_struct ? parameter.getStructName()
                                              : language.getTypeName(parameter.getType());
}

inline RefPtr<AParameter> makeStructPort(const WString& structName, const WString& name) {
  auto port = makeRef<AParameter>(TypeID_struct, name);
  port->setStructName(structName);
  return port;
}

/// Whether a fragment or an input of the owner graph feeds the input. An input that the owner graph does not
/// have feeds nothing.
inline bool isInputFed(const IShaderFragment& fragment, std::size_t input) {
  const Array<ShaderFragmentConnection>& connections = fragment.getInputConnections();
  if (input >= connections.size()) return false;
  if (connections[input].fragment != nullptr) return true;
  if (!connections[input].isConnected()) return false;
  const IShaderFragmentGraph* graph = fragment.getOwnerGraph();
  return graph != nullptr && connections[input].index < graph->getNumInputs();
}

}  // namespace TolmSDK::Graphics::sfg
