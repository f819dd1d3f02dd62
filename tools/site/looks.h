#pragma once

// The style and the script of a site.

namespace TolmSDK::Graphics::sfg::site {

extern const char* const kStyle;
extern const char* const kSearch;

}  // namespace TolmSDK::Graphics::sfg::site
