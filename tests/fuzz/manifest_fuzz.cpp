// Whatever a manifest holds: it is refused with a place, or names shaders of which no two have one output.

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

#include "sfg/host/build.h"
#include "sfg/host/errors.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics::sfg;

constexpr const char* kGraph = R"({ "nodes": [], "outputs": [] })";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FuzzFolder files(
      {{"brick.json", kGraph}, {"wood.json", kGraph}, {"sky.json", R"({ "lights": [] })"}});
  files.write("manifest.json", bytesOf(data, size));
  const std::string manifest = files.file("manifest.json");
  try {
    const host::BuildPlan plan = host::readManifest(host::Document::fromFile(manifest));
    std::set<std::string> outputs;
    for (const host::BuildTask& task : plan.tasks) {
      require(!task.graph.empty(), "a shader has a graph");
      require(outputs.insert(task.output).second, "no two shaders have one output");
    }
    for (const host::Diagnostic& problem : plan.problems)
      require(problem.file == manifest && problem.line > 0, "what is odd has a place");
  } catch (const host::InputError& error) {
    require(!error.place().empty(), "a refusal has a place");
  }
  return 0;
}
