#pragma once

// Names that graphs give to what becomes a variable or parameter.

#include <string>
#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

/// Why the name (UTF-8) cannot be one in shader text, and what could be in its place: "`float` is a word of
/// the shading language; did you mean `float_`?". Empty for a name that can be used. `isDotted`: parts with
/// dots between them are names, too.
std::string nameFault(std::string_view name, bool isDotted);

}  // namespace TolmSDK::Graphics::sfg::host
