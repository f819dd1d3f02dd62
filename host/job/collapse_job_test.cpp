#include "host/job/collapse_job.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "sfg/shader_includes.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(LoadedLibrariesTest, RegistersAnIncludeFolderOncePerProcess) {
  std::string pattern = (std::filesystem::temp_directory_path() / "sfg_includes_XXXXXX").string();
  const std::filesystem::path folder = mkdtemp(pattern.data());
  std::filesystem::create_directory(folder / "inc");
  std::ofstream(folder / "inc" / "sfg_registered_once.h") << "float once;\n";
  const std::string plain = (folder / "inc").string();
  const std::string detour = (folder / "inc" / ".." / "inc" / "").string();

  const LoadedLibraries first({}, {plain}, "dx11");
  const LoadedLibraries second({}, {plain, detour}, "dx11");
  EXPECT_EQ(ShaderIncludes::Singleton().getIncludeContent(L"sfg_registered_once.h"), L"float once;\n");
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
