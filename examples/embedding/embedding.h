#pragma once

#include <sfg/host/compile.h>
#include <sfg/host/job.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace host = TolmSDK::Graphics::sfg::host;

std::shared_ptr<const host::LibrarySet> load(const std::filesystem::path& library);
host::Graph describe();
host::Environment scene();
host::Shader shade(const std::shared_ptr<const host::LibrarySet>& libraries);
std::vector<std::uint32_t> compileOrExplain(const std::shared_ptr<const host::LibrarySet>& libraries);
std::vector<std::string> tell(const std::shared_ptr<const host::LibrarySet>& libraries,
                              const std::string& text);
std::string meant(const host::LibrarySet& libraries, const std::string& name);
void writeSchemas(const std::filesystem::path& folder);
std::vector<std::string> sliders(const host::ShaderInterface& description);
std::vector<std::uint8_t> withValue(const host::ShaderInterface& description, const std::string& path,
                                    const std::vector<double>& numbers);
std::vector<host::Shader> shadeInThreads(std::shared_ptr<const host::LibrarySet> libraries);

// What the renderer knows, by the names of state variables: matrices row by row, multiplied with columns.
using State = std::map<std::string, std::vector<double>>;
struct Stage {
  std::vector<std::uint32_t> spirv;
  host::ShaderInterface description;
  std::map<std::size_t, std::vector<std::uint8_t>> buffers;  // by binding
};
Stage feed(const host::Job& job, host::ShaderStage stage, const State& state);
std::pair<Stage, Stage> feedBoth(const std::shared_ptr<const host::LibrarySet>& libraries,
                                 const State& state);
