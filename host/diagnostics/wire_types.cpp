#include "host/diagnostics/wire_types.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "host/diagnostics/interface_check.h"
#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "host/documents/type_names.h"
#include "host/shader/identifiers.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kInout = L"inout ";
constexpr std::size_t kMostSuggestions = 3;

bool isNumber(const TypeID& type) { return componentCount(type) != 0; }
std::size_t columns(const TypeID& type) { return type.word(1); }
std::size_t rows(const TypeID& type) { return type.word(2); }
bool isScalar(const TypeID& type) { return isNumber(type) && componentCount(type) == 1; }
bool isVector(const TypeID& type) { return isNumber(type) && rows(type) == 1 && columns(type) > 1; }

bool isSame(const AParameter& a, const AParameter& b) {
  return a.getType() == b.getType() &&
         (a.getType() != TypeID_struct || a.getStructName() == b.getStructName());
}

/// The type's text in code.
WString codeText(const AParameter& parameter) {
  return parameter.getType() == TypeID_struct ? parameter.getStructName() : parameter.getType().toString();
}

/// The fragments of a library by what they make of their one input, and by what they make of the first of
/// two.
class Converters {
public:
  explicit Converters(const LoadedLibraries& libraries) {
    for (const auto& [name, entry] : libraries.files().entries()) {
      const IShaderFragment* const fragment = libraries.language().findFragment(name);
      if (fragment == nullptr || fragment->getNumProfiles() == 0) continue;
      const ITextParameterList& list = *fragment->getProfile(0)->getFunctionParameters();
      if (list.getNumInputs() == 0 || list.getNumOutputs() == 0) continue;
      const bool isAlone = list.getNumInputs() == 1;
      if (!isAlone && (list.getNumInputs() != 2 || list.getNumOutputs() != 1)) continue;
      auto& converters = isAlone ? alone_ : besideAnother_;
      const std::pair<WString, WString> types(list.getInputType(0), list.getOutputType(0));
      if (types.first == types.second) continue;
      std::vector<WString>& names = converters[types];
      if (names.size() < kMostSuggestions) names.push_back(name);
    }
  }

  /// "; a fragment that converts is `x`", or nothing.
  std::string hint(const WString& from, const WString& to) const {
    std::vector<WString> names;
    for (const auto* const converters : {&alone_, &besideAnother_}) {
      const auto found = converters->find({from, to});
      if (found != converters->end()) names.insert(names.end(), found->second.begin(), found->second.end());
    }
    if (names.empty()) return std::string();
    names.resize(std::min(names.size(), kMostSuggestions));
    std::string text = names.size() == 1 ? "; a fragment that converts is " : "; fragments that convert are ";
    for (const WString& name : names) text.append(&name == &names.front() ? "" : ", ").append(inTicks(name));
    return text;
  }

private:
  using ByTypes = std::map<std::pair<WString, WString>, std::vector<WString>>;
  ByTypes alone_;
  ByTypes besideAnother_;
};

/// A wire with what stands at its ends.
struct WireEnds {
  TextPosition position;
  const AParameter* source = nullptr;
  const AParameter* taker = nullptr;
  std::string sourceName;  ///< "output `result` of node `noise`"
  std::string takerName;
  bool isWritten = false;
};

class TypeCheck {
public:
  explicit TypeCheck(const CollapseJob& job) : job_(job), document_(job.document()) {}

  /// Calls `visit(ends)` for each wire whose ends are known.
  template <class Visit>
  void forEachWire(Visit&& visit) {
    for (std::size_t i = 0; i < document_.getNumNodes(); ++i) {
      const GraphNode& node = document_.node(i);
      for (std::size_t k = 0; k < node.wires().size(); ++k) {
        const GraphNode::Wire& wire = node.wires()[k];
        if (!node.isWired(k) || k >= node.getNumInputs()) continue;
        WireEnds ends = endsFrom(wire);
        if (ends.source == nullptr) continue;
        ends.taker = node.getInput(k);
        ends.takerName = "input " + inTicks(ends.taker->getName()) + " of node " + inTicks(node.name());
        ends.isWritten = isInout(node, k);
        visit(ends);
      }
    }
    for (std::size_t i = 0; i < document_.outputWires().size(); ++i) {
      WireEnds ends = endsFrom(document_.outputWires()[i]);
      if (ends.source == nullptr) continue;
      ends.taker = document_.getOutput(i);
      ends.takerName = "graph output " + inTicks(ends.taker->getName());
      visit(ends);
    }
  }

  Diagnostic describeError(const WireEnds& ends, Severity severity) {
    std::string text = between(ends, "does not fit");
    if (ends.isWritten && fitOf(*ends.source, *ends.taker, false) != Fit::not_) {
      text += "; it is `inout`, and takes its own type only";
    }
    if (!converters_) converters_.emplace(job_.libraries());
    text += converters_->hint(codeText(*ends.source), codeText(*ends.taker));
    return diagnose(Finding::wireType, severity, document_.file(), ends.position, text);
  }

  Diagnostic describeDropped(const WireEnds& ends) const {
    const std::size_t dropped = columns(ends.source->getType()) - columns(ends.taker->getType());
    return diagnose(Finding::droppedComponents, Severity::warning, document_.file(), ends.position,
                    between(ends, "is cut to") + ": " +
                        (dropped == 1 ? "its last component is"
                                      : "its last " + std::to_string(dropped) + " components are") +
                        " dropped");
  }

private:
  WireEnds endsFrom(const GraphNode::Wire& wire) const {
    WireEnds ends;
    ends.position = wire.position;
    if (wire.source != nullptr && wire.output < wire.source->getNumOutputs()) {
      ends.source = wire.source->getOutput(wire.output);
      ends.sourceName =
          "output " + inTicks(ends.source->getName()) + " of node " + inTicks(wire.source->name());
    } else if (wire.source == nullptr && wire.graphInput < document_.getNumInputs()) {
      ends.source = document_.getInput(wire.graphInput);
      ends.sourceName = "graph input " + inTicks(ends.source->getName());
    }
    return ends;
  }

  static std::string between(const WireEnds& ends, const std::string& what) {
    return ends.sourceName + " of type " + typeText(*ends.source) + " " + what + " " + ends.takerName +
           " of type " + typeText(*ends.taker);
  }

  bool isInout(const GraphNode& node, std::size_t input) {
    const auto [known, isNew] = inouts_.try_emplace(node.fragmentName());
    if (isNew) {
      const IShaderFragment* const fragment = job_.libraries().language().findFragment(node.fragmentName());
      for (std::size_t i = 0; fragment != nullptr && i < fragment->getNumProfiles(); ++i) {
        const ITextParameterList& list = *fragment->getProfile(i)->getFunctionParameters();
        for (std::size_t k = 0; k < list.getNumInputs(); ++k) {
          if (list.getInputType(k).starts_with(kInout)) known->second.insert(k);
        }
      }
    }
    return known->second.contains(input);
  }

  const CollapseJob& job_;
  const GraphDocument& document_;
  std::optional<Converters> converters_;
  Map<WString, Set<std::size_t>> inouts_;  ///< by fragment
};

/// Types that HLSL has, besides those of the language.
bool isShaderType(std::wstring_view type) {
  for (const std::wstring_view start :
       {L"half", L"double", L"min1", L"Texture", L"Sampler", L"RW", L"Buffer", L"StructuredBuffer",
        L"ByteAddressBuffer", L"matrix", L"vector", L"dword", L"float", L"int", L"uint", L"bool"}) {
    if (type.starts_with(start)) return true;
  }
  return false;
}

/// Finds types of parameters that nothing declares.
class DeclarationCheck {
public:
  explicit DeclarationCheck(const CollapseJob& job) : libraries_(job.libraries()) {
    const GraphDocument& document = job.document();
    for (std::size_t i = 0; i < document.getNumNodes(); ++i) add(document.node(i).fragmentName());
    for (const auto* chain : {&document.preprocess(), &document.postprocess()}) {
      for (const GraphDocument::ChainFragment& link : *chain) add(link.name);
    }
    for (const ShadingEnvironment::Light& light : job.environment().lights()) add(light.fragment->key());
    if (const IShaderFragment* const output = job.environment().getOutputFragment()) add(output->key());
  }

  std::vector<Diagnostic> run(Severity severity) {
    std::vector<Diagnostic> errors;
    for (const auto& [name, entry] : used_) {
      Set<WString> told;
      for (const FragmentFiles::TypedPlace& place : entry->structures) {
        if (isShaderType(place.type) || isDeclared(place.type)) continue;
        // Any other name in code may be a structure of the host's.
        const std::string type = toUtf8(place.type);
        const std::string meant = meantName(type);
        if ((meant.empty() && !isUniform(name, place.parameter)) || !told.insert(place.type).second) continue;
        told_.insert(place.type);
        errors.push_back(diagnose(Finding::unknownPortType, severity, entry->file, place.position,
                                  "fragment " + inTicks(name) + ": the type " + inTicks(type) + " of " +
                                      inTicks(place.parameter) + " is none of the language, and nothing " +
                                      "declares it as a structure" + didYouMean(meant),
                                  meant));
      }
    }
    return errors;
  }

  /// Whether the parameter's type was told.
  bool isTold(const AParameter& parameter) const {
    return parameter.getType() == TypeID_struct && told_.contains(parameter.getStructName());
  }

private:
  void add(const WString& name) {
    const FragmentFiles::Entry* const entry = libraries_.files().find(name);
    if (entry != nullptr && libraries_.language().findFragment(name) != nullptr) used_.emplace(name, entry);
  }

  bool isUniform(const WString& fragment, const WString& name) const {
    const IShaderFragment& found = *libraries_.language().findFragment(fragment);
    for (std::size_t i = 0; i < found.getNumUniforms(); ++i)
      if (found.getUniform(i)->getName() == name) return true;
    return false;
  }

  /// A type of the language, or a structure whose name is near.
  std::string meantName(const std::string& type) const {
    if (const std::string_view meant = meantType(type); !meant.empty()) return std::string(meant);
    return std::string(nearestName(type, structures_));
  }

  /// In include files and in predefines of any fragment: texts of one fragment may use what others declare.
  bool isDeclared(const WString& type) {
    if (!declared_) {
      declared_.emplace();
      for (const auto& [name, file] : libraries_.includeFiles().files()) {
        addWords(libraries_.includes().getIncludeContent(name.c_str()));
      }
      for (const auto& [name, entry] : libraries_.files().entries()) {
        const IShaderFragment* const fragment = libraries_.language().findFragment(name);
        for (std::size_t i = 0; fragment != nullptr && i < fragment->getNumProfiles(); ++i) {
          addWords(fragment->getProfile(i)->predefines());
        }
      }
    }
    return declared_->contains(type);
  }

  void addWords(const WString& code) {
    bool isStructure = false;
    forEachIdentifier(code, [&](std::wstring_view word) {
      declared_->insert(word);
      if (isStructure) structures_.insert(toUtf8(word));
      isStructure = word == L"struct";
    });
  }

  const LoadedLibraries& libraries_;
  Map<WString, const FragmentFiles::Entry*> used_;
  std::optional<Set<std::wstring_view>> declared_;
  Set<std::string> structures_;
  Set<WString> told_;
};

}  // namespace

Fit fitOf(const AParameter& source, const AParameter& taker, bool isWritten) {
  if (isSame(source, taker)) return Fit::fits;
  const TypeID& from = source.getType();
  const TypeID& to = taker.getType();
  if (isWritten || !isNumber(from) || !isNumber(to)) return Fit::not_;
  if (columns(from) == columns(to) && rows(from) == rows(to)) return Fit::fits;
  if (isScalar(from) && isVector(to)) return Fit::fits;
  return isVector(from) && isVector(to) && columns(from) > columns(to) ? Fit::drops : Fit::not_;
}

std::vector<Diagnostic> findTypeErrors(const CollapseJob& job, Severity severity) {
  DeclarationCheck declarations(job);
  std::vector<Diagnostic> errors = declarations.run(severity);
  Set<const AParameter*> mismatched;
  for (MismatchedPort& found : findMismatchedPorts(job, severity)) {
    mismatched.insert(found.port);
    errors.push_back(std::move(found.told));
  }
  const auto isTold = [&](const AParameter& port) {
    return declarations.isTold(port) || mismatched.contains(&port);
  };
  TypeCheck check(job);
  check.forEachWire([&](const WireEnds& ends) {
    // A type that is told itself fits nothing.
    if (isTold(*ends.source) || isTold(*ends.taker)) return;
    if (fitOf(*ends.source, *ends.taker, ends.isWritten) == Fit::not_)
      errors.push_back(check.describeError(ends, severity));
  });
  return errors;
}

std::vector<Diagnostic> findDroppedComponents(const CollapseJob& job) {
  std::vector<Diagnostic> warnings;
  TypeCheck check(job);
  check.forEachWire([&](const WireEnds& ends) {
    if (fitOf(*ends.source, *ends.taker, ends.isWritten) == Fit::drops)
      warnings.push_back(check.describeDropped(ends));
  });
  return warnings;
}

}  // namespace TolmSDK::Graphics::sfg::host
