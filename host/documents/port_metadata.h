#pragma once

// What fragment objects say of their ports and uniforms: members that the generator does not read.

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/documents/diagnostic_kinds.h"
#include "sfg/host/port_metadata.h"
#include "sfg/shader_fragment.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/value.h"

namespace TolmSDK::Graphics::sfg::host {

/// What one fragment says, by name.
struct FragmentPorts {
  Map<WString, PortMetadata> ports;  ///< of the code's parameters
  Map<WString, PortMetadata> uniforms;
};

/// By fragment name.
using LibraryPorts = Map<WString, FragmentPorts>;

/// Is told of what cannot be used, and where it stands.
using TellProblem = std::function<void(Finding kind, TextPosition position, const std::string& text)>;

/// The "ports" of a fragment object and the members of its "uniforms" that describe them. `fragment` was
/// loaded from the object. Ports are the parameters of its first profile's code; those of an expression have
/// the types that the object's "interface" gives. Ports that are not of these, and what is of another JSON
/// type or does not fit the parameter's type are told and left out; unknown keys are passed over
/// (findUnknownKeys() tells of them), and keys that begin with "//" are comments.
FragmentPorts readPorts(const IObjectDataNode& object, const IShaderFragment& fragment,
                        const ILanguageTraits& language, const TellProblem& tell);

/// The words that "kind" and "space" know, in alphabetical order.
std::span<const std::string_view> portKinds();
std::span<const std::string_view> portSpaces();

/// What the libraries say of a port, or of a uniform; null when they say nothing.
const PortMetadata* findPort(const LibraryPorts& libraries, const WString& fragment, const WString& port);
const PortMetadata* findUniform(const LibraryPorts& libraries, const WString& fragment,
                                const WString& uniform);

/// The value that an input of the type takes when nobody gives one; nothing without a value of that type.
std::optional<AValue> portValue(const PortMetadata* port, const TypeID& type);

}  // namespace TolmSDK::Graphics::sfg::host
