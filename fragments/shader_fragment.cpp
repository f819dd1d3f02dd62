#include "sfg/shader_fragment.h"

#include <cmath>
#include <iostream>
#include <memory>
#include <utility>

#include "fragments/pointer_set.h"
#include "fragments/ports.h"
#include "fragments/profile_levels.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

/// The port that a parameter of a function prototype becomes.
RefPtr<AParameter const> makePort(const ILanguageTraits& traits, const WString& typeText,
                                  const WString& name) {
  constexpr std::wstring_view kInOut = L"inout ";
  const TypeID type = traits.getTypeID(typeText);
  if (type != TypeID_nil) return makeRef<AParameter>(type, name);
  return makeStructPort(typeText.starts_with(kInOut) ? typeText.substr(kInOut.size()) : typeText, name);
}

/// A list of profiles that is longer is not looked through.
constexpr std::size_t kShortList = 16;

WString profileKey(const WString& name, const UString& language) { return name + language.str(); }

}  // namespace

AShaderFragment::AShaderFragment() : AShaderFragment(WString()) {}
AShaderFragment::AShaderFragment(const WString& instanceName)
    : instanceName_(instanceName), hashString_(std::make_shared<const WString>()) {}
AShaderFragment::AShaderFragment(const AShaderFragment& original, const WString& instanceName)
    : profiles_(original.profiles_), inputConnections_(original.inputConnections_),
      instanceName_(instanceName), inputs_(original.inputs_), outputs_(original.outputs_),
      uniforms_(original.uniforms_), key_(original.key_), hashString_(original.hashString_),
      consolidatable_(original.consolidatable_) {}
AShaderFragment::~AShaderFragment() = default;

IShaderFragment* AShaderFragment::clone(const WString& instanceName) const {
  return new AShaderFragment(*this, instanceName);
}

void AShaderFragment::setOwnerGraph(IShaderFragmentGraph* graph) {
  ownerGraph_ = graph;
  if (graph != nullptr && !consolidatable_) graph->setNonConsolidatable();
}

void AShaderFragment::clear() {
  key_.clear();
  instanceName_.clear();
  profiles_.clear();
  inputConnections_.clear();
  inputs_.clear();
  outputs_.clear();
  uniforms_.clear();
}

// Profiles

AShaderFragment::ProfileTable::ProfileTable() = default;
AShaderFragment::ProfileTable::~ProfileTable() = default;

AShaderFragment::Profiles::Profiles() : table_(std::make_shared<ProfileTable>()) {}

AShaderFragment::Profiles::Profiles(const Profiles& other) : table_(other.table_) {
  if (!table_->isShared.load(std::memory_order_relaxed))
    table_->isShared.store(true, std::memory_order_relaxed);
  forEachPlace([](const IShaderFragmentProfile& profile) { profile.AddRef(); });
}

AShaderFragment::Profiles::~Profiles() {
  forEachPlace([](const IShaderFragmentProfile& profile) { profile.Release(); });
}

template <class Operation>
void AShaderFragment::Profiles::forEachPlace(Operation&& operation) const {
  for (const auto& [key, places] : table_->byNameAndLanguage)
    for (const IShaderFragmentProfile* profile : places) operation(*profile);
  for (const IShaderFragmentProfile* profile : table_->list) operation(*profile);
}

void AShaderFragment::Profiles::makeTableOwn() {
  // The number of those that hold the table now would not do: it does not tell that another thread's clone,
  // gone by now, has finished reading.
  if (!table_->isShared.load(std::memory_order_relaxed)) return;
  auto own = std::make_shared<ProfileTable>();
  own->byNameAndLanguage = table_->byNameAndLanguage;
  own->list = table_->list;
  own->indices = table_->indices;
  table_ = std::move(own);
}

void AShaderFragment::Profiles::addTo(Array<IShaderFragmentProfile*>& places,
                                      IShaderFragmentProfile& profile) {
  places.push_back(&profile);
  profile.AddRef();
}

void AShaderFragment::Profiles::add(IShaderFragmentProfile& profile) {
  makeTableOwn();
  for (const UString& language : std::as_const(profile).languages())
    addTo(table_->byNameAndLanguage[profileKey(profile.getProfilename(), language)], profile);
  addTo(table_->list, profile);
  noteIndices();
}

void AShaderFragment::Profiles::noteIndices() {
  const Array<IShaderFragmentProfile*>& list = table_->list;
  if (list.size() <= kShortList) return;
  if (!table_->levels) table_->levels = std::make_unique<ProfileLevels>();
  const std::size_t first = table_->indices.empty() ? 0 : list.size() - 1;
  for (std::size_t i = first; i < list.size(); ++i) table_->indices.try_emplace(list[i], i);
}

void AShaderFragment::Profiles::clear() {
  Profiles empty;
  table_.swap(empty.table_);
}

void AShaderFragment::registerProfile(IShaderFragmentProfile* profile) {
  if (profile == nullptr || profile->languages().empty()) return;
  profiles_.add(*profile);
}

const IShaderFragmentProfile* AShaderFragment::findFirstProfile(const UString& language) const {
  for (const IShaderFragmentProfile* profile : profiles_->list)
    if (profile->languages().contains(language)) return profile;
  return nullptr;
}

const IShaderFragmentProfile* AShaderFragment::findBestProfile(const WString& profileName,
                                                               const UString& language, float lod) const {
  const auto found = profiles_->byNameAndLanguage.find(ProfileKeyView{profileName, language.view()});
  if (found == profiles_->byNameAndLanguage.end() || found->second.empty()) return nullptr;
  const bool isLong = found->second.size() > kShortList;
  const IShaderFragmentProfile* best = isLong ? profiles_->levels->findBest(found->second, lod) : nullptr;
  if (best != nullptr) return best;
  float bestDistance = 0.0f;
  for (const IShaderFragmentProfile* profile : found->second) {
    const float distance = std::abs(profile->getLOD() - lod);
    if (best != nullptr && !(distance < bestDistance)) continue;
    best = profile;
    bestDistance = distance;
  }
  return best;
}

std::size_t AShaderFragment::findProfileIndex(const IShaderFragmentProfile* profile) const {
  const auto known = profiles_->indices.find(profile);
  if (known != profiles_->indices.end()) return known->second;
  const Array<IShaderFragmentProfile*>& list = profiles_->list;
  const std::size_t looked = profiles_->indices.empty() ? list.size() : 0;
  for (std::size_t i = 0; i < looked; ++i)
    if (list[i] == profile) return i;
  return kNotFound;
}

void AShaderFragment::appendProfileKeys(Array<std::wstring_view>& keys) const {
  for (const auto& [key, places] : profiles_->byNameAndLanguage) keys.push_back(key);
}

// Ports

const WString& AShaderFragment::getInputType(const ILanguageTraits* traits, std::size_t index) const {
  return typeText(*traits, *inputs_[index]);
}

const WString& AShaderFragment::getOutputType(const ILanguageTraits* traits, std::size_t index) const {
  return typeText(*traits, *outputs_[index]);
}

void AShaderFragment::addInput(const AParameter* parameter) {
  inputs_.emplace_back(parameter);
  inputConnections_.emplace_back();
}

void AShaderFragment::addInput(const TypeID& type, const WString& name) {
  addInput(makeRef<AParameter>(type, name).get());
}

void AShaderFragment::addInput(const WString& structName, const WString& name) {
  addInput(makeStructPort(structName, name).get());
}

void AShaderFragment::addOutput(const AParameter* parameter) { outputs_.emplace_back(parameter); }

void AShaderFragment::addOutput(const TypeID& type, const WString& name) {
  addOutput(makeRef<AParameter>(type, name).get());
}

void AShaderFragment::addOutput(const WString& structName, const WString& name) {
  addOutput(makeStructPort(structName, name).get());
}

void AShaderFragment::addUniform(const AParameter* parameter) { uniforms_.emplace_back(parameter); }

std::size_t AShaderFragment::findInputIndex(const wchar_t* name) const { return findPort(inputs_, name); }
std::size_t AShaderFragment::findOutputIndex(const wchar_t* name) const { return findPort(outputs_, name); }

void AShaderFragment::generateAutoInputsOutputs(const ILanguageTraits* traits) {
  inputConnections_.clear();
  inputs_.clear();
  outputs_.clear();
  if (profiles_->list.empty()) return;
  const ITextParameterList& list = *std::as_const(*profiles_->list.front()).getFunctionParameters();
  for (std::size_t i = 0; i < list.getNumInputs(); ++i)
    addInput(makePort(*traits, list.getInputType(i), list.getInputName(i)).get());
  for (std::size_t i = 0; i < list.getNumOutputs(); ++i)
    addOutput(makePort(*traits, list.getOutputType(i), list.getOutputName(i)).get());
}

// Connections

bool AShaderFragment::setInputConnection(std::size_t input, IShaderFragment* source, std::size_t output) {
  if (source == nullptr || source->getOwnerGraph() != ownerGraph_) return false;
  if (output >= source->getNumOutputs() || input >= inputs_.size()) return false;
  inputConnections_[input] = {source, output};
  return true;
}

bool AShaderFragment::setInputConnection(std::size_t input, std::size_t graphInput) {
  if (ownerGraph_ == nullptr || graphInput >= ownerGraph_->getNumInputs() || input >= inputs_.size())
    return false;
  inputConnections_[input] = {nullptr, graphInput};
  return true;
}

bool AShaderFragment::setInputConnection(const wchar_t* input, IShaderFragment* source,
                                         const wchar_t* output) {
  if (source == nullptr) return false;
  return setInputConnection(findInputIndex(input), source, source->findOutputIndex(output));
}

bool AShaderFragment::setInputConnection(const wchar_t* input, const wchar_t* graphInput) {
  if (ownerGraph_ == nullptr) return false;
  return setInputConnection(findInputIndex(input), ownerGraph_->findInputIndex(graphInput));
}

void AShaderFragment::clearInputConnect(std::size_t input) {
  if (input < inputConnections_.size()) inputConnections_[input] = ShaderFragmentConnection();
}

void AShaderFragment::clearInputConnect(const wchar_t* input) { clearInputConnect(findInputIndex(input)); }

bool AShaderFragment::hasAncestor(IShaderFragment* candidate) const {
  // Every fragment is looked at once, however many ways lead to it.
  PointerSet seen;
  seen.insert(this);
  Array<const IShaderFragment*> pending{this};
  while (!pending.empty()) {
    const IShaderFragment* fragment = pending.back();
    pending.pop_back();
    for (const ShaderFragmentConnection& connection : fragment->getInputConnections()) {
      if (connection.fragment == nullptr) continue;
      if (connection.fragment == candidate) return true;
      if (seen.insert(connection.fragment)) pending.push_back(connection.fragment);
    }
  }
  return false;
}

// Compatibility

bool canConnect(const IShaderFragment* from, const IShaderFragment* to) {
  if (from == nullptr || to == nullptr || from->getNumOutputs() != to->getNumInputs()) return false;
  for (std::size_t i = 0, count = to->getNumInputs(); i < count; ++i) {
    const AParameter* output = from->getOutput(i);
    const AParameter* input = to->getInput(i);
    if (output == nullptr || input == nullptr ||
        !TypeID::isCompatibleType(output->getType(), input->getType()))
      return false;
  }
  return true;
}

bool canConnect(const IShaderFragmentGraph* graph, const IShaderFragment* fragment) {
  return graph->getNumOutputs() == fragment->getNumInputs() && isFragmentCompatible(graph, fragment);
}

void AShaderFragment::debugDump() {
  std::wcout << L"key: " << key_ << std::endl;
  if (!instanceName_.empty()) std::wcout << L"instance: " << instanceName_ << std::endl;
  for (const auto& uniform : uniforms_)
    std::wcout << L"uniform: " << ITypeTraits::getTypeName(uniform->getType()) << L' ' << uniform->getName()
               << std::endl;
  for (const auto& input : inputs_)
    std::wcout << L"input: " << input->getType().toString() << L' ' << input->getName() << std::endl;
  for (const auto& output : outputs_)
    std::wcout << L"output: " << output->getType().toString() << L' ' << output->getName() << std::endl;
  for (std::size_t i = 0; i < profiles_->list.size(); ++i) {
    std::wcout << L"profile " << itos(static_cast<long long>(i)) << L" : " << std::endl;
    // Only our own profiles can describe themselves.
    if (const auto* profile = dynamic_cast<const AShaderFragmentProfile*>(profiles_->list[i]))
      profile->debugDump(L"    ");
  }
}

}  // namespace TolmSDK::Graphics::sfg
