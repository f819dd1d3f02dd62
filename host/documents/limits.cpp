#include "sfg/host/limits.h"

#include <algorithm>
#include <atomic>

#include "sfg/size_limit.h"
#include "tolmsdk/read_limits.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// No light loop over more lights stays within the size limit: each one's comment lines alone are longer.
constexpr std::size_t kMostLights = kMaximumTextLength / 128;

std::atomic<std::size_t> mostLights = Limits().lights;
std::atomic<std::size_t> mostCodeWords = Limits().codeWords;

}  // namespace

Limits limits() {
  const ReadLimits read = readLimits();
  return {read.fileBytes, read.documentValues, read.parameters, mostLights, mostCodeWords};
}

void setLimits(const Limits& limits) {
  setReadLimits({limits.fileBytes, limits.documentValues, limits.parameters});
  mostLights = std::min(limits.lights, kMostLights);
  mostCodeWords = limits.codeWords;
}

}  // namespace TolmSDK::Graphics::sfg::host
