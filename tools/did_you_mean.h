#pragma once

// Words that were nearly right.

#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::tools {

/// "; did you mean `lightloop`?", or nothing where no word is near.
std::string didYouMean(const std::string& word, const std::vector<std::string>& known);

}  // namespace TolmSDK::Graphics::sfg::tools
