#pragma once

// Names that graphs give to what becomes a variable or parameter.

#include <string>
#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

/// Whether the text (UTF-8) is one identifier; words of the language are.
bool isIdentifier(std::string_view name);

/// Why the name (UTF-8) cannot be one in shader text, and what could be in its place: "`float` is a word of
/// the shading language; did you mean `float_`?". Empty for a name that can be used. `isDotted`: parts with
/// dots between them are names, too.
std::string nameFault(std::string_view name, bool isDotted);

}  // namespace TolmSDK::Graphics::sfg::host
