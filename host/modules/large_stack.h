#pragma once

// Work that recurses deeply: the compilers descend into expressions without a limit of their own.

#include <cstddef>
#include <functional>
#include <future>
#include <utility>

namespace TolmSDK::Graphics::sfg::host {

/// Address space; only what is used becomes memory.
constexpr std::size_t kLargeStack = std::size_t{256} << 20;

/// Runs `work` to its end on a thread of its own with a stack of kLargeStack bytes, where the system knows
/// such threads; elsewhere, and where it has none to give, in the calling thread. `work` throws nothing.
void runOnLargeStack(const std::function<void()>& work);

/// What `call()` answers or throws, run so.
template <class Call>
auto onLargeStack(Call&& call) {
  std::packaged_task<decltype(call())()> task(std::forward<Call>(call));
  auto answer = task.get_future();
  runOnLargeStack([&] { task(); });
  return answer.get();
}

}  // namespace TolmSDK::Graphics::sfg::host
