// Whatever an environment document holds: it is refused with a place, or lights a surface and is assembled.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "sfg/host/job.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics::sfg;

constexpr const char* kLibrary = R"json({
  "lit": { "profiles": [
    { "language": ["dx11"], "implementation": ["void lit(float3 c, out float3 r)", "{", "r = c;", "}"] },
    { "name": "Lamp", "language": ["dx11"], "implementation": [
      "void lit(float3 c, out float3 r)", "{", "r = c * sfg_currentLight.color;", "}" ] } ] },
  "lamp": { "name": "Lamp", "language": ["dx11"], "predefine": ["struct Lamp { float3 color; };"],
    "uniforms": [ { "name": "power", "type": "float" } ],
    "implementation": ["void lamp(out Lamp light)", "{", "light.color = power;", "}"] },
  "grade": { "language": ["dx11"], "implementation": [
    "void grade(float3 color, out float3 result)", "{", "result = color;", "}" ] }
})json";

constexpr const char* kGraph = R"json({
  "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "lit" } ]
})json";

std::shared_ptr<const host::LibrarySet> libraries() {
  const FuzzFolder folder({{"library.fraglib", kLibrary}});
  return host::LibrarySet::load({{folder.path()}, {}});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::shared_ptr<const host::LibrarySet> loaded = libraries();
  host::CollapseOptions options;
  options.tool = host::CollapseTool::lightLoop;
  try {
    host::Job job(loaded, host::Document::fromText(kGraph, "graph"), options,
                  host::Document::fromText(std::string(bytesOf(data, size)), "environment"));
    static_cast<void>(job.problems());
    job.collapse();
    for (const host::Diagnostic& warning : job.warnings())
      require(!warning.place().empty(), "a warning has a place");
    require(!job.assemble().text.empty(), "a shader has text");
  } catch (const host::InputError& error) {
    require(!error.place().empty(), "a refusal has a place");
  } catch (const host::CollapseError& error) {
    require(!error.diagnostics().empty(), "a collapse that fails says why");
  } catch (const host::AssemblyError&) {
  }
  return 0;
}
