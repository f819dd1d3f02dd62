#pragma once

// Documents of earlier versions in the words of the present one.

#include "import/element.h"

namespace TolmSDK::Graphics::sfg::materialx {

/// Renames what version 1.39 calls otherwise in the document below `top`, whose `version` says which it is of
/// (none is the present one). What has no counterpart is told at its line and left as it is.
void upgradeDocument(Element& top, ElementTree& tree, Reports& reports);

}  // namespace TolmSDK::Graphics::sfg::materialx
