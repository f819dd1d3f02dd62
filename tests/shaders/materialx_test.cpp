// The fragments of material nodes: several in one shader, since starting the compilers takes longer than most
// of them, and of those that differ in their types alone one. `sfg check` compiles them all.

#include <fstream>
#include <set>

#include "tests/shaders/shader_fixture.h"
#include "tests/support/job_files.h"
#include "tolmsdk/unicode.h"

namespace shaders_test {
namespace {

using sfg::IShaderFragment;
using sfg::host::JobFiles;
using sfg::host::ShaderStage;
using TolmSDK::RefPtr;
using TolmSDK::toUtf8;
using TolmSDK::Graphics::AParameter;
using TolmSDK::Graphics::componentCount;

const std::vector<std::string> kFolders = {"library", "library/materialx"};

const sfg::host::LoadedLibraries& materialLibrary() {
  static const sfg::host::LoadedLibraries libraries({"library/materialx"}, kFolders, "dx11");
  return libraries;
}

/// Graphs of unwired nodes whose outputs fit into one pixel.
class Packer {
public:
  void add(const std::string& name) {
    const RefPtr<IShaderFragment> ports =
        sfg::host::cloneWithPorts(*materialLibrary().language().findFragment(TolmSDK::fromUtf8(name)),
                                  TolmSDK::WString(), materialLibrary().language());
    Json outputs = Json::array();
    for (std::size_t i = 0; i < ports->getNumOutputs(); ++i)
      outputs.push_back(output(name, *ports->getOutput(i)));
    std::size_t targets = 0;
    for (std::size_t i = 0; i < ports->getNumOutputs(); ++i) targets += targetsOf(*ports->getOutput(i));
    if (graphs_.empty() || targets_ + targets > 8) {
      graphs_.push_back({{"outputs", Json::array()}, {"nodes", Json::array()}});
      targets_ = 0;
    }
    targets_ += targets;
    Json& graph = graphs_.back();
    graph["nodes"].push_back({{"name", name}, {"fragment", name}});
    for (const Json& item : outputs) graph["outputs"].push_back(item);
  }

  const std::vector<Json>& graphs() const { return graphs_; }

private:
  /// A matrix takes one for each row.
  static std::size_t targetsOf(const AParameter& port) {
    const std::size_t components = componentCount(port.getType());
    return components == 16 ? 4 : components == 9 ? 3 : 1;
  }

  static Json output(const std::string& node, const AParameter& port) {
    const std::string name = toUtf8(port.getName());
    return {{"name", node + "_" + name},
            {"type", toUtf8(port.getType().toString())},
            {"node", node},
            {"output", name}};
  }

  std::vector<Json> graphs_;
  std::size_t targets_ = 0;  ///< of the last graph
};

/// Names of fragments of a file, one for each description.
std::vector<std::string> differentFragments(const std::string& file) {
  std::ifstream stream(file);
  std::set<std::string> descriptions;
  std::vector<std::string> names;
  const Json fragments = Json::parse(stream);
  for (const auto& [name, fragment] : fragments.items())
    if (descriptions.insert(fragment.at("description")).second) names.push_back(name);
  return names;
}

class MaterialxTest : public ShaderFixture {};

TEST_F(MaterialxTest, EveryNodeCompilesForEveryTarget) {
  std::set<std::string> files;
  for (const auto& [name, entry] : materialLibrary().files().entries()) files.insert(entry.file);
  EXPECT_EQ(files.size(), std::size_t{14});
  for (const std::string& file : files) {
    Packer packer;
    for (const std::string& name : differentFragments(file)) packer.add(name);
    for (const Json& graph : packer.graphs()) {
      JobFiles chosen = settings(graph);
      chosen.libraryFolders = kFolders;
      chosen.includeFolders = kFolders;
      light(chosen, environmentOf(1));
      EXPECT_EQ(compile(chosen, ShaderStage::pixel, true), "") << file << ": " << graph.dump();
    }
  }
}

}  // namespace
}  // namespace shaders_test
