#pragma once

// How much of what others wrote is read.

#include <cstddef>

#include "tolmsdk/export.h"

namespace TolmSDK {

/// Of the whole process. What passes one of them is refused as malformed text is, before memory is taken for
/// it.
struct ReadLimits {
  /// Bytes of one file or text; 4 GiB - 1 at most, whatever stands here.
  std::size_t fileBytes = std::size_t{1} << 28;
  /// Arrays, objects, texts, numbers and so on in one JSON document.
  std::size_t documentValues = 2'000'000;
  /// Parameters of one function in shader code.
  std::size_t parameters = 100'000;
};

/// What holds: the defaults, or what was set last. Any thread may call both; who reads meanwhile may meet
/// either.
TOLMSDK_API ReadLimits readLimits();
TOLMSDK_API void setReadLimits(const ReadLimits& limits);

}  // namespace TolmSDK
