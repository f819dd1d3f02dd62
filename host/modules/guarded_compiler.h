#pragma once

// Whatever a compiler throws, as an error of this library.

#include <exception>
#include <new>
#include <utility>

#include "host/modules/large_stack.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {

/// What `call()` answers, on a stack that compilers do not exhaust. Errors of this library and std::bad_alloc
/// pass through; anything else that is thrown becomes a CompileError.
template <class Call>
auto guarded(Call&& call) {
  try {
    return onLargeStack(std::forward<Call>(call));
  } catch (const CompileError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    throw CompileError(std::string("a compiler fails: ") + error.what(), {}, false);
  } catch (...) {
    throw CompileError("a compiler fails", {}, false);
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
