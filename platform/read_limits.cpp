#include "tolmsdk/read_limits.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <limits>

namespace TolmSDK {

namespace {

/// Lines, columns and lengths of a document are numbers of 32 bits.
constexpr std::size_t kMostBytes = std::numeric_limits<std::uint32_t>::max();

std::atomic<std::size_t> fileBytes = ReadLimits().fileBytes;
std::atomic<std::size_t> documentValues = ReadLimits().documentValues;
std::atomic<std::size_t> parameters = ReadLimits().parameters;

}  // namespace

ReadLimits readLimits() { return {fileBytes, documentValues, parameters}; }

void setReadLimits(const ReadLimits& limits) {
  fileBytes = std::min(limits.fileBytes, kMostBytes);
  documentValues = limits.documentValues;
  parameters = limits.parameters;
}

}  // namespace TolmSDK
