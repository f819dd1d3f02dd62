#pragma once

#include <tolmsdk/export.h>

// Marks what the generator library exports.
#if defined(SFG_BUILDING)
#define SFG_API TOLMSDK_DLL_EXPORT
#else
#define SFG_API TOLMSDK_DLL_IMPORT
#endif
