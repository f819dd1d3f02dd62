#include "sfg/shader_fragment_graph_builder.h"

#include <functional>
#include <memory>

#include "text/hash_index.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

/// A wire from the output of one member fragment to an input of another, by their places in the graph.
struct Wire {
  std::size_t source;
  std::size_t target;
  bool made;  ///< false when its port indexes did not fit
};

/// Answers questions about cycles over the wires of a graph, in the order in which they were added.
class WireOrder {
public:
  WireOrder(std::size_t numFragments, const Array<Wire>& wires)
      : numFragments_(numFragments), wires_(wires) {}

  /// Index of the first wire that, at the moment it was added, led from a fragment to one of its own
  /// ancestors or to itself; the not-found value when there is none. A wire that was not made counts at its
  /// moment only. Linear for a graph without cycles.
  std::size_t findFirstClosing() const {
    if (!isCyclic(wires_.size(), true)) return kNotFound;
    const std::size_t made = firstMadeClosing();
    const std::size_t end = made == kNotFound ? wires_.size() : made;
    for (std::size_t i = 0; i < end; ++i)
      if (!wires_[i].made && reaches(wires_[i].target, wires_[i].source, i)) return i;
    return made;
  }

private:
  /// Places of the wires that leave each fragment, among the first `count` wires.
  struct Outgoing {
    Array<std::size_t> first;    // numFragments + 1
    Array<std::size_t> targets;  // those of fragment f: from first[f] to first[f + 1]
  };

  Outgoing outgoing(std::size_t count, bool alsoRefused) const {
    Outgoing result{Array<std::size_t>(numFragments_ + 2), Array<std::size_t>(count)};
    const auto counts = [&](const Wire& wire) { return wire.made || alsoRefused; };
    for (std::size_t i = 0; i < count; ++i)
      if (counts(wires_[i])) ++result.first[wires_[i].source + 2];
    for (std::size_t f = 2; f < result.first.size(); ++f) result.first[f] += result.first[f - 1];
    for (std::size_t i = 0; i < count; ++i)
      if (counts(wires_[i])) result.targets[result.first[wires_[i].source + 1]++] = wires_[i].target;
    return result;
  }

  /// Whether the first `count` wires hold a cycle: fragments without an unvisited source are taken away until
  /// none is left.
  bool isCyclic(std::size_t count, bool alsoRefused) const {
    const Outgoing edges = outgoing(count, alsoRefused);
    Array<std::size_t> sources(numFragments_);
    for (std::size_t e = 0; e < edges.first[numFragments_]; ++e) ++sources[edges.targets[e]];
    Array<std::size_t> free;
    for (std::size_t f = 0; f < numFragments_; ++f)
      if (sources[f] == 0) free.push_back(f);
    std::size_t taken = 0;
    while (!free.empty()) {
      const std::size_t f = free.back();
      free.pop_back();
      ++taken;
      for (std::size_t e = edges.first[f]; e < edges.first[f + 1]; ++e)
        if (--sources[edges.targets[e]] == 0) free.push_back(edges.targets[e]);
    }
    return taken != numFragments_;
  }

  /// The first wire made that closes a cycle of wires made: the shortest beginning of the order that holds
  /// one ends there.
  std::size_t firstMadeClosing() const {
    if (!isCyclic(wires_.size(), false)) return kNotFound;
    std::size_t acyclic = 0;
    std::size_t cyclic = wires_.size();
    while (cyclic - acyclic > 1) {
      const std::size_t middle = acyclic + (cyclic - acyclic) / 2;
      (isCyclic(middle, false) ? cyclic : acyclic) = middle;
    }
    return cyclic - 1;
  }

  /// Whether `to` is `from`, or fed by it through the first `count` wires.
  bool reaches(std::size_t from, std::size_t to, std::size_t count) const {
    const Outgoing edges = outgoing(count, false);
    Array<char> seen(numFragments_);
    Array<std::size_t> pending{from};
    seen[from] = 1;
    while (!pending.empty()) {
      const std::size_t f = pending.back();
      pending.pop_back();
      if (f == to) return true;
      for (std::size_t e = edges.first[f]; e < edges.first[f + 1]; ++e) {
        const std::size_t target = edges.targets[e];
        if (seen[target] == 0) pending.push_back(target);
        seen[target] = 1;
      }
    }
    return false;
  }

  std::size_t numFragments_;
  const Array<Wire>& wires_;
};

std::wstring_view nameOf(const INodeAccessor* node) {
  const wchar_t* name = node->getFragmentName();
  return name == nullptr ? std::wstring_view() : std::wstring_view(name);
}

/// Places of the members that the host's nodes became.
class NodeIndex {
public:
  explicit NodeIndex(std::size_t count) { places_.reserve(count); }

  /// Of a node that the host shows twice the later place counts.
  void add(const INodeAccessor* node, std::size_t index) {
    const std::size_t known = numberOf(node);
    if (known != kNotFound) {
      places_[known].index = index;
      return;
    }
    places_.push_back({node, index});
    numbers_.add(hashOf(node), places_.size() - 1);
  }

  std::size_t find(const INodeAccessor* node) const {
    const std::size_t known = numberOf(node);
    if (known == kNotFound) throw Exception(L"sfgError : a wire comes from a node that is not in the graph!");
    return places_[known].index;
  }

private:
  struct Place {
    const INodeAccessor* node;
    std::size_t index;
  };

  static std::size_t hashOf(const INodeAccessor* node) { return std::hash<const void*>()(node); }
  std::size_t numberOf(const INodeAccessor* node) const {
    return numbers_.find(hashOf(node), [&](std::size_t i) { return places_[i].node == node; });
  }

  Array<Place> places_;
  HashIndex numbers_;
};

/// Wires the members as the nodes say, and refuses cycles.
void wireNodes(AShaderFragmentGraph& graph, const IGraphAccessor& accessor, const NodeIndex& nodes) {
  Array<Wire> wires;
  for (std::size_t target = 0; target < graph.getNumFragments(); ++target) {
    const INodeAccessor* node = accessor.getNode(target);
    for (std::size_t input = 0, count = node->getNumInputs(); input < count; ++input) {
      const INodeAccessor* sourceNode = nullptr;
      std::size_t output = kNotFound;
      if (!node->getInputConnection(input, sourceNode, output)) continue;
      const std::size_t source = nodes.find(sourceNode);
      const bool made =
          graph.getFragment(target)->setInputConnection(input, graph.getFragment(source), output);
      wires.push_back({source, target, made});
    }
  }
  const std::size_t closing = WireOrder(graph.getNumFragments(), wires).findFirstClosing();
  if (closing != kNotFound)
    throw Exception(L"sfgError : circular loop: %s!", nameOf(accessor.getNode(wires[closing].target)));
}

void addGraphPorts(AShaderFragmentGraph& graph, const IGraphAccessor& accessor, const NodeIndex& nodes) {
  for (std::size_t i = 0, count = accessor.getNumInputs(); i < count; ++i)
    graph.addInput(accessor.getInput(i));
  for (std::size_t i = 0, count = accessor.getNumOutputs(); i < count; ++i) {
    graph.addOutput(accessor.getOutput(i));
    const INodeAccessor* sourceNode = nullptr;
    std::size_t output = kNotFound;
    if (accessor.getOutputConnection(i, sourceNode, output))
      graph.setOutputConnection(i, graph.getFragment(nodes.find(sourceNode)), output);
  }
}

WString joinHashes(const AShaderFragmentGraph& graph) {
  std::size_t length = 0;
  for (std::size_t i = 0; i < graph.getNumFragments(); ++i)
    length += graph.getFragment(i)->getHashString().size();
  WString hash;
  hash.reserve(length);
  for (std::size_t i = 0; i < graph.getNumFragments(); ++i) hash += graph.getFragment(i)->getHashString();
  return hash;
}

}  // namespace

AShaderFragmentGraph* AShaderFragmentGraphBuilder::build(const ILanguageTraits* traits,
                                                         const IGraphAccessor* accessor) {
  if (accessor == nullptr) return nullptr;
  abandonedGraph_.reset();
  auto graph = std::make_unique<AShaderFragmentGraph>();
  try {
    NodeIndex nodes(accessor->getNumNodes());
    for (std::size_t i = 0, count = accessor->getNumNodes(); i < count; ++i) {
      const INodeAccessor* node = accessor->getNode(i);
      if (node == nullptr) throw Exception(L"sfgError : node %Iu of the graph is missing!", i);
      WString instanceName(L"n");
      appendDecimal(instanceName, i);
      const RefPtr<IShaderFragment> fragment = createFragment(traits, node, instanceName.c_str());
      if (fragment) graph->addFragment(fragment.get());
      // A host's own fragment class may also answer a clone that another graph holds.
      if (graph->getNumFragments() != i + 1)
        throw Exception(L"sfgError : Failed to create fragment: %s!", nameOf(node));
      nodes.add(node, i);
    }
    wireNodes(*graph, *accessor, nodes);
    addGraphPorts(*graph, *accessor, nodes);
    graph->setHashString(joinHashes(*graph));
  } catch (...) {
    abandonedGraph_ = graph.release();
    throw;
  }
  return graph.release();
}

RefPtr<IShaderFragment> AShaderFragmentGraphBuilder::createFragment(const ILanguageTraits* traits,
                                                                    const INodeAccessor* node,
                                                                    const wchar_t* instanceName) {
  const IShaderFragment* original = traits == nullptr ? nullptr : traits->findFragment(WString(nameOf(node)));
  if (original == nullptr) return nullptr;
  RefPtr<IShaderFragment> fragment(original->clone(WString(instanceName)));
  if (!fragment) return nullptr;
  for (std::size_t i = 0, count = node->getNumInputs(); i < count; ++i) fragment->addInput(node->getInput(i));
  for (std::size_t i = 0, count = node->getNumOutputs(); i < count; ++i)
    fragment->addOutput(node->getOutput(i));
  return fragment;
}

}  // namespace TolmSDK::Graphics::sfg
