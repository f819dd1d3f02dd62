#pragma once

#include <string>

#include "sfg/host/reflect.h"

namespace TolmSDK::Graphics::sfg::host {

/// Fills the hash from a text (UTF-8), or the hash of one, and the interface.
void hashInterface(ShaderInterface& shader, const std::string& text);

}  // namespace TolmSDK::Graphics::sfg::host
