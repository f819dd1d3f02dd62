#include "tools/command_test_support.h"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

constexpr const char* kLibrary = R"json({
  "tint": { "language": ["dx11"], "implementation": [
    "void tint(float3 color, float amount, out float3 result)", "{", "result = color * amount;", "}" ], "ports": { "color": { "value": [0, 0, 0] }, "amount": { "value": 0 } } },
  "pick": { "language": ["dx11"], "implementation": [
    "void pick(sfg_sampler2D image, float2 uv, out float4 result)", "{",
    "result = image.image.Sample(image.filtering, uv);", "}" ], "ports": { "uv": { "value": [0, 0] } } },
  "measure": { "language": ["dx11"], "predefine": ["struct Patch { float size; };"], "implementation": [
    "void measure(Patch patch, inout float seed, out float result)", "{", "result = patch.size + seed;", "}" ], "ports": { "seed": { "value": 0 } } },
  "twice": { "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} * 2.0"] },
  "sum": { "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} + {{b}}"] },
  "clock": { "language": ["dx11"], "implementation": ["void clock(out float ticks)", "{", "ticks = sfg_time;", "}"] },
  "grade": { "language": ["dx11"], "implementation": [
    "void grade(float3 color, out float3 result)", "{", "result = color;", "}" ], "ports": { "color": { "value": [0, 0, 0] } } },
  "frame": { "language": ["dx11"], "implementation": [
    "void frame(float4 color, out float4 result)", "{", "result = color;", "}" ], "ports": { "color": { "value": [0, 0, 0, 0] } } },
  "lamp": { "name": "Lamp", "language": ["dx11"], "predefine": ["struct Lamp { float3 color; };"], "implementation": [
    "void lamp(out Lamp light)", "{", "light.color = float3(1, 1, 1);", "}" ] },
  "lit": { "profiles": [
    { "name": "default", "language": ["dx11"], "implementation": [
      "void lit(float3 albedo, out float3 result)", "{", "result = albedo;", "}" ] },
    { "name": "Lamp", "language": ["dx11"], "implementation": [
      "void lit(float3 albedo, out float3 result)", "{", "result = albedo * sfg_currentLight.color;", "}" ] } ], "ports": { "albedo": { "value": [0, 0, 0] } } }
})json";

std::string readFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

}  // namespace

CommandTest::CommandTest() {
  std::string pattern = (fs::temp_directory_path() / "sfg_command_XXXXXX").string();
  folder_ = mkdtemp(pattern.data());
}

CommandTest::~CommandTest() { fs::remove_all(folder_); }

void CommandTest::write(const std::string& name, const std::string& text) const {
  const fs::path target = path(name);
  fs::create_directories(target.parent_path());
  std::ofstream(target, std::ios::binary) << text;
}

std::string CommandTest::read(const std::string& name) const { return readFile(path(name)); }

bool CommandTest::exists(const std::string& name) const { return fs::exists(path(name)); }

std::string CommandTest::repository(const std::string& name) { return SFG_REPOSITORY "/" + name; }

CommandRun CommandTest::run(const std::string& arguments) const {
  const std::string streams = " >.out 2>.err </dev/null";
  const std::string command = "cd '" + folder_ + "' && '" SFG_COMMAND "' " + arguments + streams;
  const int status = std::system(command.c_str());
  CommandRun run;
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  run.out = read(".out");
  run.err = read(".err");
  return run;
}

void CommandTest::writeLibrary() const { write("lib/test.fraglib", kLibrary); }

}  // namespace TolmSDK::Graphics::sfg::tools
