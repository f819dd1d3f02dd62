#pragma once

// What `sfg render` was asked for, and who does it.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/collapse_options.h"
#include "tools/diagnostics.h"

namespace TolmSDK::Graphics::sfg::tools {

/// Texts are as they were given; what is empty was not.
struct RenderRequest {
  JobOptions job;
  std::string output;
  std::string device;
  std::string shape = "sphere";
  std::string size = "512";
  unsigned samples = 8;
  std::string camera;
  std::string uvScale = "1";
  std::vector<std::string> settings;  ///< "node.input=1,2,3"
  std::vector<std::string> textures;  ///< "node.input=file"
  std::string background = "0.18,0.18,0.18";
  double time = 0;
  unsigned turntable = 0;
  std::string node;
  std::string compared;
};

/// What the command does for every graph, for whoever draws.
struct RenderSteps {
  std::function<void(const std::vector<std::string>& outputs)> checkOutputs;
  std::function<std::shared_ptr<const host::LibrarySet>()> loadLibraries;
  std::function<bool(host::Job& job)> collapse;  ///< false where it was refused, which is told
};

/// Draws and writes. Answers the exit status. Throws InputError, and std::runtime_error of devices and files.
int renderPictures(const RenderRequest& request, const RenderSteps& steps, Diagnostics& diagnostics);
/// One line for each device, the one that is taken first.
std::string deviceLines();

}  // namespace TolmSDK::Graphics::sfg::tools
