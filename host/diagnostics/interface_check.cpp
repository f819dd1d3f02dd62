#include "host/diagnostics/interface_check.h"

#include <algorithm>

#include "host/diagnostics/warning_list.h"
#include "host/diagnostics/wire_types.h"
#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

class InterfaceCheck {
public:
  InterfaceCheck(const CollapseJob& job, Severity severity) : job_(job), severity_(severity) {}

  std::vector<MismatchedPort> run() {
    for (std::size_t i = 0; i < job_.document().getNumNodes(); ++i) {
      const GraphNode& node = job_.document().node(i);
      if (node.inputPlaces().empty() && node.outputPlaces().empty()) continue;
      if (const IShaderFragment* const code = codeOf(node.fragmentName())) check(node, *code);
    }
    return std::move(found_);
  }

private:
  /// The fragment with the ports of its code; null for an expression and an unknown one.
  const IShaderFragment* codeOf(const WString& name) {
    const auto [entry, isNew] = codes_.try_emplace(name);
    const LanguageDx11& language = job_.libraries().language();
    const IShaderFragment* const fragment = language.findFragment(name);
    const bool isFunction = fragment != nullptr && fragment->getNumProfiles() != 0 &&
                            fragment->getProfile(0)->getMode() != EShaderFragmentProfileMode::Inline;
    if (isNew && isFunction) entry->second = cloneWithPorts(*fragment, WString(), language);
    return entry->second.get();
  }

  void check(const GraphNode& node, const IShaderFragment& code) {
    for (std::size_t i = 0; i < std::min(node.getNumInputs(), code.getNumInputs()); ++i) {
      const AParameter& port = *node.getInput(i);
      if (fitOf(port, *code.getInput(i), false) != Fit::fits && !isInputOfAProfile(code, i, port))
        tell(node, "input ", port, *code.getInput(i), node.inputPlaces()[i]);
    }
    for (std::size_t i = 0; i < std::min(node.getNumOutputs(), code.getNumOutputs()); ++i) {
      const AParameter& port = *node.getOutput(i);
      const bool isSame = fitOf(port, *code.getOutput(i), true) == Fit::fits;
      if (!isSame && !isOutputOfAProfile(code, i, port))
        tell(node, "output ", port, *code.getOutput(i), node.outputPlaces()[i]);
    }
  }

  static WString typeOf(const AParameter& port) {
    return port.getType() == TypeID_struct ? port.getStructName() : port.getType().toString();
  }

  /// Profiles for MetaSL code are called with inputs of their own.
  static bool isInputOfAProfile(const IShaderFragment& code, std::size_t input, const AParameter& port) {
    for (std::size_t i = 1; i < code.getNumProfiles(); ++i) {
      const ITextParameterList& list = *code.getProfile(i)->getFunctionParameters();
      if (input < list.getNumInputs() && list.getInputName(input) == port.getName() &&
          list.getInputType(input) == typeOf(port))
        return true;
    }
    return false;
  }

  /// Profiles for other lights may have outputs of other types.
  static bool isOutputOfAProfile(const IShaderFragment& code, std::size_t output, const AParameter& port) {
    for (std::size_t i = 1; i < code.getNumProfiles(); ++i) {
      const ITextParameterList& list = *code.getProfile(i)->getFunctionParameters();
      if (output < list.getNumOutputs() && list.getOutputType(output) == typeOf(port)) return true;
    }
    return false;
  }

  void tell(const GraphNode& node, const std::string& role, const AParameter& port, const AParameter& code,
            TextPosition place) {
    const std::string renamed =
        port.getName() == code.getName() ? std::string() : ", as " + inTicks(code.getName());
    found_.push_back({&port, diagnose(Finding::interfaceMismatch, severity_, job_.document().file(), place,
                                      role + inTicks(port.getName()) + " of " + named(node) + " is of type " +
                                          typeText(port) + " here, but of type " + typeText(code) + renamed +
                                          " in the code of fragment " + inTicks(node.fragmentName()))});
  }

  const CollapseJob& job_;
  Severity severity_;
  Map<WString, RefPtr<IShaderFragment>> codes_;
  std::vector<MismatchedPort> found_;
};

}  // namespace

std::vector<MismatchedPort> findMismatchedPorts(const CollapseJob& job, Severity severity) {
  return InterfaceCheck(job, severity).run();
}

}  // namespace TolmSDK::Graphics::sfg::host
