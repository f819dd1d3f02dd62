#include "sfg/shader_fragment_profile_metasl.h"

#include <string_view>

#include "profiles/function_definition.h"
#include "profiles/light_blocks.h"
#include "profiles/shader_temporaries.h"
#include "sfg/fragment_profile_instance.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/size_limit.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {
namespace {

constexpr const wchar_t* kStateMapping[][2] = {
    {L"__object_to_ndc", L"sfg_matWorldViewProj"},  {L"__object_to_world", L"sfg_matWorld"},
    {L"__world_to_object", L"sfg_matWorldInverse"}, {L"__camera_to_world", L"sfg_matViewInverse"},
    {L"__world_to_camera", L"sfg_matView"},         {L"__orthographic", L"sfg_orthographic"},
};

constexpr std::wstring_view kDefaultLight = L"(float3 Pw, float3 Nw, out Light_iterator light)\n"
                                            L"{\n"
                                            L"    light.msl_point = float3(0, 0, 0);\n"
                                            L"    light.msl_direction = float3(1, 0, 0);\n"
                                            L"    light.msl_distance = 0;\n"
                                            L"    light.msl_dot_nl = 0;\n"
                                            L"    light.msl_contribution = float3(0, 0, 0);\n"
                                            L"    light.msl_raw_contribution = float3(0, 0, 0);\n"
                                            L"    light.msl_shadow = float3(0, 0, 0);\n"
                                            L"    light.msl_count = 1;\n"
                                            L"}\n";

std::size_t numLights(const AShaderCollapseContext& context) {
  const IShadingEnvironment* environment = context.getShadingEnvironment();
  return environment == nullptr ? 0 : environment->getNumLights();
}

/// Writes one lighting function per light of the environment.
class LightFunctions {
public:
  explicit LightFunctions(AShaderCollapseContext& context)
      : context_(context), profileName_(L"msl_light"), language_(context.getLanguageString()),
        lod_(context.getLightLOD()) {}

  void write() const {
    const std::size_t count = numLights(context_);
    // Nothing is written when the lights without a profile would fill the shader by themselves.
    std::size_t defaults = 0;
    for (std::size_t i = 0; i < count; ++i) {
      if (hasProfile(light(i))) continue;
      checkTextLength(++defaults * kDefaultLight.size());
    }
    for (std::size_t i = 0; i < count; ++i) {
      const IShaderFragment* fragment = light(i);
      if (hasProfile(fragment))
        writeOwn(fragment, sceneLightingName(i));
      else
        writeDefault(sceneLightingName(i));
    }
  }

private:
  const IShaderFragment* light(std::size_t index) const {
    return context_.getShadingEnvironment()->getLight(index);
  }

  bool hasProfile(const IShaderFragment* fragment) const {
    return fragment != nullptr && fragment->findBestProfile(profileName_, language_, lod_) != nullptr;
  }

  void writeOwn(const IShaderFragment* fragment, const WString& name) const {
    FragmentInstance& instance = context_.getLightFragmentInstance(fragment);
    bool written = instance.setActiveProfile(context_, profileName_, lod_);
    if (written) {
      instance.setOverrideFunctionName(name);
      written = instance.writeDefinition(context_);
    }
    if (!written) throw Exception(L"Failed to write light definition.");
  }

  void writeDefault(const WString& name) const {
    WString text(L"void ");
    text += name;
    text += kDefaultLight;
    context_.writePredefine(text);
  }

  AShaderCollapseContext& context_;
  WString profileName_;
  UString language_;
  float lod_;
};

}  // namespace

AShaderFragmentProfileMetaSL::AShaderFragmentProfileMetaSL()
    : AShaderFragmentProfileFunction(EShaderFragmentProfileMode::MetaSL) {}

AShaderFragmentProfileMetaSL::~AShaderFragmentProfileMetaSL() = default;

bool AShaderFragmentProfileMetaSL::load(const IObjectDataNode* node) {
  if (!AShaderFragmentProfileFunction::load(node)) return false;
  addMetaSLRequirements();
  return true;
}

void AShaderFragmentProfileMetaSL::addMetaSLRequirements() {
  for (const UString* variable :
       {&StateVariable_matWorld, &StateVariable_matWorldInverse, &StateVariable_matView,
        &StateVariable_matViewInverse, &StateVariable_matWorldViewProj, &StateVariable_orthographic,
        &StateVariable_mslState_origin, &StateVariable_mslState_position, &StateVariable_mslState_direction,
        &StateVariable_mslState_ray_length})
    stateVariables().insert(*variable);
  includes().insert(WString(L"sfg_msl_common.h"));
}

bool AShaderFragmentProfileMetaSL::writePredefines(CodeSnippetInstance& out, AShaderCollapseContext& context,
                                                   FragmentProfileInstance& instance) const {
  // The lighting functions come once per collapse, with whichever MetaSL profile is the first.
  const WString key(L"metaSL light defines");
  if (!context.getFragmentKeyExist(key)) {
    context.setFragmentKeyExist(key);
    LightFunctions(context).write();
  }

  KeywordReplacer replacer;
  replacer.addReplacePattern(instance.getUniformReplacePattern());
  replacer.addReplacePattern(instance.getShaderReplacePattern());
  CallerText text;
  appendWithCalls(text, replacer, predefines(), instance);
  expandLightBlocks(text, numLights(context));
  numberTemporaries(text);
  constructOwned(out, text.code, instance.getBuiltinFunctionValueInPredefine());

  // The definition that is written next renames the matrices; it clears these rules.
  for (const auto& [name, replacement] : kStateMapping)
    instance.getKeywordReplacePattern().addReplacePattern(WString(name), WString(replacement));
  return true;
}

bool AShaderFragmentProfileMetaSL::writeDefinition(CodeSnippetInstance& out, AShaderCollapseContext& context,
                                                   FragmentProfileInstance& instance) const {
  return FunctionDefinition(*this, context, instance)
      .writeExpanded(out, [&context](CallerText& text, std::size_t body) {
        expandLightBlocks(text, numLights(context), body);
      });
}

}  // namespace TolmSDK::Graphics::sfg
