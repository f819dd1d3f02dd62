#pragma once

// "Did you mean".

#include <span>
#include <string>
#include <string_view>

#include "sfg/host/export.h"

namespace TolmSDK::Graphics::sfg::host {

/// The known name that is nearest to a mistyped one, of equally near ones the first; empty when none is near:
/// when more than a third of the letters, or more than three, were changed, added, left out or exchanged with
/// their neighbour, unless up to five were only left out. Takes time in proportion to the names.
SFG_HOST_API std::string suggest(std::string_view name, std::span<const std::string> known);

}  // namespace TolmSDK::Graphics::sfg::host
