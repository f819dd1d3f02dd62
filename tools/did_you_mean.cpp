#include "tools/did_you_mean.h"

#include "sfg/host/suggest.h"

namespace TolmSDK::Graphics::sfg::tools {

std::string didYouMean(const std::string& word, const std::vector<std::string>& known) {
  const std::string near = host::suggest(word, known);
  return near.empty() ? std::string() : "; did you mean `" + near + "`?";
}

}  // namespace TolmSDK::Graphics::sfg::tools
