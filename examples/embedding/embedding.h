#pragma once

#include <sfg/host/compile.h>
#include <sfg/host/job.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace host = TolmSDK::Graphics::sfg::host;

std::shared_ptr<const host::LibrarySet> load(const std::filesystem::path& library);
host::Graph describe();
host::Environment scene();
host::Shader shade(const std::shared_ptr<const host::LibrarySet>& libraries);
std::vector<std::uint32_t> compileOrExplain(const std::shared_ptr<const host::LibrarySet>& libraries);
std::vector<host::Shader> shadeInThreads(std::shared_ptr<const host::LibrarySet> libraries);
