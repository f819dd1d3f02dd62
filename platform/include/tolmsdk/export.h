#pragma once

// How names enter and leave shared libraries on this system, and how a part of an exported class stays
// inside. Other libraries build their own export macros on these, so that only this header asks which system
// it is.

#if defined(_WIN32)
#define TOLMSDK_DLL_EXPORT __declspec(dllexport)
#define TOLMSDK_DLL_IMPORT __declspec(dllimport)
#define TOLMSDK_DLL_LOCAL
#else
#define TOLMSDK_DLL_EXPORT __attribute__((visibility("default")))
#define TOLMSDK_DLL_IMPORT __attribute__((visibility("default")))
#define TOLMSDK_DLL_LOCAL __attribute__((visibility("hidden")))
#endif

// Marks what the platform library exports.
#if defined(TOLMSDK_BUILDING)
#define TOLMSDK_API TOLMSDK_DLL_EXPORT
#else
#define TOLMSDK_API TOLMSDK_DLL_IMPORT
#endif
