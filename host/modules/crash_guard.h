#pragma once

// Code that may crash, in processes that may be thrown away.

#include <functional>

namespace TolmSDK::Graphics::sfg::host {

/// From now on survives() catches crashes in this process, which nothing but such work is done in.
void expectCrashes() noexcept;

/// Calls `work()`. Answers false when it crashed where crashes are expected: what it had begun is left as it
/// was then, nothing of it destroyed. Elsewhere a crash is one.
bool survives(const std::function<void()>& work);

/// Whether anything has crashed and was survived: the process should not be used for more than a last answer.
bool hasCrashed() noexcept;

}  // namespace TolmSDK::Graphics::sfg::host
