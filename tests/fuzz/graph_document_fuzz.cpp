// Whatever a graph document holds: it is refused with a place, or built, collapsed, warned of and assembled.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/diagnostics/refusal_place.h"
#include "host/diagnostics/warnings.h"
#include "host/job/called_expressions.h"
#include "host/job/collapse_job.h"
#include "host/shader/shader_assembly.h"
#include "sfg/host/errors.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/support/job_files.h"
#include "tolmsdk/exception.h"

namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics::sfg;

constexpr const char* kLibrary = R"json({
  "tint": { "language": ["dx11"], "implementation": [
    "void tint(float3 color, float amount, out float3 result)", "{", "result = color * amount;", "}" ] },
  "pick": { "language": ["dx11"], "uniforms": [ { "name": "gain", "type": "float" } ], "implementation": [
    "void pick(sfg_sampler2D image, float2 uv, out float4 result, out float alpha)", "{", "result = gain;", "}" ] },
  "patch": { "language": ["dx11"], "predefine": ["struct Patch { float size; };"], "implementation": [
    "void patch(Patch patch, inout float seed, out float result)", "{", "result = patch.size + sfg_time;", "}" ] },
  "twice": { "mode": "inline", "language": ["dx11"], "implementation": ["{{a}} * {{b}}"] },
  "clock": { "language": ["dx11"], "implementation": ["void clock(out float ticks)", "{", "ticks = 1;", "}"] },
  "grade": { "language": ["dx11"], "stateVariables": ["ticks"], "implementation": [
    "void grade(float3 color, out float3 result)", "{", "result = color * ticks;", "}" ] },
  "call": { "mode": "metaSL", "language": ["dx11"], "implementation": [
    "void call(float3 f, out float3 result)", "{", "sfg_shader(f, color, state.normal, result, result);", "}" ] },
  "lit": { "profiles": [
    { "language": ["dx11"], "implementation": ["void lit(float3 c, out float3 r)", "{", "r = c;", "}"] },
    { "name": "Lamp", "language": ["dx11"], "implementation": [
      "void lit(float3 c, out float3 r)", "{", "r = c * sfg_currentLight.color;", "}" ] } ] },
  "lamp": { "name": "Lamp", "language": ["dx11"], "predefine": ["struct Lamp { float3 color; };"],
    "implementation": ["void lamp(out Lamp light)", "{", "light.color = 1;", "}"] }
})json";

void require(bool holds) { TolmSDK::require(holds, "what a job answers"); }

constexpr const char* kScene =
    R"({ "lights": [ { "fragment": "lamp", "profile": "Lamp" }, { "fragment": "lamp", "profile": "Lamp" } ] })";

void collapse(const host::JobFiles& settings) try {
  host::CollapseJob job = host::makeJob(settings);
  try {
    job.run();
  } catch (const host::CalledExpressionError& refusal) {
    require(!refusal.wires().empty());
    return;
  } catch (const Exception& refusal) {
    require(!host::findRefusalPlace(job, refusal.getMessage()).empty());
    return;
  }
  if (job.result() == nullptr) {
    require(!host::findRefusalPlace(job, std::wstring_view()).empty());
    return;
  }
  for (const host::Diagnostic& warning : host::findWarnings(job, true)) require(!warning.place().empty());
  for (const host::ShaderStage stage :
       {host::ShaderStage::pixel, host::ShaderStage::compute, host::ShaderStage::vertex}) {
    try {
      const host::AssembledShader assembled = host::assembleShader(job, stage);
      std::size_t line = 1;
      for (const host::ShaderSection& section : assembled.sections) {
        require(section.firstLine == line && section.lastLine >= line);
        line = section.lastLine + 1;
      }
    } catch (const host::AssemblyError&) {
    }
  }
} catch (const host::InputError& error) {
  require(!std::string_view(error.what()).empty() && !error.file().empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FuzzFolder folder({{"library.fraglib", kLibrary}, {"scene.json", kScene}});
  folder.write("graph.json", bytesOf(data, size));
  host::JobFiles settings;
  settings.graphFile = folder.file("graph.json");
  settings.libraryFolders = {folder.path().string()};
  collapse(settings);
  settings.tool = host::CollapseTool::lightLoop;
  settings.environmentFile = folder.file("scene.json");
  collapse(settings);
  return 0;
}
