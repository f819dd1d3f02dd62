#pragma once

// Types as documents and code name them.

#include <string>
#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

/// The type that a person meant who wrote another name: one that is near, or what other languages call it;
/// empty when none comes to mind.
std::string_view meantType(std::string_view name);

/// Of a name that is no type: the one that was meant, and all types.
std::string typeHint(std::string_view name);

}  // namespace TolmSDK::Graphics::sfg::host
