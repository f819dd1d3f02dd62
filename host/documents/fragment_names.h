#pragma once

// Names of fragments that documents ask for.

#include <functional>
#include <string>
#include <string_view>

#include "host/documents/diagnostic_kinds.h"

namespace TolmSDK::Graphics::sfg::host {

/// What keeps a name from being a fragment.
struct UnknownName {
  Finding kind = Finding::unknownFragment;
  std::string text;        ///< "unknown fragment `sun`"
  std::string hint;        ///< "; did you mean `sunLight`?", or empty
  std::string meant = {};  ///< "sunLight", or empty
};
using WhyUnknown = std::function<UnknownName(std::string_view name)>;

/// The answer, or one that knows no other names.
inline UnknownName unknownFragment(const WhyUnknown& whyUnknown, std::string_view name) {
  if (whyUnknown) return whyUnknown(name);
  return {Finding::unknownFragment, "unknown fragment `" + std::string(name) + "`", {}};
}

}  // namespace TolmSDK::Graphics::sfg::host
