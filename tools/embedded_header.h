#pragma once

// A compiled shader as a C++ header, for programs that carry their shaders with them.

#include <string>
#include <string_view>

namespace TolmSDK::Graphics::sfg::tools {

struct EmbeddedShader {
  std::string scope;       ///< the namespace: identifiers joined by `::`
  std::string bytes;       ///< what the compiler made
  std::string hash;        ///< of the shader's interface
  std::string reflection;  ///< the interface as JSON
};

/// Whether C++ reads the text as a namespace's name: identifiers joined by `::`, none of them a keyword or
/// reserved.
bool isNamespaceName(std::string_view text);

/// The file name's part in front of the first dot as an identifier, "brick_wall" of
/// "out/brick-wall.vert.spv".
std::string namespaceFor(const std::string& file);

/// Constants `hash`, `bytes` (never empty) and `reflection` in the namespace. No line is long.
std::string writeEmbeddedHeader(const EmbeddedShader& shader);

}  // namespace TolmSDK::Graphics::sfg::tools
