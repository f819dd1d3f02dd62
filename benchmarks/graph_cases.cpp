#include "benchmarks/graph_cases.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/library/language_dx11.h"
#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_collapse_tool_light_loop.h"
#include "sfg/shader_fragment_profile_function.h"
#include "sfg/shader_fragment_profile_inline.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

const WString kLamp = L"Lamp";
const WString kSpot = L"Spot";

using Names = std::vector<WString>;

template <class Tool>
RefPtr<IShaderFragment> collapseWith(const GraphCase& graphCase) {
  const auto tool = makeRef<Tool>();
  return RefPtr<IShaderFragment>(tool->collapse(graphCase.graph.get(), graphCase.environment.get(),
                                                graphCase.options.get(), graphCase.language.get()));
}

/// A fragment without ports, and the ports that each use of it gets.
struct Definition {
  RefPtr<AShaderFragment> fragment;
  Names inputs;
  Names outputs;
};

/// A fragment whose inputs and outputs are floats.
Definition define(const WString& key, Names inputs, Names outputs = {L"result"}) {
  auto fragment = makeRef<AShaderFragment>();
  fragment->key() = key;
  return {fragment, std::move(inputs), std::move(outputs)};
}

void addProfile(AShaderFragment& fragment, AShaderFragmentProfile& profile, const WString& name,
                const WString& body) {
  profile.setProfilename(name);
  profile.languages().insert(UString(L"dx11"));
  profile.setFunctionBody(body);
  fragment.registerProfile(&profile);
}

WString prototypeOf(const Definition& definition) {
  WString prototype = L"void " + definition.fragment->key() + L"(";
  const auto add = [&](std::wstring_view qualifier, const WString& name) {
    if (prototype.back() != L'(') prototype += L", ";
    (prototype += qualifier) += L"float " + name;
  };
  for (const WString& name : definition.inputs) add(L"", name);
  for (const WString& name : definition.outputs) add(L"out ", name);
  return prototype + L")";
}

void addFunctionProfile(const Definition& definition, const WString& profileName, const WString& body,
                        const WString& predefines = {}) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->setFunctionPrototype(prototypeOf(definition));
  profile->predefines() = predefines;
  addProfile(*definition.fragment, *profile, profileName, body);
}

Definition makeFunction(const WString& key, Names inputs, const WString& body,
                        const WString& predefines = {}) {
  const Definition definition = define(key, std::move(inputs));
  addFunctionProfile(definition, L"default", body, predefines);
  return definition;
}

/// A function that reads the current light under these light profiles.
Definition makeLitFunction(const WString& key, Names inputs, const WString& body,
                           const Names& lightProfiles) {
  const Definition definition = makeFunction(key, std::move(inputs), body);
  for (const WString& name : lightProfiles) {
    addFunctionProfile(definition, name, body + L"\tresult *= sfg_currentLight.color.x;\n");
  }
  return definition;
}

Definition makeInline(const WString& key, Names inputs, const WString& expression) {
  const Definition definition = define(key, std::move(inputs));
  const auto profile = makeRef<AShaderFragmentProfileInline>();
  for (const WString& name : definition.inputs) {
    profile->getFunctionParameters()->addInput(L"", L"{{" + name + L"}}");
  }
  addProfile(*definition.fragment, *profile, L"default", expression);
  return definition;
}

Definition makeStep() {
  return makeFunction(L"step", {L"previous", L"gain"}, L"\tresult = previous * gain;\n");
}

/// A light whose only profile has this name, at so many levels of detail.
RefPtr<AShaderFragment> makeLight(const WString& profileName, std::size_t levels) {
  const auto light = makeRef<AShaderFragment>();
  light->key() = L"light" + profileName;
  for (std::size_t i = 0; i < levels; ++i) {
    const auto profile = makeRef<AShaderFragmentProfileFunction>();
    profile->setLOD(static_cast<float>(i));
    profile->setFunctionPrototype(L"void light" + profileName + L"(float3 color, out " + profileName +
                                  L" lamp)");
    addProfile(*light, *profile, profileName,
               L"\tlamp.color = color;\n\tlamp.direction = float3(0.0, 1.0, 0.0);\n");
  }
  return light;
}

/// Lights of these profiles by turns.
class Lights : public RefCounted<IShadingEnvironment> {
public:
  Lights(const Names& profiles, std::size_t count, std::size_t levels) {
    std::vector<RefPtr<AShaderFragment>> definitions;
    for (const WString& name : profiles) definitions.push_back(makeLight(name, levels));
    for (std::size_t i = 0; i < count; ++i) {
      lights_.emplace_back(definitions[i % definitions.size()]->clone(formatted(L"light%Iu", i)));
      lights_.back()->addInput(TypeID_fvec3, L"color");
      lights_.back()->addOutput(profiles[i % profiles.size()], L"lamp");
    }
  }
  std::size_t getNumLights() const override { return lights_.size(); }
  const IShaderFragment* getLight(std::size_t index) const override { return lights_[index].get(); }
  const IShaderFragment* getOutputFragment() const override { return nullptr; }

private:
  std::vector<RefPtr<IShaderFragment>> lights_;
};

/// Answers each light's own profile.
class Options : public RefCounted<IShaderOptions> {
public:
  const UString& getLanguage() const override { return language_; }
  float getSurfaceLOD() const override { return 100.0f; }
  float getLightLOD() const override { return 100.0f; }
  bool getConstValue(AValue&, const AParameter*) const override { return false; }
  const IShaderFragmentProfile* getLightProfile(const IShaderFragment* light) const override {
    return light->getProfile(0);
  }

private:
  UString language_{L"dx11"};
};

/// A use of a definition, with ports of its own.
RefPtr<IShaderFragment> makeUse(const Definition& definition, const WString& name) {
  RefPtr<IShaderFragment> use(definition.fragment->clone(name));
  for (const WString& input : definition.inputs) use->addInput(TypeID_float, input);
  for (const WString& output : definition.outputs) use->addOutput(TypeID_float, output);
  return use;
}

/// Fills a graph with uses `n0`, `n1`, .. of definitions.
class CaseBuilder {
public:
  AShaderFragmentGraph& graph() { return *graph_; }

  /// A use whose first `wires` inputs read the first output of `source`.
  IShaderFragment* add(const Definition& definition, IShaderFragment* source = nullptr,
                       std::size_t wires = 1) {
    const RefPtr<IShaderFragment> use = makeUse(definition, formatted(L"n%Iu", graph_->getNumFragments()));
    graph_->addFragment(use.get());
    for (std::size_t i = 0; source != nullptr && i < wires; ++i) use->setInputConnection(i, source, 0);
    return use.get();
  }

  /// Uses of a definition, each feeding the first `wires` inputs of the next; the last one.
  IShaderFragment* addChain(const Definition& definition, std::size_t count, std::size_t wires = 1,
                            IShaderFragment* last = nullptr) {
    for (std::size_t i = 0; i < count; ++i) last = add(definition, last, wires);
    return last;
  }

  GraphCase finish(IShaderFragment* last) { return finish(last, {}, 0); }
  /// For the light loop when there are lights.
  GraphCase finish(IShaderFragment* last, const Names& lightProfiles, std::size_t lights,
                   std::size_t levels = 1) {
    graph_->addOutput(TypeID_float, L"color");
    graph_->setOutputConnection(std::size_t{0}, last, 0);
    GraphCase made;
    made.language = makeRef<host::LanguageDx11>(nullptr);
    made.environment = makeRef<Lights>(lightProfiles, lights, levels);
    made.options = makeRef<Options>();
    made.lightLoop = lights != 0;
    made.fragments = graph_->getNumFragments() + lights;
    made.graph = graph_;
    return made;
  }

private:
  RefPtr<AShaderFragmentGraph> graph_ = makeRef<AShaderFragmentGraph>();
};

/// `line` with `%Iu` replaced by 0, 1, .., one behind the other.
WString repeat(std::wstring_view line, std::size_t count) {
  WString text;
  for (std::size_t i = 0; i < count; ++i) text += formatted(line, i, i);
  return text;
}

Names numbered(std::wstring_view name, std::size_t count) {
  Names names;
  for (std::size_t i = 0; i < count; ++i) names.push_back(formatted(name, i));
  return names;
}

/// A chain of expressions over one end, each of which puts the one below in parentheses.
double addNested(CaseBuilder& builder, IShaderFragment*& last, std::size_t count) {
  static const WString kExpression = L"({{a}} * 0.5)";
  static constexpr double kAdded = 8;  // characters around the placeholder
  last = builder.addChain(makeInline(L"half", {L"a"}, kExpression), count, 1, last);
  return kAdded * static_cast<double>(count) * static_cast<double>(count + 1) / 2;
}

const WString kCalling = L"\tsfg_shader(f, p, 2.0, result, result);\n";
const WString kReading = L"\tresult = f;\n";

/// Uses of these, each feeding the next, in the middle of a chain of `count` steps with a lit end, under as
/// many lights of these profiles.
GraphCase makeInMiddle(std::size_t count, const std::vector<Definition>& middle, const Names& lightProfiles) {
  const Definition step = makeStep();
  CaseBuilder builder;
  IShaderFragment* last = builder.addChain(step, count / 2);
  for (const Definition& one : middle) last = builder.add(one, last);
  last = builder.addChain(step, count - count / 2, 1, last);
  last = builder.add(makeFunction(L"lit", {L"albedo"}, L"\tresult = albedo * sfg_currentLight.color.x;\n"),
                     last);
  return builder.finish(last, lightProfiles, count);
}

/// An expression of a host's own class, which may be another one at every use.
class OwnExpression : public AShaderFragmentProfileInline {
public:
  bool writeFunctionCall(WString&, AShaderCollapseContext& context, FragmentProfileInstance& instance,
                         const Array<WString>& inputs, const Array<WString>&) const override {
    instance.setNumOutputs(1);
    instance.setOutput(0, WString(),
                       formatted(L"(%s * lights[%Iu])", inputs[0], context.getActiveLightIndex()));
    return true;
  }
};

/// The rungs of makeLitLadder().
IShaderFragment* addLitRungs(CaseBuilder& builder, std::size_t count) {
  const Definition function =
      makeLitFunction(L"rung", {L"left", L"right"}, L"\tresult = left + right;\n", {kLamp});
  const Definition caller = makeLitFunction(
      L"caller", {L"left", L"right", L"f"},
      L"\tfloat called;\n\tsfg_shader(f, left, left, result, called);\n\tresult = called + right;\n",
      {kLamp});
  const Definition expression = makeInline(L"sum", {L"a", L"b"}, L"({{a}} + {{b}})");
  IShaderFragment* last = builder.add(function);
  for (std::size_t i = 1; i < count; ++i) {
    // What a caller calls is no expression.
    const Definition& next = i % 3 == 1 ? caller : i % 3 == 2 ? expression : function;
    last = builder.add(next, last, next.inputs.size());
  }
  return last;
}

}  // namespace

RefPtr<IShaderFragment> collapse(const GraphCase& graphCase) {
  RefPtr<IShaderFragment> result = graphCase.lightLoop ? collapseWith<AShaderCollapseToolLightLoop>(graphCase)
                                                       : collapseWith<AShaderCollapseToolDefault>(graphCase);
  if (!result) throw std::runtime_error("the collapse answered null");
  return result;
}

Work collapseWork(GraphCase graphCase) {
  const auto made = std::make_shared<const GraphCase>(std::move(graphCase));
  Work work;
  work.round = [made] { collapse(*made); };
  work.text = [made] {
    const RefPtr<IShaderFragment> result = collapse(*made);
    const IShaderFragmentProfile& profile = *result->getProfile(0);
    return profile.predefines() + profile.getFunctionBody();
  };
  work.fragments = made->fragments;
  work.characters = made->nestedCharacters;
  return work;
}

GraphCase makeChain(std::size_t count) {
  CaseBuilder builder;
  return builder.finish(builder.addChain(makeStep(), count));
}

GraphCase makeLadder(std::size_t count) {
  CaseBuilder builder;
  return builder.finish(
      builder.addChain(makeFunction(L"rung", {L"left", L"right"}, L"\tresult = left + right;\n"), count, 2));
}

GraphCase makeTree(std::size_t count) {
  const Definition sum =
      makeFunction(L"sum", {L"left", L"right", L"weight"}, L"\tresult = left + right * weight;\n");
  CaseBuilder builder;
  std::vector<IShaderFragment*> nodes;
  for (std::size_t i = 0; i < count; ++i) nodes.push_back(builder.add(sum));
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
    last = builder.add(
        makeFunction(L"layer" + number, {L"previous", L"gain"},
                     L"\tfloat shade = curve" + number +
                         L"(previous, gain);\n\tresult = lerp(previous, shade, saturate(gain));\n",
                     L"float curve" + number +
                         L"(float x, float k)\n{\n\tfloat a = x * x * (3.0 - 2.0 * x);\n"
                         L"\tfloat b = 1.0 - exp(-k * x);\n\treturn lerp(a, b, saturate(k));\n}\n"),
        last);
  }
  return builder.finish(last);
}

GraphCase makeLights(std::size_t count) {
  CaseBuilder builder;
  IShaderFragment* last = builder.addChain(makeStep(), 19);
  last = builder.add(makeLitFunction(L"lit", {L"albedo"}, L"\tresult = albedo;\n", {kLamp}), last);
  return builder.finish(last, {kLamp}, count);
}

GraphCase makeUniforms(std::size_t count) {
  CaseBuilder builder;
  const Definition user =
      makeFunction(L"user", {}, L"\tresult = 0.0;\n" + repeat(L"\tresult += tint%Iu;\n", count));
  for (const WString& name : numbered(L"tint%Iu", count)) {
    user.fragment->addUniform(makeRef<AParameter>(TypeID_float, name).get());
  }
  return builder.finish(builder.add(user));
}

GraphCase makePlaceholders(std::size_t count) {
  CaseBuilder builder;
  return builder.finish(
      builder.add(makeInline(L"sum", numbered(L"p%Iu", count), L"0.0" + repeat(L" + {{p%Iu}}", count))));
}

GraphCase makeBuiltinCalls(std::size_t count) {
  CaseBuilder builder;
  return builder.finish(builder.add(
      makeFunction(L"asker", {L"a"},
                   L"\tresult = 0.0;\n" + repeat(L"\tif (sfg_isConnected(a)) result += %Iu.0;\n", count))));
}

GraphCase makeShaderCalls(std::size_t count) {
  CaseBuilder builder;
  IShaderFragment* source = builder.add(makeFunction(L"noise", {L"p"}, L"\tresult = p * p;\n"));
  return builder.finish(
      builder.add(makeFunction(L"caller", {L"f"},
                               L"\tresult = 0.0;\n\tfloat s;\n" +
                                   repeat(L"\tsfg_shader(f, p, %Iu.0, result, s);\n\tresult += s;\n", count)),
                  source));
}

GraphCase makeClashingHelpers(std::size_t count) {
  CaseBuilder builder;
  const auto user = [&](const WString& key, std::wstring_view helper) {
    return makeFunction(key, {L"a"}, L"\tresult = helper0(a);\n", repeat(helper, count));
  };
  IShaderFragment* first =
      builder.add(user(L"first", L"float helper%Iu(float x)\n{\n\treturn x * %Iu.0;\n}\n"));
  return builder.finish(
      builder.add(user(L"second", L"float helper%Iu(float x)\n{\n\treturn x + %Iu.0;\n}\n"), first));
}

GraphCase makeInlineChain(std::size_t count) {
  CaseBuilder builder;
  IShaderFragment* last = nullptr;
  const double characters = addNested(builder, last, count);
  GraphCase made = builder.finish(last);
  made.nestedCharacters = characters;
  return made;
}

GraphCase makeLitInlineChain(std::size_t count) {
  static constexpr std::size_t kLights = 8;
  CaseBuilder builder;
  IShaderFragment* last = builder.add(makeStep());
  const double characters = addNested(builder, last, count);
  last = builder.add(makeLitFunction(L"lit", {L"albedo"}, L"\tresult = albedo;\n", {kLamp}), last);
  GraphCase made = builder.finish(last, {kLamp}, kLights);
  made.nestedCharacters = kLights * characters;
  return made;
}

/// `count` lights of these profiles over a chain of `count` fragments that have two light profiles, the last
/// of which is lit.
GraphCase makeManyByMany(std::size_t count, const Names& lightProfiles) {
  const Definition step = makeStep();
  for (const WString& name : {kLamp, kSpot}) addFunctionProfile(step, name, L"\tresult = previous * gain;\n");
  CaseBuilder builder;
  IShaderFragment* last = builder.addChain(step, count - 1);
  last = builder.add(makeLitFunction(L"lit", {L"albedo"}, L"\tresult = albedo;\n", {kLamp, kSpot}), last);
  return builder.finish(last, lightProfiles, count);
}

GraphCase makeAlternatingLights(std::size_t count) { return makeManyByMany(count, {kLamp, kSpot}); }
GraphCase makeUnknownProfile(std::size_t count) { return makeManyByMany(count, {L"Nobody"}); }

GraphCase makeChangingCaller(std::size_t count) {
  const Definition caller = define(L"caller", {L"f"});
  addFunctionProfile(caller, kLamp, kCalling);
  addFunctionProfile(caller, kSpot, kReading);
  return makeInMiddle(count, {makeFunction(L"called", {L"p"}, L"\tresult = p;\n"), caller}, {kLamp, kSpot});
}

GraphCase makeCallerProfiles(std::size_t count) {
  const Names names = numbered(L"Lamp%Iu", count);
  const Definition caller = define(L"caller", {L"f"});
  for (const WString& name : names) addFunctionProfile(caller, name, kCalling);
  return makeInMiddle(count, {makeFunction(L"called", {L"p"}, L"\tresult = p;\n"), caller}, names);
}

GraphCase makeCalledProfiles(std::size_t count) {
  const Names names = numbered(L"Lamp%Iu", count);
  const Definition called = define(L"called", {L"p"});
  for (const WString& name : names) addFunctionProfile(called, name, L"\tresult = p;\n");
  return makeInMiddle(count, {called, makeFunction(L"caller", {L"f"}, kCalling)}, names);
}

GraphCase makeLitProfiles(std::size_t count) {
  const Names names = numbered(L"Lamp%Iu", count);
  return makeInMiddle(count, {makeLitFunction(L"coat", {L"a"}, L"\tresult = a;\n", names)}, names);
}

GraphCase makeOwnExpression(std::size_t count) {
  const Definition expression = define(L"expression", {L"a"});
  addProfile(*expression.fragment, *makeRef<OwnExpression>(), L"default", {});
  return makeInMiddle(count, {expression}, {kLamp});
}

GraphCase makeLightLevels(std::size_t count) {
  CaseBuilder builder;
  IShaderFragment* last = builder.addChain(makeStep(), count);
  last = builder.add(makeLitFunction(L"lit", {L"albedo"}, L"\tresult = albedo;\n", {kLamp}), last);
  return builder.finish(last, {kLamp}, count, count);
}

GraphCase makeOutputs(std::size_t count) {
  CaseBuilder builder;
  const Definition source = define(L"source", {L"a"}, numbered(L"out%Iu", count));
  addFunctionProfile(source, L"default", repeat(L"\tout%Iu = a * %Iu.0;\n", count));
  IShaderFragment* many = builder.add(source);
  const Definition sum = makeFunction(L"sum", {L"left", L"right"}, L"\tresult = left + right;\n");
  IShaderFragment* last = many;
  for (std::size_t i = 0; i < count; ++i) {
    last = builder.add(sum, last);
    last->setInputConnection(std::size_t{1}, many, i);
  }
  return builder.finish(last);
}

GraphCase makePreprocess(std::size_t count) {
  CaseBuilder builder;
  for (std::size_t i = 0; i < count; ++i) {
    const WString name = formatted(L"pre%Iu", i);
    const Definition step = define(name, {}, {L"value" + name});
    addFunctionProfile(step, L"default", L"\tvalue" + name + L" = 0.5;\n");
    const RefPtr<IShaderFragment> use = makeUse(step, name);
    builder.graph().addPreprocessFragment(use.get());
    builder.graph().addFragment(use.get());
  }
  return builder.finish(builder.add(makeStep()));
}

GraphCase makePostprocess(std::size_t count) {
  const Definition step = makeFunction(L"step", {L"x"}, L"\tresult = x * 0.5;\n");
  CaseBuilder builder;
  for (std::size_t i = 0; i < count; ++i) {
    const RefPtr<IShaderFragment> use = makeUse(step, formatted(L"post%Iu", i));
    if (!builder.graph().addPostprocessFragment(use.get())) throw std::runtime_error("the chain is refused");
  }
  return builder.finish(builder.add(makeStep()), {kLamp}, 1);
}

GraphCase makeLitLadder(std::size_t count) {
  CaseBuilder builder;
  IShaderFragment* last = addLitRungs(builder, count);
  return builder.finish(last, {kLamp}, 4);
}

GraphCase makeUnlitLadder(std::size_t count) {
  CaseBuilder builder;
  return builder.finish(addLitRungs(builder, count));
}

Work findLevels(std::size_t count) {
  const Definition many = define(L"many", {});
  for (std::size_t i = 0; i < count; ++i) {
    const auto profile = makeRef<AShaderFragmentProfileFunction>();
    profile->setFunctionPrototype(prototypeOf(many));
    profile->setLOD(static_cast<float>(i));
    addProfile(*many.fragment, *profile, L"default", L"\tresult = 0.0;\n");
  }
  Work work;
  work.round = [many, count] {
    const UString language(L"dx11");
    for (std::size_t i = 0; i < count; ++i) {
      if (many.fragment->findBestProfile(L"default", language, static_cast<float>(i)) !=
          many.fragment->getProfile(i))
        throw std::runtime_error("a level was not found");
    }
  };
  return work;
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks
