#pragma once

// Identifiers in shader text.

#include <string_view>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

bool isIdentifierStart(wchar_t c) noexcept;
bool isIdentifierPart(wchar_t c) noexcept;

/// The identifiers (keywords included) of shader text, each once; comments are skipped. The views point into
/// `code`.
Set<std::wstring_view> identifiersOf(std::wstring_view code);

}  // namespace TolmSDK::Graphics::sfg::host
