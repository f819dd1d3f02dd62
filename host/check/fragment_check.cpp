#include "host/check/fragment_check.h"

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/origins/fragment_code.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

// Names of documents that nobody wrote.

bool isMadeUp(const Diagnostic& diagnostic) {
  return diagnostic.file == kMadeUpGraph || diagnostic.file == kMadeUpLights || diagnostic.file.empty();
}

bool hasExpression(const IShaderFragment& fragment) {
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i)
    if (fragment.getProfile(i)->getMode() == EShaderFragmentProfileMode::Inline) return true;
  return false;
}

std::string textUnder(const IObjectDataNode& object, std::wstring_view key) {
  const IObjectDataNode* const value = object.member(key);
  return value != nullptr ? toUtf8(value->asString()) : std::string();
}

/// False when one of them has no type.
bool readPorts(const IObjectDataNode* list, std::vector<Parameter>& ports, const ILanguageTraits& language) {
  for (std::size_t i = 0; list != nullptr && i < list->size(); ++i) {
    const IObjectDataNode* const object = list->element(i);
    if (object == nullptr) return false;
    Parameter port;
    port.name = textUnder(*object, L"name");
    port.type = textUnder(*object, L"type");
    port.structName = textUnder(*object, L"struct");
    if (port.name.empty() || !makeRef<AParameter>()->load(object)) return false;
    if (language.getTypeID(fromUtf8(port.type)) == TypeID_nil && port.structName.empty()) return false;
    ports.push_back(std::move(port));
  }
  return true;
}

/// The checks of one fragment.
class FragmentCheck {
public:
  FragmentCheck(const CheckTools& tools, const ProbeMaker& probes, const IShaderFragment& fragment,
                const FragmentFiles::Entry& entry)
      : tools_(tools), probes_(probes), fragment_(fragment), entry_(entry),
        libraries_(*tools.libraries->loaded()) {}

  void check(std::size_t index, const std::optional<NodeInterface>& ports) {
    const ProfilePlan plan = probes_.plan(fragment_, index, ports);
    if (plan.areGuesses) return guess(plan, index);
    for (const Probe& probe : plan.probes) add(place(run(probe), index, probe));
    if (plan.probes.empty() && plan.mayBeUsed) tellNotChecked(index, plan.whyNone);
  }

  std::vector<FindingGroup> take() { return std::move(groups_); }

private:
  std::vector<FindingGroup> run(const Probe& probe) const {
    const bool isLit = !probe.environment.lights.empty();
    return findInJob(tools_, Document::from(probe.graph, kMadeUpGraph), probe.options,
                     isLit ? std::optional(Document::from(probe.environment, kMadeUpLights)) : std::nullopt);
  }

  void guess(const ProfilePlan& plan, std::size_t index) {
    std::optional<std::vector<FindingGroup>> first;
    for (const Probe& probe : plan.probes) {
      std::vector<FindingGroup> found = place(run(probe), index, probe);
      if (!hasErrors(found)) return add(std::move(found));
      if (!first) first = std::move(found);
    }
    if (first) add(std::move(*first));
  }

  void tellNotChecked(std::size_t index, const std::string& why) {
    Diagnostic note = diagnose(Finding::notCompiled, Severity::note, entry_.file, placeOf(index),
                               "a profile of " + inTicks(fragment_.key()) + " was not compiled: " + why);
    groups_.push_back({std::move(note), {}});
  }

  /// Of the profile's object, or of its code.
  TextPosition placeOf(std::size_t index, bool isOfCode = false) {
    FragmentCodes codes(libraries_);
    const FragmentCode* const code = codes.find(fragment_.key(), index, CodePart::implementation);
    if (code == nullptr) return entry_.position;
    return isOfCode ? code->placeOf(0) : code->profile;
  }

  /// Errors that are told of what the check puts around the profile are the profile's; other findings there
  /// are nobody's.
  std::vector<FindingGroup> place(std::vector<FindingGroup> found, std::size_t index, const Probe& probe) {
    std::vector<FindingGroup> placed;
    for (FindingGroup& group : found) {
      Diagnostic& finding = group.finding;
      if (isMadeUp(finding)) {
        if (finding.severity != Severity::error) continue;
        const TextPosition position =
            placeOf(index, finding.identifier == identifierOf(Finding::compileError));
        finding.text = sourceNames(std::move(finding.text), probe);
        finding.file = entry_.file;
        finding.line = position.line;
        finding.column = position.column;
      }
      std::erase_if(group.notes, isMadeUp);
      placed.push_back(std::move(group));
    }
    return placed;
  }

  void add(std::vector<FindingGroup> groups) {
    std::move(groups.begin(), groups.end(), std::back_inserter(groups_));
  }

  const CheckTools& tools_;
  const ProbeMaker& probes_;
  const IShaderFragment& fragment_;
  const FragmentFiles::Entry& entry_;
  const LoadedLibraries& libraries_;
  std::vector<FindingGroup> groups_;
};

}  // namespace

ExpressionPorts readExpressionPorts(const LoadedLibraries& libraries) {
  ExpressionPorts all;
  std::map<std::string, RefPtr<IObjectDataNode>> documents;
  for (const auto& [name, entry] : libraries.files().entries()) {
    const IShaderFragment* const fragment = libraries.language().findFragment(name);
    const std::string* const text = libraries.texts().find(entry.file);
    if (fragment == nullptr || text == nullptr || !hasExpression(*fragment)) continue;
    RefPtr<IObjectDataNode>& document = documents[entry.file];
    if (!document) {
      document = createJsonNode();
      document->loadFromText(fromUtf8(*text));
    }
    const IObjectDataNode* const object = document->member(name);
    const IObjectDataNode* const interface = object != nullptr ? object->member(L"interface") : nullptr;
    if (interface == nullptr) continue;
    NodeInterface ports;
    if (readPorts(interface->member(L"inputs"), ports.inputs, libraries.language()) &&
        readPorts(interface->member(L"outputs"), ports.outputs, libraries.language()))
      all.emplace(name, std::move(ports));
  }
  return all;
}

std::vector<FindingGroup> checkFragment(const CheckTools& tools, const ProbeMaker& probes,
                                        const ExpressionPorts& expressionPorts, const WString& name) {
  const LoadedLibraries& libraries = *tools.libraries->loaded();
  const IShaderFragment* const fragment = libraries.language().findFragment(name);
  const FragmentFiles::Entry* const entry = libraries.files().find(name);
  if (fragment == nullptr || entry == nullptr) return {};
  const auto ports = expressionPorts.find(name);
  if (libraries.faults().find(name) != libraries.faults().end()) return {};  // told as a problem of the file
  FragmentCheck check(tools, probes, *fragment, *entry);
  for (std::size_t i = 0; i < fragment->getNumProfiles(); ++i)
    check.check(i, ports != expressionPorts.end() ? std::optional(ports->second) : std::nullopt);
  return check.take();
}

std::size_t countProfiles(const LoadedLibraries& libraries, const WString& name) {
  const IShaderFragment* const fragment = libraries.language().findFragment(name);
  std::size_t count = 0;
  for (std::size_t i = 0; fragment != nullptr && i < fragment->getNumProfiles(); ++i)
    if (fragment->getProfile(i)->languages().contains(libraries.language().getLanguageString())) ++count;
  return count;
}

}  // namespace TolmSDK::Graphics::sfg::host
