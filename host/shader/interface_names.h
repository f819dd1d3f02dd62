#pragma once

// The names that a compiled module gives the parts of its interface, in every target.

#include <string>
#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

/// With each run of underscores as one: others are reserved in some languages.
std::string withSingleUnderscores(std::string_view name);

/// "sfg_in_uv": what a pixel stage takes, and a vertex stage gives under the same name.
std::string attributeName(std::string_view name);
/// "sfg_vertex_uv": what a vertex stage takes.
std::string vertexAttributeName(std::string_view name);
/// "sfg_out_color".
std::string renderTargetName(std::string_view name);
/// The variable of the block "sfg_Uniforms" is "sfg_uniforms".
std::string blockVariable(std::string_view block);

}  // namespace TolmSDK::Graphics::sfg::host
