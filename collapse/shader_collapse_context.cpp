#include "sfg/shader_collapse_context.h"

#include <utility>

#include "collapse/evaluator.h"
#include "sfg/code_snippet.h"
#include "sfg/scoped_text.h"
#include "sfg/size_limit.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// Whether a text holds blanks and comments only.
bool isBlankCode(const WString& code) {
  const ScopedText text(code);
  std::size_t pos = 0;
  for (std::size_t before = kNotFound; before != pos;) {
    before = pos;
    skipWhitespaces(text, pos);
  }
  return pos >= text.length;
}

}  // namespace

AShaderCollapseContext::AShaderCollapseContext()
    : result_(makeRef<AShaderFragment>()), resultProfile_(makeRef<AShaderFragmentProfileFunction>()),
      evaluator_(std::make_unique<FragmentEvaluator>(*this)) {
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

  for (const ShaderFragmentConnection& connection : graph_->getOutputConnections()) {
    if (connection.fragment != nullptr && !createInstances(connection.fragment)) return false;
  }
  const std::size_t lights = environment_ ? environment_->getNumLights() : 0;
  for (std::size_t i = 0; i < lights; ++i) {
    if (!createLightInstance(environment_->getLight(i))) return false;
  }
  return true;
}

/// Creates the instance of a fragment and, before it, those of everything that feeds it, but for what was
/// visited.
bool AShaderCollapseContext::createInstances(const IShaderFragment* fragment) {
  struct Visit {
    const IShaderFragment* fragment;
    std::size_t nextInput;
  };
  Array<Visit> path;
  if (markVisited(fragment)) path.push_back({fragment, 0});
  while (!path.empty()) {
    Visit& visit = path.back();
    const Array<ShaderFragmentConnection>& connections = visit.fragment->getInputConnections();
    if (visit.nextInput < connections.size()) {
      const IShaderFragment* source = connections[visit.nextInput++].fragment;
      if (source != nullptr && markVisited(source)) path.push_back({source, 0});
    } else {
      if (!createInstance(visit.fragment)) return false;
      path.pop_back();
    }
  }
  return true;
}

/// False when it is marked already.
bool AShaderCollapseContext::markVisited(const IShaderFragment* fragment) {
  return !std::exchange(knownFragments_[fragment].isVisited, true);
}

bool AShaderCollapseContext::createInstance(const IShaderFragment* fragment) {
  FragmentInstance& instance = getFragmentInstance(fragment);
  return instance.isInitialized() ||
         instance.create(*this, getLanguage(), dynamic_cast<const AShaderFragment*>(fragment));
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

FragmentInstance& AShaderCollapseContext::findOrMakeInstance(InstanceMap& instances, const WString& name) {
  const auto [entry, isNew] = instances.try_emplace(name);
  if (isNew) entry->second.creationNumber_ = ++instancesMade_;
  return entry->second;
}

FragmentInstance& AShaderCollapseContext::getFragmentInstance(const IShaderFragment* fragment) {
  InstanceMap::value_type*& entry = knownFragments_[fragment].entry;
  // The name decides: a fragment may be gone and another one stand at its address.
  if (entry == nullptr || entry->first != fragment->instanceName()) {
    findOrMakeInstance(fragmentInstances_, fragment->instanceName());
    entry = &*fragmentInstances_.find(fragment->instanceName());
  }
  return entry->second;
}

FragmentInstance& AShaderCollapseContext::getLightFragmentInstance(const IShaderFragment* fragment) {
  return findOrMakeInstance(lightFragmentInstances_, fragment->instanceName());
}

bool AShaderCollapseContext::getFragmentKeyExist(const WString& key) const {
  return fragmentKeys_.contains(key);
}

void AShaderCollapseContext::setFragmentKeyExist(const WString& key) { fragmentKeys_.insert(key); }

void AShaderCollapseContext::allocateNewShaderInput(const WString& type) {
  shaderInputTypes_.push_back(type);
}

// Lights and profiles.

void AShaderCollapseContext::setActiveLightIndex(std::size_t index) noexcept {
  if (activeLightIndex_ != index) evaluator_->startEpoch();
  activeLightIndex_ = index;
}

bool AShaderCollapseContext::requiresCurrentLight() const {
  for (const auto& [name, instance] : fragmentInstances_) {
    if (instance.requiresCurrentLight()) return true;
  }
  return false;
}

bool AShaderCollapseContext::setActiveSurfaceProfile(const WString& profileName) {
  for (auto& [name, instance] : fragmentInstances_) {
    if (!instance.activateBestProfile(*this, profileName, getSurfaceLOD())) return false;
  }
  return true;
}

std::uint32_t AShaderCollapseContext::profileRequest(const WString& profileName, float lod) {
  if (profileRequests_ == 0 || requestedLOD_ != lod || requestedProfile_ != profileName) {
    requestedProfile_ = profileName;
    requestedLOD_ = lod;
    ++profileRequests_;
  }
  return profileRequests_;
}

// Writing.

bool AShaderCollapseContext::writeCode(const wchar_t* text) {
  return writeCode(text != nullptr ? std::wstring_view(text) : std::wstring_view());
}

bool AShaderCollapseContext::writeCode(std::wstring_view text) {
  WString& body = resultProfile_->getFunctionBody();
  checkTextLength(body.size() + text.size());
  body += text;
  return true;
}

bool AShaderCollapseContext::writeDeclareVariable(const wchar_t* type, const wchar_t* name) {
  return writeCodef(L"    %s %s;\n", type, name);
}

void AShaderCollapseContext::writePredefine(const WString& text) {
  if (isBlankCode(text)) return;
  auto snippet = std::make_unique<CodeSnippet>();
  snippet->addCode(text);
  snippet->parse();
  if (snippet->getNumSymbols() == 0) return;
  CodeSnippetInstance instance;
  instance.construct(snippet.release(), {}, true);
  KeywordReplacePattern renames;
  writePredefine(instance, {}, renames);
}

void AShaderCollapseContext::writePredefine(const CodeSnippetInstance& instance,
                                            const KeywordReplacePattern& pattern,
                                            KeywordReplacePattern& localPattern) {
  accumulator_.append(resultProfile_->predefines(), instance, pattern, localPattern);
}

void AShaderCollapseContext::writeDefinition(const CodeSnippetInstance& instance,
                                             const KeywordReplacePattern& pattern,
                                             FragmentProfileInstance& profileInstance) {
  accumulator_.append(resultProfile_->predefines(), instance, pattern,
                      profileInstance.getKeywordReplacePattern());
  profileInstance.setFunctionName(accumulator_.getRename(profileInstance.getFunctionName()));
}

/// Gives the function the name under which another instance wrote it; false when none did.
bool AShaderCollapseContext::takeWrittenDefinition(FragmentProfileInstance& instance,
                                                   const WString& key) const {
  const auto found = writtenDefinitions_.find(std::pair(instance.getProfile(), std::wstring_view(key)));
  if (found == writtenDefinitions_.end()) return false;
  if (!found->second.empty()) instance.setFunctionName(found->second);
  return true;
}

void AShaderCollapseContext::rememberWrittenDefinition(const FragmentProfileInstance& instance, WString key) {
  const WString& name = instance.getFunctionName();
  const bool isRenamed = !key.starts_with(name) || (key.size() > name.size() && key[name.size()] != L' ');
  writtenDefinitions_.try_emplace({instance.getProfile(), std::move(key)}, isRenamed ? name : WString());
}

}  // namespace TolmSDK::Graphics::sfg
