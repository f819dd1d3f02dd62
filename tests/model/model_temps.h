#pragma once

// Variables that inserted calls declare. While a text is put together their names stand between marks; when
// it is complete, each gets a name that its block of braces has not seen.

#include <string>

namespace TolmSDK::Graphics::sfg::model {

std::wstring markDeclared(const std::wstring& name);
std::wstring markUsed(const std::wstring& name);

/// Names every marked variable. A `}` without an open `{` closes nothing.
std::wstring nameMarked(const std::wstring& text);

}  // namespace TolmSDK::Graphics::sfg::model
