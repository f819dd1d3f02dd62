#pragma once

// How names enter and leave shared libraries on this system. Other libraries build their own export macro on
// TOLMSDK_DLL_EXPORT and TOLMSDK_DLL_IMPORT, so that only this header asks which system it is.

#if defined(_WIN32)
#define TOLMSDK_DLL_EXPORT __declspec(dllexport)
#define TOLMSDK_DLL_IMPORT __declspec(dllimport)
#else
#define TOLMSDK_DLL_EXPORT __attribute__((visibility("default")))
#define TOLMSDK_DLL_IMPORT __attribute__((visibility("default")))
#endif

// Marks what the platform library exports.
#if defined(TOLMSDK_BUILDING)
#define TOLMSDK_API TOLMSDK_DLL_EXPORT
#else
#define TOLMSDK_API TOLMSDK_DLL_IMPORT
#endif
