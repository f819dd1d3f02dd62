#pragma once

// What of a shader's text a compiler looks at.

#include <string>
#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

/// The text of an assembled shader without the values of its uniforms, which hosts set and compilers pass
/// over: materials that differ in these alone have one text. Lines stay where they are.
std::string withoutUniformValues(std::string_view text);

}  // namespace TolmSDK::Graphics::sfg::host
