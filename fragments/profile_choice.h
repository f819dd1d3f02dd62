#pragma once

// Which of its profiles a fragment is used with.

#include "sfg/shader_fragment.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg {

/// The best profile of that name for the language and level of detail, else the best "default"; null when
/// there is neither.
inline const IShaderFragmentProfile* findBestOrDefaultProfile(const IShaderFragment& fragment,
                                                              const WString& name, const UString& language,
                                                              float lod) {
  static const WString kDefault(L"default");
  const IShaderFragmentProfile* best = fragment.findBestProfile(name, language, lod);
  return best != nullptr ? best : fragment.findBestProfile(kDefault, language, lod);
}

}  // namespace TolmSDK::Graphics::sfg
