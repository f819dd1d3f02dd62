// Random graphs, built and taken apart by calls, against a small model of the rules.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <vector>

#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile_function.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

constexpr int kNone = -1;

/// What the rules say about a fragment: numbers stand for fragments and graphs.
struct ModelFragment {
  struct Connection {
    int fragment = kNone;
    std::size_t index = kNotFound;
  };
  std::size_t outputs = 0;
  std::vector<Connection> inputs;
  int owner = kNone;
  bool consolidatable = true;
  std::vector<float> profiles;  ///< levels of detail
  bool held = true;             ///< the test holds a reference
};

struct ModelGraph {
  std::size_t inputs = 0;
  std::vector<ModelFragment::Connection> outputs;
  std::vector<int> members;
  bool consolidatable = true;
};

/// Drives fragments and graphs and the model with the same calls.
class Playground {
public:
  explicit Playground(unsigned seed) : random_(seed) {}

  void step() {
    switch (below(14)) {
    case 0: return makeFragment();
    case 1: return makeGraph();
    case 2: return addToGraph();
    case 3: return removeFromGraph();
    case 4: return cloneFragment();
    case 5: return markNonConsolidatable();
    case 6: return destroyGraph();
    case 7: return addPorts();
    case 8: return connectOutput();
    case 9: return connectGraphInput();
    case 10: return clearInput();
    case 11: return registerProfile();
    default: return connect();
    }
  }

  void check() const {
    for (const auto& [id, model] : fragments_) {
      const IShaderFragment* fragment = real_.at(id);
      ASSERT_EQ(fragment->getOwnerGraph(), model.owner == kNone ? nullptr : graph(model.owner));
      ASSERT_EQ(fragment->getNumInputs(), model.inputs.size());
      ASSERT_EQ(fragment->getNumOutputs(), model.outputs);
      ASSERT_EQ(fragment->getInputConnections().size(), model.inputs.size());
      for (std::size_t i = 0; i < model.inputs.size(); ++i)
        ASSERT_EQ(fragment->getInputConnections()[i], realConnection(model.inputs[i]));
      checkProfiles(*fragment, model);
    }
    for (const auto& [id, model] : graphs_) {
      const AShaderFragmentGraph* graph = realGraphs_.at(id).get();
      ASSERT_EQ(graph->isConsolidatable(), model.consolidatable);
      ASSERT_EQ(graph->getNumInputs(), model.inputs);
      ASSERT_EQ(graph->getOutputConnections().size(), model.outputs.size());
      for (std::size_t i = 0; i < model.outputs.size(); ++i)
        ASSERT_EQ(graph->getOutputConnections()[i], realConnection(model.outputs[i]));
      ASSERT_EQ(graph->getNumFragments(), model.members.size());
      for (std::size_t i = 0; i < model.members.size(); ++i) {
        ASSERT_EQ(graph->getFragment(i), real_.at(model.members[i]));
        ASSERT_EQ(graph->findFragment(real_.at(model.members[i])), i);
      }
    }
    checkAncestors();
  }

private:
  std::size_t below(std::size_t limit) {
    return limit == 0 ? 0 : static_cast<std::size_t>(random_() % limit);
  }

  static void checkProfiles(const IShaderFragment& fragment, const ModelFragment& model) {
    ASSERT_EQ(fragment.getNumProfiles(), model.profiles.size());
    for (std::size_t i = 0; i < model.profiles.size(); ++i) {
      const float lod = model.profiles[i];
      ASSERT_EQ(fragment.getProfile(i)->getLOD(), lod);
      ASSERT_EQ(fragment.findBestProfile(L"p", UString(L"dx11"), lod), fragment.getProfile(i));
    }
    ASSERT_EQ(fragment.findBestProfile(L"p", UString(L"dx11"), 0.0f) == nullptr, model.profiles.empty());
  }

  template <class Map>
  int pick(const Map& map) {
    if (map.empty()) return kNone;
    return std::next(map.begin(), static_cast<std::ptrdiff_t>(below(map.size())))->first;
  }

  AShaderFragmentGraph* graph(int id) const { return realGraphs_.at(id).get(); }

  ShaderFragmentConnection realConnection(const ModelFragment::Connection& model) const {
    return {model.fragment == kNone ? nullptr : real_.at(model.fragment), model.index};
  }

  void makeFragment() {
    auto fragment = makeRef<AShaderFragment>();
    const int id = next_++;
    real_[id] = fragment.get();
    holders_[id] = fragment;
    ModelFragment& model = fragments_[id];
    for (std::size_t i = below(4); i != 0; --i) addInput(id);
    for (std::size_t i = below(3); i != 0; --i) addOutput(id);
    static_cast<void>(model);
  }

  void addInput(int id) {
    real_[id]->addInput(TypeID_float, L"i" + itos(static_cast<int>(fragments_[id].inputs.size())));
    fragments_[id].inputs.emplace_back();
  }
  void addOutput(int id) {
    real_[id]->addOutput(TypeID_float, L"o" + itos(static_cast<int>(fragments_[id].outputs)));
    ++fragments_[id].outputs;
  }

  void addPorts() {
    const int id = pick(fragments_);
    if (id != kNone) below(2) == 0 ? addInput(id) : addOutput(id);
    const int graphId = pick(graphs_);
    if (graphId == kNone) return;
    if (below(2) == 0) {
      graph(graphId)->addInput(TypeID_float, L"i");
      ++graphs_[graphId].inputs;
    } else {
      graph(graphId)->addOutput(TypeID_float, L"o" + itos(static_cast<int>(graphs_[graphId].outputs.size())));
      graphs_[graphId].outputs.emplace_back();
    }
  }

  void makeGraph() {
    if (graphs_.size() > 4) return;
    const int id = next_++;
    realGraphs_[id] = makeRef<AShaderFragmentGraph>();
    graphs_[id] = ModelGraph();
  }

  void addToGraph() {
    const int id = pick(fragments_);
    const int graphId = pick(graphs_);
    if (id == kNone || graphId == kNone) return;
    graph(graphId)->addFragment(real_[id]);
    if (fragments_[id].owner != kNone) return;
    fragments_[id].owner = graphId;
    graphs_[graphId].members.push_back(id);
    if (!fragments_[id].consolidatable) graphs_[graphId].consolidatable = false;
    // From now on the graph alone may keep it.
    if (below(2) == 0) letGo(id);
  }

  void letGo(int id) {
    fragments_[id].held = false;
    holders_.erase(id);
  }

  void removeFromGraph() {
    const int id = pick(fragments_);
    const int graphId = pick(graphs_);
    if (id == kNone || graphId == kNone) return;
    if (fragments_[id].owner == graphId && !fragments_[id].held) clearConnectionsTo(id);
    graph(graphId)->removeFragment(real_[id]);
    if (fragments_[id].owner != graphId) return;
    fragments_[id].owner = kNone;
    auto& members = graphs_[graphId].members;
    members.erase(std::find(members.begin(), members.end(), id));
    if (!fragments_[id].held) forget(id);
  }

  // A fragment that is about to die must not be named by connections any more.
  void clearConnectionsTo(int id) {
    for (auto& [other, model] : fragments_)
      for (std::size_t i = 0; i < model.inputs.size(); ++i) {
        if (model.inputs[i].fragment != id) continue;
        real_[other]->clearInputConnect(i);
        model.inputs[i] = {};
      }
    // Outputs cannot be cleared by a call: they dangle until they are set anew.
    for (auto& [graphId, model] : graphs_)
      for (const auto& output : model.outputs)
        if (output.fragment == id) dangling_.insert(id);
  }

  void forget(int id) {
    // A dangling output keeps naming the address: the number of the dead fragment is kept with it.
    fragments_.erase(id);
    if (!dangling_.contains(id)) real_.erase(id);
  }

  void destroyGraph() {
    const int graphId = pick(graphs_);
    if (graphId == kNone || below(3) != 0) return;
    const std::vector<int> members = graphs_[graphId].members;
    for (const int id : members)
      if (!fragments_[id].held) clearConnectionsTo(id);
    realGraphs_.erase(graphId);
    graphs_.erase(graphId);
    for (const int id : members) {
      fragments_[id].owner = kNone;
      if (!fragments_[id].held) forget(id);
    }
    // Inputs that were fed by inputs of the graph keep their numbers.
  }

  void cloneFragment() {
    const int id = pick(fragments_);
    if (id == kNone || fragments_.size() > 60) return;
    const int copy = next_++;
    RefPtr<IShaderFragment> clone(real_[id]->clone(L"clone"));
    real_[copy] = clone.get();
    holders_[copy] = clone;
    ModelFragment model = fragments_[id];
    model.owner = kNone;
    model.held = true;
    fragments_[copy] = model;
  }

  // Clones and originals have profiles of their own from then on.
  void registerProfile() {
    const int id = pick(fragments_);
    if (id == kNone) return;
    const auto profile = makeRef<AShaderFragmentProfileFunction>();
    profile->setProfilename(L"p");
    profile->languages().insert(UString(L"dx11"));
    profile->setLOD(static_cast<float>(next_++));
    real_[id]->registerProfile(profile.get());
    fragments_[id].profiles.push_back(profile->getLOD());
  }

  void markNonConsolidatable() {
    const int id = pick(fragments_);
    if (id == kNone || below(4) != 0) return;
    dynamic_cast<AShaderFragment&>(*real_[id]).SetNonConsolidatable();
    fragments_[id].consolidatable = false;
  }

  void connect() {
    const int target = pick(fragments_);
    const int source = below(20) == 0 ? kNone : pick(fragments_);
    if (target == kNone) return;
    ModelFragment& model = fragments_[target];
    const std::size_t input = below(model.inputs.size() + 1);
    const std::size_t output = source == kNone ? 0 : below(fragments_[source].outputs + 1);
    const bool expected = source != kNone && fragments_[source].owner == model.owner &&
                          output < fragments_[source].outputs && input < model.inputs.size();
    IShaderFragment* realSource = source == kNone ? nullptr : real_[source];
    const bool byName = below(2) == 0;
    const bool done =
        byName ? real_[target]->setInputConnection((L"i" + itos(static_cast<int>(input))).c_str(), realSource,
                                                   (L"o" + itos(static_cast<int>(output))).c_str())
               : real_[target]->setInputConnection(input, realSource, output);
    ASSERT_EQ(done, expected);
    if (expected) model.inputs[input] = {source, output};
  }

  void connectGraphInput() {
    const int target = pick(fragments_);
    if (target == kNone) return;
    ModelFragment& model = fragments_[target];
    const std::size_t input = below(model.inputs.size() + 1);
    const std::size_t graphInput = below(3);
    const bool expected =
        model.owner != kNone && graphInput < graphs_[model.owner].inputs && input < model.inputs.size();
    ASSERT_EQ(real_[target]->setInputConnection(input, graphInput), expected);
    if (expected) model.inputs[input] = {kNone, graphInput};
  }

  void connectOutput() {
    const int graphId = pick(graphs_);
    const int source = pick(fragments_);
    if (graphId == kNone || source == kNone) return;
    ModelGraph& model = graphs_[graphId];
    const std::size_t output = below(model.outputs.size() + 1);
    const std::size_t sourceOutput = below(fragments_[source].outputs + 1);
    const bool expected = output < model.outputs.size() && fragments_[source].owner == graphId &&
                          sourceOutput < fragments_[source].outputs;
    ASSERT_EQ(graph(graphId)->setOutputConnection(output, real_[source], sourceOutput), expected);
    if (expected) model.outputs[output] = {source, sourceOutput};
  }

  void clearInput() {
    const int id = pick(fragments_);
    if (id == kNone) return;
    const std::size_t input = below(fragments_[id].inputs.size() + 1);
    real_[id]->clearInputConnect(input);
    if (input < fragments_[id].inputs.size()) fragments_[id].inputs[input] = {};
  }

  void checkAncestors() const {
    // The ancestors of one fragment by the plainest means: add sources until nothing is new.
    if (fragments_.empty()) return;
    const int start = fragments_.rbegin()->first;
    std::set<int> ancestors;
    for (bool changed = true; changed;) {
      changed = false;
      const auto addSources = [&](int id) {
        for (const auto& input : fragments_.at(id).inputs)
          if (input.fragment != kNone) changed = ancestors.insert(input.fragment).second || changed;
      };
      addSources(start);
      for (const int id : std::vector<int>(ancestors.begin(), ancestors.end())) addSources(id);
    }
    for (const auto& [id, model] : fragments_)
      ASSERT_EQ(real_.at(start)->hasAncestor(real_.at(id)), ancestors.contains(id));
  }

  std::mt19937 random_;
  int next_ = 0;
  std::map<int, ModelFragment> fragments_;
  std::map<int, ModelGraph> graphs_;
  std::map<int, IShaderFragment*> real_;
  std::map<int, RefPtr<IShaderFragment>> holders_;
  std::map<int, RefPtr<AShaderFragmentGraph>> realGraphs_;
  std::set<int> dangling_;
};

TEST(RandomGraphs, FollowTheRules) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    SCOPED_TRACE(seed);
    Playground playground(seed);
    for (int i = 0; i < 300; ++i) {
      playground.step();
      if (::testing::Test::HasFatalFailure()) return;
      if (i % 5 != 0) continue;
      playground.check();
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
