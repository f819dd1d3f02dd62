// MaterialX documents: whatever they hold, the graph that comes out is one that can be written.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>

#include "import/import_fixture.h"

using namespace TolmSDK::Graphics::sfg;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  materialx::ImportFixture fixture;
  fixture.files["a.png"] = "";
  const std::string document(reinterpret_cast<const char*>(data), size);
  const materialx::ImportedGraph imported = fixture.importPlain(document, "g");
  std::set<std::string> names;
  for (const host::Node& node : imported.graph.nodes) {
    if (!names.insert(node.name).second) std::abort();
  }
  for (const host::Node& node : imported.graph.nodes) {
    for (const host::NodeInput& input : node.inputs) {
      const auto* const wire = std::get_if<host::NodeOutput>(&input.source);
      if (wire != nullptr && names.count(wire->node) == 0) std::abort();
    }
  }
  host::toJson(imported.graph);
  return 0;
}
