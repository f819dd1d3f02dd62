// Random graphs of standard fragments, types respected.

#include <map>
#include <random>

#include "sfg/shader_fragment.h"
#include "tests/shaders/shader_fixture.h"
#include "tolmsdk/unicode.h"

namespace shaders_test {
namespace {

using sfg::EShaderFragmentProfileMode;
using sfg::IShaderFragment;
using TolmSDK::RefPtr;
using TolmSDK::toUtf8;
using TolmSDK::Graphics::componentCount;

constexpr unsigned kGraphs = 300;
constexpr unsigned kGroups = 10;

/// Fragments whose default profile is a function with an output of numbers.
std::vector<RefPtr<IShaderFragment>> usableFragments() {
  std::vector<RefPtr<IShaderFragment>> usable;
  const sfg::host::LanguageDx11& language = standardLibrary().language();
  for (const std::string& name : fragmentNames()) {
    const IShaderFragment& fragment = *language.findFragment(TolmSDK::fromUtf8(name));
    const sfg::IShaderFragmentProfile* const profile =
        fragment.findBestProfile(L"default", language.getLanguageString(), 100.0f);
    if (profile == nullptr || profile->getMode() == EShaderFragmentProfileMode::Inline) continue;
    const RefPtr<IShaderFragment> ports = sfg::host::cloneWithPorts(fragment, TolmSDK::WString(), language);
    if (ports->getNumOutputs() != 0 && componentCount(ports->getOutput(0)->getType()) != 0)
      usable.push_back(ports);
  }
  return usable;
}

class RandomGraph {
public:
  explicit RandomGraph(unsigned seed) : random_(seed) {}

  Json make(const std::vector<RefPtr<IShaderFragment>>& fragments) {
    Json nodes = Json::array();
    const unsigned count = 3 + pick(28);
    for (unsigned i = 0; i < count; ++i)
      nodes.push_back(node(i, *fragments[pick(unsigned(fragments.size()))]));
    return {{"inputs", {{{"name", "uv"}, {"type", "float2"}}}}, {"outputs", {output_}}, {"nodes", nodes}};
  }
  unsigned pick(unsigned below) { return static_cast<unsigned>(random_() % below); }

private:
  struct Port {
    std::string node;
    std::string output;
  };

  Json node(unsigned number, const IShaderFragment& fragment) {
    const std::string name = "node" + std::to_string(number);
    Json inputs = Json::object();
    for (std::size_t i = 0; i < fragment.getNumInputs(); ++i) {
      const std::string type = typeOf(*fragment.getInput(i));
      const std::vector<Port>& ports = ports_[type];
      if (!ports.empty() && pick(5) != 0) {
        const Port& port = ports[pick(unsigned(ports.size()))];
        inputs[toUtf8(fragment.getInputName(i))] = {{"node", port.node}, {"output", port.output}};
      } else if (type == "float2" && pick(2) == 0) {
        inputs[toUtf8(fragment.getInputName(i))] = {{"graphInput", "uv"}};
      }
    }
    for (std::size_t i = 0; i < fragment.getNumOutputs(); ++i) {
      ports_[typeOf(*fragment.getOutput(i))].push_back({name, toUtf8(fragment.getOutputName(i))});
    }
    output_ = {{"name", "value"}, {"type", typeOf(*fragment.getOutput(0))}, {"node", name}};
    return {{"name", name}, {"fragment", toUtf8(fragment.key())}, {"inputs", inputs}};
  }

  static std::string typeOf(const TolmSDK::Graphics::AParameter& port) {
    const bool isStruct = port.getType() == TolmSDK::Graphics::TypeID_struct;
    return toUtf8(isStruct ? port.getStructName() : port.getType().toString());
  }

  std::mt19937 random_;
  std::map<std::string, std::vector<Port>> ports_;
  Json output_;
};

class RandomGraphsTest : public ShaderFixture, public testing::WithParamInterface<unsigned> {};

TEST_P(RandomGraphsTest, Compile) {
  const std::vector<RefPtr<IShaderFragment>> fragments = usableFragments();
  ASSERT_GT(fragments.size(), 80u);
  for (unsigned seed = GetParam(); seed < kGraphs; seed += kGroups) {
    RandomGraph random(seed);
    const Json graph = random.make(fragments);
    sfg::host::CollapseSettings chosen = settings(graph);
    if (seed % 3 == 0) light(chosen, environmentOf(random.pick(5)));
    chosen.surfaceLod = float(random.pick(101));
    const sfg::host::ShaderStage stage =
        seed % 2 == 0 ? sfg::host::ShaderStage::pixel : sfg::host::ShaderStage::compute;
    ASSERT_EQ(compile(chosen, stage, seed % 10 == 0), "") << "seed " << seed << "\n" << graph.dump(2);
  }
}

INSTANTIATE_TEST_SUITE_P(Groups, RandomGraphsTest, testing::Range(0u, kGroups));

}  // namespace
}  // namespace shaders_test
