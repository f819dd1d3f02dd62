#pragma once

// Compiled shaders as C++ headers, for programs that carry their shaders with them.

#include <string>
#include <string_view>
#include <vector>

namespace TolmSDK::Graphics::sfg::tools {

struct EmbeddedShader {
  std::string file;        ///< a relative path
  std::string bytes;       ///< what the compiler made
  std::string hash;        ///< of the shader's interface
  std::string reflection;  ///< the interface as JSON
};

/// Whether C++ reads the text as a namespace's name: an identifier that is no keyword and not reserved.
bool isNamespaceName(std::string_view text);

/// A path as such a name: "walls_brick_vertex_spv" of "walls/brick.vertex.spv".
std::string namespaceFor(const std::string& file);

/// Constants `hash`, `bytes` (never empty) and `reflection` in a namespace of the file's name inside `scope`.
/// No line is long.
std::string writeEmbeddedHeader(const std::string& scope, const EmbeddedShader& shader);

/// The header of all shaders: includes those of the files, which lie in the folder `scope`, and gives them as
/// the array `all`.
std::string writeCollectingHeader(const std::string& scope, const std::vector<std::string>& files);

}  // namespace TolmSDK::Graphics::sfg::tools
