#include "host/job/input_files.h"

#include <filesystem>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

std::vector<std::string> inputFiles(const CollapseJob& job) {
  const LoadedLibraries& libraries = job.libraries();
  std::vector<std::string> files = job.documentFiles();
  files.insert(files.end(), libraries.files().files().begin(), libraries.files().files().end());

  Array<WString> names;
  Set<WString> done;
  libraries.includes().createFlatIncludeArray(names, done, job.result()->getProfile(0)->includes());
  for (const WString& name : names) {
    for (const std::string& folder : libraries.includeFolders()) {
      const std::filesystem::path file = std::filesystem::path(folder) / toUtf8(name);
      if (std::filesystem::exists(file)) files.push_back(file.string());
    }
  }
  return files;
}

}  // namespace TolmSDK::Graphics::sfg::host
