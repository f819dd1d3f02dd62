#include "sfg/shader_collapse_context.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <optional>
#include <utility>

#include "collapse/arena.h"
#include "collapse/evaluator.h"
#include "collapse/expected_result.h"
#include "collapse/instance_table.h"
#include "collapse/visited_fragments.h"
#include "collapse/written_definitions.h"
#include "sfg/code_snippet.h"
#include "sfg/scoped_text.h"
#include "sfg/size_limit.h"
#include "text/scan.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// Whether a text holds blanks and comments only.
bool isBlankCode(const WString& code) {
  const ScopedText text(code);
  std::size_t pos = 0;
  scan::skipBlanksAndComments(text, pos);
  return pos >= text.length;
}

}  // namespace

/// Addresses come again, numbers do not.
std::uint64_t AShaderCollapseContext::nextContextNumber() noexcept {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

AShaderCollapseContext::AShaderCollapseContext()
    : result_(makeRef<AShaderFragment>()), resultProfile_(makeRef<AShaderFragmentProfileFunction>()),
      arena_(std::make_unique<Arena>()), fragmentInstances_(std::make_unique<InstanceTable>(*arena_)),
      lightFragmentInstances_(std::make_unique<InstanceTable>(*arena_)), number_(nextContextNumber()),
      writtenDefinitions_(std::make_unique<WrittenDefinitions>()),
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
  fragmentInstances_->reserve(graph_->getNumFragments());
  for (const ShaderFragmentConnection& connection : graph_->getOutputConnections()) {
    if (connection.fragment != nullptr && !createInstances(connection.fragment, visited)) return false;
  }
  return true;
}

void AShaderCollapseContext::reserveResult() {
  ExpectedResult expected;
  for (std::size_t i = 0; i < fragmentInstances_->size(); ++i)
    expected.add((*fragmentInstances_)[i].instance);
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
    std::size_t nextInput;
  };
  Array<Visit> path;
  if (visited.insert(fragment)) path.push_back({fragment, 0});
  while (!path.empty()) {
    Visit& visit = path.back();
    const Array<ShaderFragmentConnection>& connections = visit.fragment->getInputConnections();
    if (visit.nextInput < connections.size()) {
      const IShaderFragment* source = connections[visit.nextInput++].fragment;
      if (source != nullptr && visited.insert(source)) path.push_back({source, 0});
    } else {
      FragmentInstance* instance = createInstance(visit.fragment);
      if (instance == nullptr) return false;
      visited.setInstance(visit.fragment, instance);
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
  FragmentInstance& instance = ours != nullptr ? fragmentInstances_->getByLastingName(ours->instanceName())
                                               : fragmentInstances_->get(fragment->instanceName());
  admit(instance);
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

FragmentInstance& AShaderCollapseContext::getInstance(InstanceTable& instances, const WString& name) {
  FragmentInstance& instance = instances.get(name);
  admit(instance);
  return instance;
}

bool AShaderCollapseContext::admit(const FragmentInstance& instance) {
  if (instance.context_ == 0) {
    instance.context_ = number_;
    instance.number_ = ++instancesMade_;
  }
  assert(instance.context_ == number_ && "an instance is evaluated in one context only");
  return instance.context_ == number_;
}

FragmentInstance& AShaderCollapseContext::getFragmentInstance(const IShaderFragment* fragment) {
  return getInstance(*fragmentInstances_, fragment->instanceName());
}

FragmentInstance& AShaderCollapseContext::getLightFragmentInstance(const IShaderFragment* fragment) {
  return getInstance(*lightFragmentInstances_, fragment->instanceName());
}

std::size_t AShaderCollapseContext::countSurfaceInstances() const noexcept {
  return fragmentInstances_->size();
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
  if (activeLightIndex_ != index) evaluator_->startLight();
  activeLightIndex_ = index;
}

bool AShaderCollapseContext::requiresCurrentLight() const {
  for (std::size_t i = 0; i < fragmentInstances_->size(); ++i) {
    if ((*fragmentInstances_)[i].instance.requiresCurrentLight()) return true;
  }
  return false;
}

/// The instances go in the order of their names, up to the first that fails. They are not sorted for that:
/// which one that is, is known before any of them changes.
bool AShaderCollapseContext::setActiveSurfaceProfile(const WString& profileName) {
  const float lod = getSurfaceLOD();
  const std::uint32_t request = profileRequest(profileName, lod);
  struct Change {
    InstanceTable::Entry* entry;
    const IShaderFragmentProfile* profile;
  };
  Array<Change> changes;
  std::optional<std::wstring_view> firstFailing;  // of the names
  for (std::size_t i = 0; i < fragmentInstances_->size(); ++i) {
    InstanceTable::Entry& entry = (*fragmentInstances_)[i];
    FragmentInstance& instance = entry.instance;
    if (instance.hasAnswered(request)) continue;
    const IShaderFragmentProfile* profile = instance.findProfile(*this, profileName, lod);
    if (profile == nullptr) {
      firstFailing = firstFailing ? std::min<std::wstring_view>(*firstFailing, *entry.name) : *entry.name;
    } else if (instance.hasActiveProfile(profile)) {
      instance.profileRequest_ = request;
    } else {
      changes.push_back({&entry, profile});
    }
  }

  for (const auto& [entry, profile] : changes) {
    if (firstFailing && *entry->name >= *firstFailing) continue;
    entry->instance.changeProfile(*this, profile);
    entry->instance.profileRequest_ = request;
  }
  return !firstFailing;
}

std::uint32_t AShaderCollapseContext::profileRequest(const WString& profileName, float lod) {
  const UString& language = getLanguageString();
  if (profileRequests_ == 0 || requestedLOD_ != lod || requestedLanguage_ != language ||
      requestedProfile_ != profileName) {
    requestedProfile_ = profileName;
    requestedLanguage_ = language;
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
  WString& name = writtenDefinitions_->soughtText();
  profileInstance.appendFunctionName(name);
  KeywordReplacePattern renames;
  KeywordReplacePattern* const own = profileInstance.findKeywordReplacePattern();
  const WString& rename = accumulator_.appendDefinition(resultProfile_->predefines(), instance, pattern,
                                                        own != nullptr ? *own : renames, name);
  if (!renames.empty()) profileInstance.getKeywordReplacePattern() = std::move(renames);
  if (rename != name) profileInstance.setFunctionName(rename);
}

/// Gives the function the name under which another instance wrote it; false when none did.
bool AShaderCollapseContext::takeWrittenDefinition(FragmentProfileInstance& instance) {
  WString& key = writtenDefinitions_->soughtText();
  instance.appendDefinitionKey(key);
  const WrittenDefinitions::Definition& found =
      writtenDefinitions_->get(instance.getProfile(), getLanguage(), key);
  if (!found.isWritten) return false;
  if (!found.rename.empty()) instance.setFunctionName(found.rename);
  return true;
}

/// Of the definition that was to be taken last.
void AShaderCollapseContext::rememberWrittenDefinition(const FragmentProfileInstance& instance) {
  WString& name = writtenDefinitions_->soughtText();
  instance.appendFunctionName(name);
  WrittenDefinitions::Definition& written = writtenDefinitions_->last();
  const std::wstring_view key = written.key;
  const bool isRenamed = !key.starts_with(name) || (key.size() > name.size() && key[name.size()] != L' ');
  if (isRenamed) written.rename = name;
  written.isWritten = true;
}

}  // namespace TolmSDK::Graphics::sfg
