#pragma once

// Names of fragments that documents ask for.

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "host/documents/diagnostic_kinds.h"
#include "sfg/host/diagnostic.h"

namespace TolmSDK::Graphics::sfg::host {

/// What keeps a name from being a fragment.
struct UnknownName {
  Finding kind = Finding::unknownFragment;
  std::string text;                                ///< "unknown fragment `sun`"
  std::string hint;                                ///< "; did you mean `sunLight`?", or empty
  std::string meant = {};                          ///< "sunLight", or empty
  std::optional<Diagnostic> cause = std::nullopt;  ///< what was told of the fragment when it did not load
};
using WhyUnknown = std::function<UnknownName(std::string_view name)>;

/// The answer, or one that knows no other names.
inline UnknownName unknownFragment(const WhyUnknown& whyUnknown, std::string_view name) {
  if (whyUnknown) return whyUnknown(name);
  return {Finding::unknownFragment, "unknown fragment `" + std::string(name) + "`", {}};
}

}  // namespace TolmSDK::Graphics::sfg::host
