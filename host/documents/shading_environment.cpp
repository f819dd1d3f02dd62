#include "host/documents/shading_environment.h"

#include "host/documents/document_reader.h"
#include "host/documents/other_kind.h"
#include "host/documents/shader_names.h"
#include "sfg/host/limits.h"
#include "sfg/shader_fragment_profile_function.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

const IShaderFragment& requireFragment(const DocumentReader& reader, const IObjectDataNode& at,
                                       const WString& name, const ILanguageTraits& language,
                                       const WhyUnknown& whyUnknown) {
  const IShaderFragment* const fragment = language.findFragment(name);
  if (fragment == nullptr) reader.refuse(unknownFragment(whyUnknown, toUtf8(name)), at);
  return *fragment;
}

Light readLight(const DocumentReader& reader, const IObjectDataNode& object) {
  Light light;
  light.name = reader.optionalUtf8(object, L"name");
  // It becomes part of names in the code.
  if (!light.name.empty() && !nameFault("light_" + light.name, false).empty()) {
    reader.refuse(Finding::badName, *object.member(L"name"),
                  "the name of the light " + inTicks(light.name) +
                      " goes into names of the code, which hold letters, digits and `_` only");
  }
  light.fragment = reader.requiredUtf8(object, L"fragment");
  light.profile = reader.optionalUtf8(object, L"profile");
  return light;
}

/// `taken` is told of each light as soon as it is read, and where it stands.
template <class Taken>
Environment readEnvironment(DocumentReader& reader, const Taken& taken) {
  reader.checkKeys(environmentKeys());
  refuseOtherKind(reader, environmentKeys(), "an environment");
  Environment environment;
  if (const IObjectDataNode* lights = reader.optionalArray(reader.root(), L"lights")) {
    const std::size_t most = limits().lights;
    if (lights->size() > most) {
      reader.refuse(Finding::tooManyLights, *lights,
                    std::to_string(lights->size()) + " lights are too many; at most " + std::to_string(most) +
                        " can be written");
    }
    for (std::size_t i = 0; i < lights->size(); ++i) {
      const IObjectDataNode& object = reader.objectAt(*lights, i);
      taken(environment.lights.emplace_back(readLight(reader, object)), object);
    }
  }
  environment.output = reader.optionalUtf8(reader.root(), L"output");
  environment.image = reader.optionalUtf8(reader.root(), L"image");
  return environment;
}

/// With its fragment. `index`: among the lights.
ShadingEnvironment::Light shadingLight(const DocumentReader& reader, const Light& read,
                                       const IObjectDataNode& object, std::size_t index,
                                       const ILanguageTraits& language, const LibraryPorts& libraryPorts,
                                       const WhyUnknown& whyUnknown) {
  ShadingEnvironment::Light light;
  light.position = reader.positionOf(object);
  light.name =
      read.name.empty() ? L"light" + itos(static_cast<long long>(index)) : WString(fromUtf8(read.name));
  light.fragment = cloneWithPorts(
      requireFragment(reader, *object.member(L"fragment"), fromUtf8(read.fragment), language, whyUnknown),
      light.name, language, libraryPorts);
  light.profile = makeRef<AShaderFragmentProfileFunction>();
  const IObjectDataNode* const profile = object.member(L"profile");
  light.profilePosition = reader.positionOf(profile != nullptr ? *profile : object);
  light.profile->setProfilename(read.profile.empty() ? L"default" : fromUtf8(read.profile));
  return light;
}

}  // namespace

ShadingEnvironment::ShadingEnvironment() = default;
ShadingEnvironment::~ShadingEnvironment() = default;

const ShadingEnvironment::Light* ShadingEnvironment::findLight(const IShaderFragment* fragment) const {
  const auto found = lightIndex_.find(fragment);
  return found != lightIndex_.end() ? &lights_[found->second] : nullptr;
}

RefPtr<ShadingEnvironment> loadEnvironment(const std::string& file, const ILanguageTraits& language) {
  return loadEnvironment(Document::fromFile(file), language);
}

RefPtr<ShadingEnvironment> loadEnvironment(const Document& document, const ILanguageTraits& language,
                                           const LibraryPorts& libraryPorts, const WhyUnknown& whyUnknown) {
  DocumentReader reader(document);
  RefPtr<ShadingEnvironment> environment = makeRef<ShadingEnvironment>();
  environment->file_ = document.name();
  Set<WString> names;
  const Environment read = readEnvironment(reader, [&](const Light& light, const IObjectDataNode& object) {
    const std::size_t index = environment->lights_.size();
    environment->lights_.push_back(
        shadingLight(reader, light, object, index, language, libraryPorts, whyUnknown));
    const WString& name = environment->lights_.back().name;
    environment->lightIndex_.emplace(environment->lights_.back().fragment.get(), index);
    const IObjectDataNode* const spelled = object.member(L"name");
    if (!names.insert(name).second)
      reader.refuse(Finding::repeatedName, spelled != nullptr ? *spelled : object,
                    "the light name " + inTicks(name) + " is used twice");
  });
  environment->problems_ = reader.problems();
  if (!read.output.empty()) {
    const IObjectDataNode& at = *reader.root().member(L"output");
    environment->outputPosition_ = reader.positionOf(at);
    environment->output_ =
        cloneWithPorts(requireFragment(reader, at, fromUtf8(read.output), language, whyUnknown), L"output",
                       language, libraryPorts);
  }
  return environment;
}

Environment readEnvironment(const Document& document) {
  DocumentReader reader(document);
  return readEnvironment(reader, [](const Light&, const IObjectDataNode&) {});
}

RefPtr<IShaderFragment> cloneWithPorts(const IShaderFragment& fragment, const WString& instanceName,
                                       const ILanguageTraits& language, const LibraryPorts& libraryPorts) {
  RefPtr<IShaderFragment> clone(fragment.clone(instanceName));
  auto* const concrete = dynamic_cast<AShaderFragment*>(clone.get());
  if (concrete == nullptr) return clone;
  concrete->generateAutoInputsOutputs(&language);
  if (!libraryPorts.contains(fragment.key())) return clone;

  // The inputs of a fragment are added, never replaced.
  RefPtr<IShaderFragment> filled(fragment.clone(instanceName));
  for (std::size_t i = 0; i < clone->getNumInputs(); ++i) {
    filled->addInput(withLibraryValue(*clone->getInput(i), fragment.key(), libraryPorts).get());
  }
  for (std::size_t i = 0; i < clone->getNumOutputs(); ++i) filled->addOutput(clone->getOutput(i));
  return filled;
}

RefPtr<AParameter const> withValue(const AParameter& original, const AValue& value, bool constant) {
  const RefPtr<AParameter> copy = makeRef<OverrideNameParameter>(original, original.getName());
  copy->setDefaultValue(value);
  const std::uint32_t otherFlags = original.getFlags() & ~AParameter::kConstantFlag;
  copy->setFlags(otherFlags | (constant ? AParameter::kConstantFlag : 0));
  return copy;
}

RefPtr<AParameter const> withLibraryValue(const AParameter& input, const WString& fragment,
                                          const LibraryPorts& libraryPorts) {
  const std::optional<AValue> value =
      portValue(findPort(libraryPorts, fragment, input.getName()), input.getType());
  return value ? withValue(input, *value, input.isConstant()) : RefPtr<AParameter const>(&input);
}

}  // namespace TolmSDK::Graphics::sfg::host
