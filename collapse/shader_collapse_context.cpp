#include "sfg/shader_collapse_context.h"

#include <utility>

#include "collapse/arena.h"
#include "collapse/expected_result.h"
#include "collapse/fragment_walk.h"
#include "collapse/instance_registry.h"
#include "collapse/result_writer.h"
#include "collapse/visited_fragments.h"

namespace TolmSDK::Graphics::sfg {

AShaderCollapseContext::AShaderCollapseContext()
    : result_(makeRef<AShaderFragment>()), resultProfile_(makeRef<AShaderFragmentProfileFunction>()),
      arena_(std::make_unique<Arena>()), instances_(std::make_unique<InstanceRegistry>(*arena_)),
      writer_(std::make_unique<ResultWriter>(*resultProfile_)),
      walk_(std::make_unique<FragmentWalk>(*this, instances_->profiles())) {
  resultProfile_->setProfilename(L"default");
}

AShaderCollapseContext::~AShaderCollapseContext() = default;

bool AShaderCollapseContext::initialize(const RefPtr<ILanguageTraits const>& language,
                                        const RefPtr<IShadingEnvironment const>& environment,
                                        const RefPtr<AShaderFragmentGraph const>& graph,
                                        const RefPtr<IShaderOptions const>& options) {
  setLanguage(language.get());
  if (language) resultProfile_->languages().insert(language->getLanguageString());
  result_->registerProfile(resultProfile_.get());
  environment_ = environment;
  graph_ = graph;
  options_ = options;
  if (!graph_ || !language) return false;

  if (!createSurfaceInstances()) return false;
  const std::size_t lights = environment_ ? environment_->getNumLights() : 0;
  for (std::size_t i = 0; i < lights; ++i) {
    if (!createLightInstance(environment_->getLight(i))) return false;
  }
  reserveResult();
  return true;
}

bool AShaderCollapseContext::createSurfaceInstances() {
  VisitedFragments visited;
  visited.reserve(graph_->getNumFragments());
  instances_->reserveSurfaces(graph_->getNumFragments());
  for (const ShaderFragmentConnection& connection : graph_->getOutputConnections()) {
    if (connection.fragment != nullptr && !createInstances(connection.fragment, visited)) return false;
  }
  return true;
}

void AShaderCollapseContext::reserveResult() {
  ExpectedResult expected;
  instances_->forEachSurface([&](const FragmentInstance& instance) { expected.add(instance); });
  resultProfile_->getFunctionBody().reserve(expected.bodyLength());
  resultProfile_->predefines().reserve(expected.definitionsLength());
  result_->reserveUniforms(expected.numUniforms());
}

/// The result is kept long after the collapse. Code that many profiles share is expected from each of them.
void AShaderCollapseContext::giveBackRoom() {
  for (WString* text : {&resultProfile_->getFunctionBody(), &resultProfile_->predefines()})
    if (text->capacity() / 2 > text->size()) text->shrink_to_fit();
}

/// Creates the instance of a fragment and, before it, those of everything that feeds it, but for what was
/// visited.
bool AShaderCollapseContext::createInstances(const IShaderFragment* fragment, VisitedFragments& visited) {
  struct Visit {
    const IShaderFragment* fragment;
    std::size_t number;
    std::size_t nextInput;
  };
  Array<Visit> path;
  const auto enter = [&](const IShaderFragment* entered) {
    const std::size_t number = visited.insert(entered);
    if (number != kNotFound) path.push_back({entered, number, 0});
  };
  enter(fragment);
  while (!path.empty()) {
    Visit& visit = path.back();
    const Array<ShaderFragmentConnection>& connections = visit.fragment->getInputConnections();
    if (visit.nextInput < connections.size()) {
      const IShaderFragment* source = connections[visit.nextInput++].fragment;
      if (source != nullptr) enter(source);
    } else {
      FragmentInstance* instance = createInstance(visit.fragment);
      if (instance == nullptr) return false;
      visited.setInstance(visit.number, instance);
      instance->setSources(visited);
      path.pop_back();
    }
  }
  return true;
}

/// Null when it cannot be created.
FragmentInstance* AShaderCollapseContext::createInstance(const IShaderFragment* fragment) {
  const auto* ours = dynamic_cast<const AShaderFragment*>(fragment);
  // An instance keeps its fragment, and so the name.
  FragmentInstance& instance = ours != nullptr ? instances_->getSurfaceByLastingName(ours->instanceName())
                                               : instances_->getSurface(fragment->instanceName());
  if (instance.isInitialized() || instance.create(*this, getLanguage(), ours)) return &instance;
  return nullptr;
}

bool AShaderCollapseContext::createLightInstance(const IShaderFragment* light) {
  if (light == nullptr) return false;
  return getLightFragmentInstance(light).create(*this, getLanguage(),
                                                dynamic_cast<const AShaderFragment*>(light));
}

const UString& AShaderCollapseContext::getLanguageString() const {
  static const UString none;
  return getLanguage() != nullptr ? getLanguage()->getLanguageString() : none;
}

float AShaderCollapseContext::getSurfaceLOD() const { return options_ ? options_->getSurfaceLOD() : 100.0f; }

float AShaderCollapseContext::getLightLOD() const { return options_ ? options_->getLightLOD() : 100.0f; }

bool AShaderCollapseContext::getConstValue(WString& value, const AParameter* parameter) const {
  if (parameter == nullptr || !parameter->isConstant()) return false;
  AValue constant;
  if (!options_ || getLanguage() == nullptr || !options_->getConstValue(constant, parameter)) return false;
  value = getLanguage()->getValueText(constant);
  return true;
}

// Instances.

FragmentInstance& AShaderCollapseContext::getFragmentInstance(const IShaderFragment* fragment) {
  return instances_->getSurface(fragment->instanceName());
}

FragmentInstance& AShaderCollapseContext::getLightFragmentInstance(const IShaderFragment* fragment) {
  return instances_->getLight(fragment->instanceName());
}

bool AShaderCollapseContext::admit(const FragmentInstance& instance) { return instances_->admit(instance); }

bool AShaderCollapseContext::getFragmentKeyExist(const WString& key) const {
  return fragmentKeys_.contains(key);
}

void AShaderCollapseContext::setFragmentKeyExist(const WString& key) { fragmentKeys_.insert(key); }

void AShaderCollapseContext::allocateNewShaderInput(const WString& type) {
  shaderInputTypes_.push_back(type);
}

// Lights and profiles.

void AShaderCollapseContext::setActiveLightIndex(std::size_t index) noexcept {
  if (activeLightIndex_ != index) walk_->startLight();
  activeLightIndex_ = index;
}

bool AShaderCollapseContext::requiresCurrentLight() const {
  return instances_->profiles().requiresCurrentLight();
}

bool AShaderCollapseContext::setActiveSurfaceProfile(const WString& profileName) {
  using Answer = SurfaceProfiles::Answer;
  const Answer answer = instances_->profiles().choose(profileName, getLanguageString(), getSurfaceLOD());
  if (answer == Answer::similar) walk_->startChoice();
  if (answer == Answer::other || answer == Answer::failed) walk_->startEpoch();
  return answer != Answer::failed;
}

// Writing.

bool AShaderCollapseContext::writeCode(const wchar_t* text) {
  return writeCode(text != nullptr ? std::wstring_view(text) : std::wstring_view());
}

bool AShaderCollapseContext::writeCode(std::wstring_view text) {
  writer_->writeCode(text);
  return true;
}

bool AShaderCollapseContext::writeDeclareVariable(const wchar_t* type, const wchar_t* name) {
  return writeCodef(L"    %s %s;\n", type, name);
}

ICollapseObserver::~ICollapseObserver() = default;

void AShaderCollapseContext::setObserver(ICollapseObserver* observer) {
  observer_ = observer;
  if (observer != nullptr) writer_->keepWrittenSymbols();
}

std::span<const WrittenSymbol> AShaderCollapseContext::writtenSymbols() const noexcept {
  return writer_->writtenSymbols();
}

void AShaderCollapseContext::writePredefine(const WString& text) { writer_->writePredefine(text); }

void AShaderCollapseContext::writePredefine(const CodeSnippetInstance& instance,
                                            const KeywordReplacePattern& pattern,
                                            KeywordReplacePattern& localPattern) {
  writer_->writePredefine(instance, pattern, localPattern);
}

void AShaderCollapseContext::writeDefinition(const CodeSnippetInstance& instance,
                                             const KeywordReplacePattern& pattern,
                                             FragmentProfileInstance& profileInstance) {
  writer_->writeDefinition(instance, pattern, profileInstance);
}

bool AShaderCollapseContext::takeWrittenDefinition(FragmentProfileInstance& instance) {
  return writer_->takeWrittenDefinition(instance, getLanguage());
}

void AShaderCollapseContext::rememberWrittenDefinition(const FragmentProfileInstance& instance) {
  writer_->rememberWrittenDefinition(instance);
}

}  // namespace TolmSDK::Graphics::sfg
