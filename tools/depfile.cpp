#include "tools/depfile.h"

#include <filesystem>
#include <vector>

#include "host/library/fragment_files.h"
#include "sfg/shader_includes.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// What Make and Ninja both read as this path.
std::string escaped(const std::string& path) {
  std::string text;
  for (const char c : path) {
    if (c == ' ' || c == '#' || c == '\\') text += '\\';
    if (c == '$') text += '$';
    text += c;
  }
  return text;
}

std::vector<std::string> includeFiles(const host::CollapseJob& job) {
  Array<WString> names;
  Set<WString> done;
  ShaderIncludes::Singleton().createFlatIncludeArray(names, done, job.result()->getProfile(0)->includes());
  std::vector<std::string> files;
  for (const WString& name : names) {
    for (const std::string& folder : job.settings().includeFolders) {
      const std::filesystem::path file = std::filesystem::path(folder) / toUtf8(name);
      if (std::filesystem::exists(file)) files.push_back(file.string());
    }
  }
  return files;
}

}  // namespace

std::string writeDepfile(const host::CollapseJob& job, const std::string& target) {
  std::vector<std::string> files{job.settings().graphFile};
  if (!job.settings().environmentFile.empty()) files.push_back(job.settings().environmentFile);
  for (const std::string& folder : job.settings().libraryFolders) {
    for (const std::string& file : host::fragmentLibraryFiles(folder)) files.push_back(file);
  }
  for (const std::string& file : includeFiles(job)) files.push_back(file);

  std::string text = escaped(target) + ":";
  for (const std::string& file : files) text += " \\\n  " + escaped(file);
  return text + "\n";
}

}  // namespace TolmSDK::Graphics::sfg::tools
