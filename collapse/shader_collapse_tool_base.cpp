#include "sfg/shader_collapse_tool_base.h"

#include <utility>

#include "fragments/ports.h"
#include "sfg/shader_fragment_profile_function.h"
#include "sfg/size_limit.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// Level of detail of pre-process and post-process fragments.
constexpr float kProcessLOD = 100.0f;

constexpr const wchar_t* kOutputsDoNotFit =
    L"sfgError : the graph outputs should be the same as the output fragment inputs!";

/// How a value of one type is written where another is expected.
struct TypeConversion {
  TypeID from;
  TypeID to;
  const wchar_t* prefix;
  const wchar_t* suffix;
};

constexpr TypeConversion kTypeConversions[] = {
    {TypeID_fvec3, TypeID_fvec4, L"float4(", L", 1.f)"},
    {TypeID_float, TypeID_fvec4, L"float4((float3)", L", 1.f)"},
};

/// The entry of the table; one that changes nothing for equal types; null when there is no conversion.
const TypeConversion* findConversion(const TypeID& from, const TypeID& to) {
  static constexpr TypeConversion kNone{TypeID_nil, TypeID_nil, L"", L""};
  for (const TypeConversion& conversion : kTypeConversions) {
    if (conversion.from == from && conversion.to == to) return &conversion;
  }
  return from == to ? &kNone : nullptr;
}

const WString& conversionTypeText(const AParameter& parameter) {
  return parameter.getType() == TypeID_struct ? parameter.getStructName() : parameter.getType().toString();
}

RefPtr<AParameter> renamed(const AParameter& parameter, const WString& name) {
  auto copy = makeRef<AParameter>(parameter.getType(), name);
  copy->setStructName(parameter.getStructName());
  return copy;
}

/// The text of the fragment that adapts the outputs of one side to the inputs of the other.
struct ConversionFunction {
  RefPtr<AShaderFragment> fragment = makeRef<AShaderFragment>(L"OutputTypeConversion");
  WString inputs;
  WString outputs;
  WString body;

  void addInput(const AParameter& source, std::size_t index) {
    const WString name = formatted(L"input_value_%Iu", index);
    fragment->addInput(renamed(source, name).get());
    if (index != 0) inputs += L", ";
    inputs += conversionTypeText(source) + L" " + name;
  }
  void addOutput(const AParameter& target, std::size_t index, const TypeConversion& conversion) {
    const WString name = formatted(L"output_value_%Iu", index);
    fragment->addOutput(renamed(target, name).get());
    outputs += L", out " + conversionTypeText(target) + L" " + name;
    body += formatted(L"    %s = %sinput_value_%Iu%s;\n", name, conversion.prefix, index, conversion.suffix);
  }
};

}  // namespace

AShaderCollapseToolBase::AShaderCollapseToolBase()
    : collapseFunctionName_(L"CollapsedFunction"), collapseProfileName_(L"default") {}

AShaderCollapseToolBase::~AShaderCollapseToolBase() = default;

bool AShaderCollapseToolBase::prepareCollapse(const IShaderFragmentGraph* graph,
                                              const IShadingEnvironment* environment,
                                              const IShaderOptions* options,
                                              const ILanguageTraits* language) {
  if (result_) throw Exception(L"Cannot collapse twice!");
  if (graph == nullptr || environment == nullptr || options == nullptr || language == nullptr) return false;
  if (language->getLanguageString() != options->getLanguage()) return false;
  language_ = language;
  environment_ = environment;
  graph_ = graph;
  options_ = options;

  result_ = context_.getResult();
  resultProfile_ = context_.getResultProfile();
  resultProfile_->setFunctionName(collapseFunctionName_);
  resultProfile_->setProfilename(collapseProfileName_);

  for (std::size_t i = 0; i < graph->getNumPreprocessFragment(); ++i) {
    const IShaderFragment* fragment = graph->getPreprocessFragment(i);
    if (fragment != nullptr && fragment->getNumInputs() != 0) {
      throw Exception(L"sfgError : pre-process fragment should has no inputs!");
    }
  }
  checkGraphOutputs(graph, environment);
  checkLightText();

  context_.initialize(language_, environment_, dynamic_cast<const AShaderFragmentGraph*>(graph), options_);
  for (std::size_t i = 0; i < graph->getNumPreprocessFragment(); ++i) {
    addProcessInstance(preprocessInstances_, graph->getPreprocessFragment(i));
  }
  for (std::size_t i = 0; i < graph->getNumPostprocessFragments(); ++i) {
    addProcessInstance(postprocessInstances_, graph->getPostprocessFragment(i));
  }
  context_.registerCustomStateVariables(graph);
  writeProcessRequirements(preprocessInstances_);
  writeProcessRequirements(postprocessInstances_);
  writePreprocessFragments();
  return true;
}

/// Refuses at once what could only fail after much work.
void AShaderCollapseToolBase::checkLightText() const {
  const std::size_t lights = environment_->getNumLights();
  if (shortestLightText_ != 0 && lights > kMaximumTextLength / shortestLightText_) {
    checkTextLength(kMaximumTextLength + 1);
  }
}

void AShaderCollapseToolBase::addProcessInstance(ProcessInstances& instances,
                                                 const IShaderFragment* fragment) {
  instances.push_back(std::make_unique<FragmentInstance>());
  instances.back()->createNoInputUniform(language_.get(), dynamic_cast<const AShaderFragment*>(fragment));
}

void AShaderCollapseToolBase::checkGraphOutputs(const IShaderFragmentGraph* graph,
                                                const IShadingEnvironment* environment) {
  if (graph->getNumOutputs() == 0) throw Exception(L"sfgError : the graph should has at least one output!");
  const IShaderFragment* output = environment->getOutputFragment();
  const std::size_t postprocesses = graph->getNumPostprocessFragments();
  if (postprocesses != 0) {
    const IShaderFragment* first = graph->getPostprocessFragment(0);
    const IShaderFragment* last = graph->getPostprocessFragment(postprocesses - 1);
    const bool fits = first != nullptr && (canConnect(graph, first) || addOutputTypeConversion(graph, first));
    if (!fits || (output != nullptr && !canConnect(last, output))) throw Exception(kOutputsDoNotFit);
  } else if (output != nullptr) {
    const bool fits = isFragmentCompatible(graph, output) || addOutputTypeConversion(graph, output);
    if (!fits) throw Exception(kOutputsDoNotFit);
  }
}

bool AShaderCollapseToolBase::addOutputTypeConversion(const IShaderFragmentGraph* source,
                                                      const IShaderFragment* target) {
  if (target->getNumInputs() > source->getNumOutputs()) return false;
  ConversionFunction function;
  function.fragment->key() = L"OutputTypeConversion";
  for (std::size_t i = 0; i < source->getNumOutputs(); ++i) {
    const AParameter* output = source->getOutput(i);
    if (output == nullptr) return false;
    function.addInput(*output, i);
    if (i >= target->getNumInputs()) continue;
    const AParameter* input = target->getInput(i);
    if (input == nullptr) return false;
    const TypeConversion* conversion = findConversion(output->getType(), input->getType());
    if (conversion == nullptr) return false;
    function.addOutput(*input, i, *conversion);
  }

  auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->languages().insert(language_->getLanguageString());
  profile->setLOD(kProcessLOD);
  profile->setProfilename(L"default");
  profile->setFunctionPrototype(L"void OutputTypeConversion(" + function.inputs + function.outputs + L")");
  profile->setFunctionBody(function.body);
  function.fragment->registerProfile(profile.get());
  addProcessInstance(postprocessInstances_, function.fragment.get());
  return true;
}

void AShaderCollapseToolBase::writeProcessRequirements(const ProcessInstances& instances) {
  for (const auto& instance : instances) {
    instance->setActiveProfile(context_, L"default", kProcessLOD);
    instance->writeRequirements(context_);
  }
}

void AShaderCollapseToolBase::writePostprocessRequirements() {
  writeProcessRequirements(postprocessInstances_);
}

void AShaderCollapseToolBase::writePreprocessFragments() {
  for (std::size_t i = 0; i < preprocessInstances_.size(); ++i) {
    preprocessInstances_[i]->setActiveProfile(context_, L"default", kProcessLOD);
    Array<WString> names;
    declarePreprocessOutputs(graph_->getPreprocessFragment(i), names);
    preprocessInstances_[i]->evaluate(context_, names);
  }
}

void AShaderCollapseToolBase::declarePreprocessOutputs(const IShaderFragment* fragment,
                                                       Array<WString>& names) {
  if (fragment == nullptr) return;
  for (std::size_t i = 0; i < fragment->getNumOutputs(); ++i) {
    const AParameter* output = fragment->getOutput(i);
    if (output == nullptr || !output->getSemantic().empty()) continue;
    const WString value = language_->getValueText(AValue(output->getType()));
    context_.writeCodef(L"    %s %s", typeText(*language_, *output), output->getName());
    if (value.empty()) {
      context_.writeCode(L";\n");
    } else {
      context_.writeCodef(L" = %s;\n", value);
    }
    names.push_back(output->getName());
  }
}

void AShaderCollapseToolBase::writeGraphOutputs(const Array<WString>& values,
                                                Array<const AParameter*>& outputParameters,
                                                Array<WString>& outputNames) {
  if (!postprocessInstances_.empty()) {
    outputNames = writePostprocessFragments(values);
    const IShaderFragment* last = postprocessInstances_.back()->getShaderFragment();
    for (std::size_t i = 0; last != nullptr && i < last->getNumOutputs(); ++i) {
      outputParameters.push_back(last->getOutput(i));
    }
    return;
  }
  outputNames.clear();
  for (std::size_t i = 0; i < values.size(); ++i) {
    outputNames.push_back(formatted(L"output_%Iu", i));
    context_.writeCodef(L"    %s = %s;\n", outputNames.back(), values[i]);
  }
  for (std::size_t i = 0; i < graph_->getNumOutputs(); ++i) outputParameters.push_back(graph_->getOutput(i));
}

/// Writes the post-process fragments as a chain, each one's outputs the next one's inputs. Answers the
/// variables of the last one, which are not declared here.
Array<WString> AShaderCollapseToolBase::writePostprocessFragments(Array<WString> values) {
  for (std::size_t k = 0; k < postprocessInstances_.size(); ++k) {
    FragmentInstance& instance = *postprocessInstances_[k];
    const bool isLast = k + 1 == postprocessInstances_.size();
    Array<WString> names = declarePostprocessOutputs(instance.getShaderFragment(), k, isLast);
    if (!instance.writeDefinition(context_)) {
      throw Exception(L"sfgError: failed to write postprocess fragment definition.");
    }
    WString call;
    instance.writeFunctionCall(call, context_, values, names);
    context_.writeCode(call);
    values = std::move(names);
  }
  return values;
}

Array<WString> AShaderCollapseToolBase::declarePostprocessOutputs(const IShaderFragment* fragment,
                                                                  std::size_t position, bool isLast) {
  Array<WString> names;
  const bool hasProfile = fragment != nullptr && fragment->getNumProfiles() != 0;
  const ITextParameterList* parameters =
      hasProfile ? fragment->getProfile(0)->getFunctionParameters() : nullptr;
  for (std::size_t i = 0; parameters != nullptr && i < parameters->getNumOutputs(); ++i) {
    names.push_back(formatted(L"output_%s%Iu_%Iu", parameters->getOutputName(i), position, i));
    if (!isLast) context_.writeCodef(L"    %s %s;\n", parameters->getOutputType(i), names.back());
  }
  return names;
}

}  // namespace TolmSDK::Graphics::sfg
