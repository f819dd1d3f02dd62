#pragma once

#include <tolmsdk/export.h>

// Marks what the host library exports.
#if defined(SFG_HOST_BUILDING)
#define SFG_HOST_API TOLMSDK_DLL_EXPORT
#else
#define SFG_HOST_API TOLMSDK_DLL_IMPORT
#endif

// Marks what an exported class keeps to the library.
#define SFG_HOST_LOCAL TOLMSDK_DLL_LOCAL
