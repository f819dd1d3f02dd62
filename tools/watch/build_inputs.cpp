#include "tools/watch/build_inputs.h"

namespace TolmSDK::Graphics::sfg::tools {

WatchedPaths buildInputs(const host::BuildPlan& plan) {
  WatchedPaths paths;
  paths.files.insert(plan.files.begin(), plan.files.end());
  for (const host::BuildTask& task : plan.tasks) {
    paths.files.insert(task.graph);
    if (!task.environment.empty()) paths.files.insert(task.environment);
  }
  for (const std::string& folder : plan.searched) {
    paths.folders.insert(folder);
    if (folder != plan.outputFolder) paths.kinds.emplace(folder, ".json");
  }
  for (const auto& folder : plan.folders.libraries) paths.kinds.emplace(folder.string(), ".fraglib");
  for (const auto& folder : plan.folders.includes) paths.kinds.emplace(folder.string(), ".h");
  return paths;
}

}  // namespace TolmSDK::Graphics::sfg::tools
