#pragma once

// Light-and-shadow blocks of MetaSL code that do not close.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

struct OpenLightBlock {
  std::size_t place = 0;  ///< of the marker
  std::string text;       ///< what is wrong with it
};

/// The first marker of the code for which the generator refuses it under that many lights: one that no other
/// closes or opens. With one light a block may stand inside another. An end behind the last block is passed
/// over.
std::optional<OpenLightBlock> findOpenLightBlock(std::wstring_view code, std::size_t numLights);

/// The same in the code that a job collapses, told at the marker; nothing when all blocks close.
std::optional<Diagnostic> findOpenLightBlock(const CollapseJob& job);

}  // namespace TolmSDK::Graphics::sfg::host
