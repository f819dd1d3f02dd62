#pragma once

// What the state variables mean, for whoever fills them.

#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg::host {

struct StateMeaning {
  const char* text = "";
  const char* space = "";  ///< "object", "world" or "view"; empty for what is in none
};

/// Of a varying or uniform state variable; empty texts for any other name.
StateMeaning meaningOf(const UString& stateVariable);

}  // namespace TolmSDK::Graphics::sfg::host
