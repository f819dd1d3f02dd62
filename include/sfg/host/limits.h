#pragma once

// How much of what others wrote is read, and how much code is made of it.

#include <cstddef>

#include "sfg/host/export.h"

namespace TolmSDK::Graphics::sfg::host {

/// Of the whole process. What passes one of them is refused at its place with an InputError, a problem of the
/// library set or a CompileError, which names the limit. With the defaults, JSON documents of millions of
/// parts are refused within seconds. What one compile may use is set by isolateCompilers().
struct Limits {
  /// Bytes of one file or document; 4 GiB - 1 at most, whatever stands here. A document may take ten times
  /// as much and more while it is used.
  std::size_t fileBytes = std::size_t{1} << 28;
  /// Objects, arrays, texts, numbers and so on in one JSON document: graph, library, environment, manifest.
  std::size_t documentValues = 2'000'000;
  /// Parameters of one function in a fragment's code.
  std::size_t parameters = 100'000;
  /// Lights of one environment; 524,288 at most, whatever stands here.
  std::size_t lights = 100'000;
  /// Words of one function in code for compilers, with every function and macro in the place of its uses.
  std::size_t codeWords = 1'000'000;

  bool operator==(const Limits&) const = default;
};

/// What holds: the defaults, or what was set last. Any thread may call both; who reads meanwhile may meet
/// either, so set them before anything is read.
SFG_HOST_API Limits limits();
SFG_HOST_API void setLimits(const Limits& limits);

}  // namespace TolmSDK::Graphics::sfg::host
