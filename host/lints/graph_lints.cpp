#include "host/lints/graph_lints.h"

#include <algorithm>

#include "tolmsdk/type_id.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Visits the elements of an array, or the values of an object, that are objects.
template <class Visit>
void forEachObject(const IObjectDataNode* container, const Visit& visit) {
  for (std::size_t i = 0; container != nullptr && i < container->size(); ++i) {
    const IObjectDataNode* const object = container->element(i);
    if (object != nullptr && object->kind() == NodeKind::object) visit(*object);
  }
}

const WString& textOf(const IObjectDataNode& object, std::wstring_view key) {
  static const WString none;
  const IObjectDataNode* const value = object.member(key);
  return value != nullptr ? value->asString() : none;
}

class GraphLints {
public:
  GraphLints(const LoadedLibraries& libraries, const IObjectDataNode& root, const std::string& file,
             LintList& lints)
      : libraries_(libraries), root_(root), file_(file), lints_(lints) {}

  void run() {
    findWires();
    forEachObject(root_.member(L"inputs"), [&](const IObjectDataNode& input) {
      const WString& name = textOf(input, L"name");
      if (name.empty() || graphInputs_.contains(name)) return;
      lints_.at(Finding::unusedGraphInput, file_, input.member(L"name")->position(),
                "nothing takes the graph input " + inTicks(name));
    });
    forEachObject(root_.member(L"nodes"), [&](const IObjectDataNode& node) {
      const WString& name = textOf(node, L"name");
      if (!name.empty() && knowsOutputs_ && !reached_.contains(name)) {
        lints_.at(Finding::unusedNode, file_, node.member(L"name")->position(),
                  "no output of the graph depends on node " + inTicks(name));
      }
      compareInterface(node);
    });
  }

private:
  /// Which nodes the outputs reach, and which graph inputs are taken anywhere.
  void findWires() {
    Map<std::wstring_view, const IObjectDataNode*> nodes;
    forEachObject(root_.member(L"nodes"), [&](const IObjectDataNode& node) {
      nodes.emplace(textOf(node, L"name"), &node);
      forEachObject(node.member(L"inputs"),
                    [&](const IObjectDataNode& wire) { graphInputs_.insert(textOf(wire, L"graphInput")); });
    });
    std::vector<std::wstring_view> open;
    forEachObject(root_.member(L"outputs"),
                  [&](const IObjectDataNode& output) { open.push_back(textOf(output, L"node")); });
    // A wire that is wrong may have been meant for any of the nodes.
    knowsOutputs_ = !open.empty() && std::all_of(open.begin(), open.end(), [&](std::wstring_view name) {
      return nodes.contains(name);
    });
    while (!open.empty()) {
      const std::wstring_view name = open.back();
      open.pop_back();
      const auto node = nodes.find(name);
      if (node == nodes.end() || !reached_.insert(name).second) continue;
      forEachObject(node->second->member(L"inputs"),
                    [&](const IObjectDataNode& wire) { open.push_back(textOf(wire, L"node")); });
    }
  }

  void compareInterface(const IObjectDataNode& node) {
    const IObjectDataNode* const interface = node.member(L"interface");
    const WString& name = textOf(node, L"fragment");
    const IShaderFragment* const fragment = libraries_.language().findFragment(name);
    if (interface == nullptr || fragment == nullptr || fragment->getNumProfiles() == 0) return;
    const IShaderFragmentProfile& profile = *fragment->getProfile(0);
    const ITextParameterList& code = *profile.getFunctionParameters();
    const bool isInline = profile.getMode() == EShaderFragmentProfileMode::Inline;
    std::vector<WString> inputs;
    for (std::size_t i = 0; i < code.getNumInputs(); ++i) inputs.push_back(code.getInputName(i));
    comparePorts(interface->member(L"inputs"), inputs, isInline, "input", name);
    // An expression has one output of any name.
    if (isInline) return;
    std::vector<WString> outputs;
    for (std::size_t i = 0; i < code.getNumOutputs(); ++i) outputs.push_back(code.getOutputName(i));
    comparePorts(interface->member(L"outputs"), outputs, false, "output", name);
  }

  /// Ports take the place of the code's in their order; other types, and more or fewer ports, are errors of
  /// the job.
  void comparePorts(const IObjectDataNode* list, const std::vector<WString>& ports, bool isInline,
                    const std::string& kind, const WString& fragment) {
    if (list == nullptr || list->size() != ports.size()) return;
    for (std::size_t i = 0; i < ports.size(); ++i) {
      const IObjectDataNode* const port = list->element(i);
      if (port == nullptr || port->member(L"name") == nullptr) continue;
      const WString& name = port->member(L"name")->asString();
      const WString expected = isInline ? placeholderName(ports[i]) : ports[i];
      if (name != expected) {
        lints_.at(Finding::interfaceMismatch, file_, port->member(L"name")->position(),
                  kind + " " + std::to_string(i + 1) + " of the code of fragment " + inTicks(fragment) +
                      " is called " + inTicks(expected) + ", not " + inTicks(name));
      }
    }
  }

  /// "{{a}}"
  static WString placeholderName(const WString& placeholder) {
    constexpr std::size_t kBraces = 2;
    const bool isWhole = placeholder.size() > 2 * kBraces;
    return isWhole ? placeholder.substr(kBraces, placeholder.size() - 2 * kBraces) : placeholder;
  }

  const LoadedLibraries& libraries_;
  const IObjectDataNode& root_;
  const std::string& file_;
  LintList& lints_;
  Set<std::wstring_view> graphInputs_;
  Set<std::wstring_view> reached_;
  bool knowsOutputs_ = false;
};

}  // namespace

void lintGraphObject(const LoadedLibraries& libraries, const IObjectDataNode& root, const std::string& file,
                     LintList& lints) {
  GraphLints(libraries, root, file, lints).run();
}

}  // namespace TolmSDK::Graphics::sfg::host
