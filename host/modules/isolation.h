#pragma once

// Compilers in processes of their own, where the host has asked for it.

#include <string>

namespace TolmSDK::Graphics::sfg::host {

/// Whether compiles are kept apart from now on.
bool isIsolated() noexcept;

/// What `work(request)` gives, done in another process, where errors of this library and std::bad_alloc come
/// through. Processes are kept for later requests, as many as threads ask at once. Throws CompileError when
/// the process crashes or passes its limits. Where there can be no process the work is done in this one.
std::string inIsolation(const std::string& request, std::string (*work)(const std::string&));

}  // namespace TolmSDK::Graphics::sfg::host
