#include "benchmarks/graph_cases.h"

#include <string>
#include <utility>
#include <vector>

#include "host/shader_options.h"
#include "sfg/shader_fragment_profile_function.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

constexpr std::wstring_view kLightProfile = L"Lamp";

/// One function profile of the language "dx11".
RefPtr<AShaderFragmentProfileFunction> makeProfile(std::wstring_view name, const WString& prototype,
                                                   const WString& body) {
  auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->setProfilename(WString(name));
  profile->languages().insert(UString(L"dx11"));
  profile->setFunctionPrototype(prototype);
  profile->setFunctionBody(body);
  return profile;
}

RefPtr<AShaderFragment> makeFragment(const WString& key, const WString& prototype, const WString& body) {
  auto fragment = makeRef<AShaderFragment>();
  fragment->key() = key;
  fragment->registerProfile(makeProfile(L"default", prototype, body).get());
  return fragment;
}

void addPorts(IShaderFragment& fragment, std::initializer_list<const wchar_t*> inputs) {
  for (const wchar_t* input : inputs) fragment.addInput(TypeID_float, WString(input));
  fragment.addOutput(TypeID_float, L"result");
}

/// Lights that all come from one definition.
class Lights : public RefCounted<IShadingEnvironment> {
public:
  Lights(const IShaderFragment* definition, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      lights_.emplace_back(definition->clone(formatted(L"light%Iu", i)));
    }
  }
  std::size_t getNumLights() const override { return lights_.size(); }
  const IShaderFragment* getLight(std::size_t index) const override { return lights_[index].get(); }
  const IShaderFragment* getOutputFragment() const override { return nullptr; }

private:
  std::vector<RefPtr<IShaderFragment>> lights_;
};

/// Answers one light profile for every light.
class Options : public RefCounted<IShaderOptions> {
public:
  explicit Options(const IShaderFragmentProfile* lightProfile) : lightProfile_(lightProfile) {}
  const UString& getLanguage() const override { return language_; }
  float getSurfaceLOD() const override { return 100.0f; }
  float getLightLOD() const override { return 100.0f; }
  bool getConstValue(AValue&, const AParameter*) const override { return false; }
  const IShaderFragmentProfile* getLightProfile(const IShaderFragment*) const override {
    return lightProfile_.get();
  }

private:
  UString language_{L"dx11"};
  RefPtr<IShaderFragmentProfile const> lightProfile_;
};

/// Adds clones `n0`, `n1`, .. of definitions to a graph.
class CaseBuilder {
public:
  CaseBuilder() { case_.graph = makeRef<AShaderFragmentGraph>(); }

  IShaderFragment* add(const AShaderFragment& definition) {
    const RefPtr<IShaderFragment> clone(definition.clone(formatted(L"n%Iu", case_.graph->getNumFragments())));
    case_.graph->addFragment(clone.get());
    return clone.get();
  }

  GraphCase finish(IShaderFragment* last, const AShaderFragment* light = nullptr, std::size_t lights = 0) {
    case_.graph->addOutput(TypeID_float, L"color");
    case_.graph->setOutputConnection(std::size_t{0}, last, 0);
    case_.language = makeRef<host::LanguageDx11>(nullptr);
    case_.environment = makeRef<Lights>(light, lights);
    case_.options = makeRef<Options>(light != nullptr ? light->getProfile(0) : nullptr);
    case_.lightLoop = light != nullptr;
    case_.fragments = case_.graph->getNumFragments() + lights;
    return std::move(case_);
  }

private:
  GraphCase case_;
};

}  // namespace

GraphCase makeChain(std::size_t count) {
  const auto step = makeFragment(L"step", L"void step(float previous, float gain, out float result)",
                                 L"\tresult = previous * gain;\n");
  addPorts(*step, {L"previous", L"gain"});
  CaseBuilder builder;
  IShaderFragment* last = builder.add(*step);
  for (std::size_t i = 1; i < count; ++i) {
    IShaderFragment* next = builder.add(*step);
    next->setInputConnection(std::size_t{0}, last, 0);
    last = next;
  }
  return builder.finish(last);
}

GraphCase makeLadder(std::size_t count) {
  const auto rung = makeFragment(L"rung", L"void rung(float left, float right, out float result)",
                                 L"\tresult = left + right;\n");
  addPorts(*rung, {L"left", L"right"});
  CaseBuilder builder;
  IShaderFragment* last = builder.add(*rung);
  for (std::size_t i = 1; i < count; ++i) {
    IShaderFragment* next = builder.add(*rung);
    next->setInputConnection(std::size_t{0}, last, 0);
    next->setInputConnection(std::size_t{1}, last, 0);
    last = next;
  }
  return builder.finish(last);
}

GraphCase makeTree(std::size_t count) {
  const auto sum = makeFragment(L"sum", L"void sum(float left, float right, float weight, out float result)",
                                L"\tresult = left + right * weight;\n");
  addPorts(*sum, {L"left", L"right", L"weight"});
  CaseBuilder builder;
  std::vector<IShaderFragment*> nodes;
  for (std::size_t i = 0; i < count; ++i) nodes.push_back(builder.add(*sum));
  for (std::size_t i = 0; i < count; ++i) {
    if (2 * i + 1 < count) nodes[i]->setInputConnection(std::size_t{0}, nodes[2 * i + 1], 0);
    if (2 * i + 2 < count) nodes[i]->setInputConnection(std::size_t{1}, nodes[2 * i + 2], 0);
  }
  return builder.finish(nodes.front());
}

GraphCase makeFunctions(std::size_t count) {
  CaseBuilder builder;
  IShaderFragment* last = nullptr;
  for (std::size_t i = 0; i < count; ++i) {
    const WString number = formatted(L"%Iu", i);
    const auto profile =
        makeProfile(L"default", L"void layer" + number + L"(float previous, float gain, out float result)",
                    L"\tfloat shade = curve" + number +
                        L"(previous, gain);\n\tresult = lerp(previous, shade, saturate(gain));\n");
    profile->predefines() = L"float curve" + number +
                            L"(float x, float k)\n{\n\tfloat a = x * x * (3.0 - 2.0 * x);\n"
                            L"\tfloat b = 1.0 - exp(-k * x);\n\treturn lerp(a, b, saturate(k));\n}\n";
    const auto layer = makeRef<AShaderFragment>();
    layer->key() = L"layer" + number;
    layer->registerProfile(profile.get());
    addPorts(*layer, {L"previous", L"gain"});
    IShaderFragment* next = builder.add(*layer);
    if (last != nullptr) next->setInputConnection(std::size_t{0}, last, 0);
    last = next;
  }
  return builder.finish(last);
}

GraphCase makeLights(std::size_t count) {
  const auto light = makeRef<AShaderFragment>();
  light->key() = L"lamp";
  light->registerProfile(makeProfile(kLightProfile, L"void lamp(float3 color, out Lamp lamp)",
                                     L"\tlamp.color = color;\n\tlamp.direction = float3(0.0, 1.0, 0.0);\n")
                             .get());
  light->addInput(TypeID_fvec3, L"color");
  light->addOutput(WString(kLightProfile), L"lamp");

  const auto step = makeFragment(L"step", L"void step(float previous, float gain, out float result)",
                                 L"\tresult = previous * gain;\n");
  addPorts(*step, {L"previous", L"gain"});
  const auto lit = makeFragment(L"lit", L"void lit(float albedo, out float result)", L"\tresult = albedo;\n");
  lit->registerProfile(makeProfile(kLightProfile, L"void lit(float albedo, out float result)",
                                   L"\tresult = albedo * sfg_currentLight.color.x;\n")
                           .get());
  addPorts(*lit, {L"albedo"});

  CaseBuilder builder;
  IShaderFragment* last = builder.add(*step);
  for (int i = 1; i < 19; ++i) {
    IShaderFragment* next = builder.add(*step);
    next->setInputConnection(std::size_t{0}, last, 0);
    last = next;
  }
  IShaderFragment* surface = builder.add(*lit);
  surface->setInputConnection(std::size_t{0}, last, 0);
  return builder.finish(surface, light.get(), count);
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks
