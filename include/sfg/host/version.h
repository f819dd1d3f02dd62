#pragma once

// Which host library is running.

#include "sfg/host/export.h"

namespace TolmSDK::Graphics::sfg::host {

/// "MAJOR.MINOR.PATCH" of the library that was loaded; lives as long as the process.
SFG_HOST_API const char* hostVersion() noexcept;

/// Whether the library was built with shader compilers. Without them everything in `sfg/host/compile.h`
/// throws CompileError; all else works.
SFG_HOST_API bool hasCompilers() noexcept;

}  // namespace TolmSDK::Graphics::sfg::host
