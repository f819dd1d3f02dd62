#pragma once

// What `sfg watch` tells other programs.

#include <optional>
#include <string>
#include <vector>

#include "sfg/host/build.h"
#include "tools/watch/troubles.h"

namespace TolmSDK::Graphics::sfg::tools {

/// What became of one round.
struct WatchRound {
  std::vector<std::string> changed;         ///< files and folders; none in the first round
  std::vector<std::string> made;            ///< outputs that were built or reused
  std::optional<host::BuildReport> report;  ///< nothing when nothing could be tried
};

/// An object in one line.
std::string roundJson(const WatchRound& round, const TroubleNews& news);

}  // namespace TolmSDK::Graphics::sfg::tools
