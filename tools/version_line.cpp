#include "tools/version_line.h"

#include <sfg/version.h>
#include <tolmsdk/version.h>

namespace TolmSDK::Graphics::sfg::tools {

std::string versionLine() {
  std::string const generator = sfgVersion();
  std::string const platform = platformVersion();
  std::string line = "sfg " + generator;
  if (platform != generator) line += ", platform " + platform;
  return line;
}

}  // namespace TolmSDK::Graphics::sfg::tools
