#include "sfg/shader_collapse_tool_light_loop.h"

#include <algorithm>
#include <string_view>

#include "fragments/pointer_set.h"
#include "fragments/ports.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {

namespace {

constexpr std::wstring_view kSeparator =
    L"    // ------------------------------------------------------------ \n";
constexpr std::wstring_view kLightLine = L"    // Light %d \n";
constexpr std::wstring_view kDefaultLightLine = L"    // default light \n";
/// Two separators and a line with a number of one digit, which is shorter than its conversion by one.
constexpr std::size_t kShortestLightText = 2 * kSeparator.size() + kLightLine.size() - 1;

}  // namespace

AShaderCollapseToolLightLoop::AShaderCollapseToolLightLoop() { shortestLightText_ = kShortestLightText; }
AShaderCollapseToolLightLoop::~AShaderCollapseToolLightLoop() = default;

IShaderFragment* AShaderCollapseToolLightLoop::collapse(const IShaderFragmentGraph* graph,
                                                        const IShadingEnvironment* environment,
                                                        const IShaderOptions* options,
                                                        const ILanguageTraits* language) {
  setCollpaseFunctionName(L"AccumulatedLitSurface");
  setCollapseProfileName(L"default");
  if (!prepareCollapse(graph, environment, options, language)) return nullptr;
  writeLightRequirements();
  writePostprocessRequirements();

  // The light of the last round stays active for all that follows, so that the calls written for it are not
  // written again.
  writeLightLoop();
  Array<WString> values;
  if (!evaluateOutputs(values)) return nullptr;
  resultProfile_->stateVariables().erase(StateVariable_currentLight);
  for (std::size_t i = 0; i < graph->getNumUniforms(); ++i) result_->addUniform(graph->getUniform(i));
  if (!addOutputs(values)) return nullptr;
  result_->getShaderInputTypes() = context_.getShaderInputTypes();
  context_.giveBackRoom();
  return result_.get();
}

/// The name of the profile that the options want for a light.
WString AShaderCollapseToolLightLoop::lightProfileName(const IShaderFragment* light) const {
  const IShaderFragmentProfile* profile = light != nullptr ? options_->getLightProfile(light) : nullptr;
  return profile != nullptr ? profile->getProfilename() : L"default";
}

void AShaderCollapseToolLightLoop::setSurfaceProfileOfLight(const IShaderFragment* light,
                                                            const WString& profileName) {
  if (light == nullptr || !context_.setActiveSurfaceProfile(profileName)) {
    throw Exception(L"Failed to set light profile %s.", profileName);
  }
}

void AShaderCollapseToolLightLoop::writeLightRequirements() {
  for (std::size_t i = 0; i < environment_->getNumLights(); ++i) {
    const IShaderFragment* light = environment_->getLight(i);
    const WString profileName = lightProfileName(light);
    setSurfaceProfileOfLight(light, profileName);
    FragmentInstance& instance = context_.getLightFragmentInstance(light);
    if (!instance.trySetActiveProfile(context_, profileName, context_.getLightLOD())) {
      throw Exception(L"Failed to set light profile %s.", profileName);
    }
    if (!instance.writeRequirements(context_)) {
      throw Exception(L"Failed to write light requirements of light %s.", light->instanceName());
    }
  }
}

void AShaderCollapseToolLightLoop::writeLightLoop() {
  const Array<FragmentInstance*> litInstances = collectLitFragments();
  for (FragmentInstance* instance : litInstances) instance->declareAccumulateOutputs(context_);
  const std::size_t lights = environment_->getNumLights();
  if (lights == 0) evaluateDefaultLight(litInstances);
  for (std::size_t i = 0; i < lights; ++i) evaluateLight(i, litInstances);
}

/// The first instances that read the current light on the ways up from the outputs, in the order in which
/// they were made.
Array<FragmentInstance*> AShaderCollapseToolLightLoop::collectLitFragments() {
  Array<FragmentInstance*> found;
  Array<const IShaderFragment*> open;
  PointerSet visited;
  const auto visit = [&](const Array<ShaderFragmentConnection>& connections) {
    for (const ShaderFragmentConnection& connection : connections) {
      if (connection.fragment != nullptr && visited.insert(connection.fragment)) {
        open.push_back(connection.fragment);
      }
    }
  };
  visit(graph_->getOutputConnections());
  while (!open.empty()) {
    const IShaderFragment* fragment = open.back();
    open.pop_back();
    FragmentInstance& instance = context_.getFragmentInstance(fragment);
    if (instance.requiresCurrentLight()) {
      found.push_back(&instance);
    } else {
      visit(fragment->getInputConnections());
    }
  }
  std::sort(found.begin(), found.end(), [](const FragmentInstance* a, const FragmentInstance* b) {
    return a->getNumber() < b->getNumber();
  });
  // Two fragments of one name are one instance.
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

void AShaderCollapseToolLightLoop::evaluateDefaultLight(const Array<FragmentInstance*>& litInstances) {
  writeLightHeading(kDefaultLightLine);
  context_.setActiveLightIndex(0);
  if (!context_.setActiveSurfaceProfile(L"default")) throw Exception(L"Failed to set default profile.");
  for (FragmentInstance* instance : litInstances) instance->accmulateEvaluate(context_);
}

void AShaderCollapseToolLightLoop::evaluateLight(std::size_t index,
                                                 const Array<FragmentInstance*>& litInstances) {
  context_.setActiveLightIndex(index);
  writeLightHeading(formatted(kLightLine, index));
  const IShaderFragment* light = environment_->getLight(index);
  const WString profileName = lightProfileName(light);
  setSurfaceProfileOfLight(light, profileName);
  if (context_.requiresCurrentLight()) setCurrentLight(*light, profileName);
  for (FragmentInstance* instance : litInstances) instance->accmulateEvaluate(context_);
}

/// Evaluates the light: its first output is what the surface code knows as the current light.
void AShaderCollapseToolLightLoop::setCurrentLight(const IShaderFragment& light, const WString& profileName) {
  FragmentInstance& instance = context_.getLightFragmentInstance(&light);
  if (!instance.trySetActiveProfile(context_, profileName, context_.getLightLOD())) {
    throw Exception(L"Failed to set light profile of light %s: %s.", light.instanceName(), profileName);
  }
  if (!instance.safeEvaluate(context_) || !instance.hasActiveProfileOutput(0)) {
    throw Exception(L"Failed to evaluate light profile of light %s: %s.", light.instanceName(), profileName);
  }
  WString name;
  instance.appendActiveProfileOutput(name, 0);
  context_.setCurrentLight(profileName, name);
}

void AShaderCollapseToolLightLoop::writeLightHeading(std::wstring_view line) {
  context_.writeCode(kSeparator);
  context_.writeCode(line);
  context_.writeCode(kSeparator);
}

/// One value per graph output; false when a fragment cannot be evaluated.
bool AShaderCollapseToolLightLoop::evaluateOutputs(Array<WString>& values) {
  for (const ShaderFragmentConnection& connection : graph_->getOutputConnections()) {
    if (connection.fragment == nullptr) throw Exception(L"Graph output must have connection!");
    FragmentInstance& instance = context_.getFragmentInstance(connection.fragment);
    if (!instance.safeEvaluate(context_) || !instance.hasActiveProfileOutput(connection.index)) return false;
    values.push_back(instance.getActiveProfileOutput(connection.index));
  }
  return true;
}

/// Assigns the outputs and makes them those of the function and of the result; false when they do not fit
/// each other.
bool AShaderCollapseToolLightLoop::addOutputs(const Array<WString>& values) {
  Array<const AParameter*> outputParameters;
  Array<WString> outputNames;
  writeGraphOutputs(values, outputParameters, outputNames);
  if (outputParameters.size() > outputNames.size()) return false;
  for (std::size_t k = 0; k < outputParameters.size(); ++k) {
    const AParameter* parameter = outputParameters[k];
    if (parameter == nullptr) return false;
    result_->addOutput(parameter);
    resultProfile_->getFunctionParameters()->addOutput(typeText(*language_, *parameter), outputNames[k]);
  }
  return true;
}

}  // namespace TolmSDK::Graphics::sfg
