#pragma once

// Random scenes of up to a dozen nodes, dense in everything that decides what a collapse writes: the same
// scene for the same seed, on every machine.

#include <algorithm>
#include <initializer_list>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/support/test_graph.h"

namespace TolmSDK::Graphics::sfg::test {

/// A random number source whose answers do not depend on the standard library.
class RandomChoice {
public:
  explicit RandomChoice(unsigned seed) : random_(seed) {}

  std::size_t below(std::size_t bound) { return random_() % bound; }
  bool percent(std::size_t chance) { return below(100) < chance; }
  const wchar_t* of(std::initializer_list<const wchar_t*> texts) {
    return texts.begin()[below(texts.size())];
  }

private:
  std::mt19937 random_;
};

/// Counts how often each feature of the generator was used.
class FeatureCounts {
public:
  void add(const char* feature) { counts_[feature] += 1; }
  void add(const FeatureCounts& other) {
    for (const auto& [feature, count] : other.counts_) counts_[feature] += count;
  }
  std::size_t of(const std::string& feature) const {
    const auto found = counts_.find(feature);
    return found != counts_.end() ? found->second : 0;
  }
  const std::map<std::string, std::size_t>& all() const { return counts_; }

private:
  std::map<std::string, std::size_t> counts_;
};

/// The JSON text of one random fragment, and what its users have to know of it.
class RandomFragment {
public:
  RandomFragment(RandomChoice& random, FeatureCounts& features) : random_(random), features_(features) {
    hasThird_ = random_.percent(35);
    hasSecondOutput_ = random_.percent(30);
    if (hasSecondOutput_) features_.add("two outputs");
    isExpression_ = random_.percent(22);
    addUniforms();
    // Helpers that its profiles share, so that equal texts meet.
    helpers_ = makePredefines();
    addProfiles();
  }

  WString json() const { return LR"({"profiles":[)" + profiles_ + LR"(],"uniforms":[)" + uniforms_ + L"]}"; }
  bool hasThird() const { return hasThird_; }
  bool hasSecondOutput() const { return hasSecondOutput_; }
  bool isExpression() const { return isExpression_; }
  /// Some profile calls the source of that input.
  bool callsInput(std::size_t input) const { return called_[input]; }
  bool readsLight() const { return readsLight_; }

private:
  using Lines = std::vector<WString>;

  static WString number(std::size_t value) { return itos(static_cast<long long>(value)); }

  static WString quote(const WString& text) {
    WString quoted = L"\"";
    for (const wchar_t c : text) {
      if (c == L'\\' || c == L'"') quoted += L'\\';
      quoted += c;
    }
    return quoted + L'"';
  }

  static WString list(const Lines& lines) {
    WString text = L"[";
    for (const WString& line : lines) text += (text.size() == 1 ? L"" : L",") + quote(line);
    return text + L"]";
  }

  void addUniforms() {
    for (std::size_t i = random_.below(3); i != 0; --i) {
      const WString name = random_.of({L"gain", L"tint", L"hue", L"h1"});
      if (uniforms_.find(name) != WString::npos) continue;
      const WString type = random_.of({L"float", L"float3", L"sampler2D"});
      uniforms_ += (uniforms_.empty() ? L"" : L",") + (LR"({"name":")" + name) + LR"(","type":")" +
                   (type == L"sampler2D" ? L"sfg_sampler2D" : type) + LR"("})";
      uniform_ = name;
      features_.add("fragment uniform");
    }
  }

  // ---- Profiles

  void addProfiles() {
    std::vector<const wchar_t*> names = {L"default"};
    if (random_.percent(45)) names.push_back(L"PointLight");
    if (random_.percent(30)) names.push_back(L"SkyLight");
    if (random_.percent(25)) {
      names.push_back(L"default");
      features_.add("two levels of detail");
    }
    if (random_.percent(4)) {
      names = {L"PointLight"};
      features_.add("no default profile");
    }
    // The first profile in the list decides what is made at creation.
    for (std::size_t i = names.size(); i > 1; --i) std::swap(names[i - 1], names[random_.below(i)]);
    if (names.size() > 1) features_.add("several profiles");
    if (random_.percent(8)) {
      profiles_ = LR"~({"language":["other"],"implementation":["void other(float a)","{","}"]})~";
      features_.add("profile for another language");
      if (random_.percent(20)) names.clear();
    }
    for (const wchar_t* name : names) {
      if (!profiles_.empty()) profiles_ += L",";
      profiles_ += isExpression_ && random_.percent(80) ? expressionProfile(name) : functionProfile(name);
    }
  }

  WString commonParts(const WString& name) {
    WString text = LR"("name":")" + name + LR"(","language":["dx11"])";
    if (random_.percent(50)) text += LR"(,"lod":)" + number(random_.below(3) * 50);
    if (random_.percent(15)) {
      text += LR"(,"includes":)" + list({random_.of({L"one.h", L"two.h"})});
      features_.add("include");
    }
    if (random_.percent(15)) {
      text += LR"(,"stateVariables":)" + list({random_.of({L"r", L"custom", L"s"})});
      features_.add("custom state variable");
    }
    Lines predefines = helpers_;
    if (random_.percent(25)) predefines = makePredefines();
    if (!predefines.empty()) text += LR"(,"predefine":)" + list(predefines);
    return text;
  }

  WString expressionProfile(const WString& name) {
    features_.add("inline profile");
    WString expression = random_.of({L"{{a}} + {{b}}", L"({{b}}) * ({{a}} + {{b}})", L"max({{a}}, {{b}})"});
    if (hasThird_) expression += L" - {{t}}";
    if (random_.percent(20)) expression += L" * sfg_currentLight.x", readLight();
    if (random_.percent(10)) expression += L" + sfg_isConnected({{a}})";
    if (random_.percent(4)) {
      expression = L"{{a}}";
      features_.add("inline profile with other inputs");
    }
    if (random_.percent(5)) {
      expression = L"1.0";
      features_.add("inline profile without inputs");
    }
    if (!uniform_.empty() && random_.percent(40)) expression += L" + " + uniform_;
    if (random_.percent(5)) {
      expression += L" + sfg_shader({{a}}, a, 1.0)";
      called_[0] = true;
      features_.add("shader use in an expression");
    }
    return LR"({"mode":"inline",)" + commonParts(name) + LR"(,"implementation":)" + list({expression}) + L"}";
  }

  WString functionProfile(const WString& name) {
    isMetaSL_ = random_.percent(18);
    features_.add(isMetaSL_ ? "MetaSL profile" : "function profile");
    const WString function = random_.of({L"mix", L"mix", L"h", L"blend", L"g1", L"hash", L"f"});
    WString prototype = L"void " + function + L"(float a, float b";
    if (hasThird_) prototype += L", float t";
    prototype += hasSecondOutput_ ? L", out float r, out float3 s)" : L", out float r)";
    Lines lines = {prototype, L"{"};
    for (std::size_t i = 1 + random_.below(5); i != 0; --i) addStatement(lines, 0);
    lines.push_back(L"}");
    const WString common = commonParts(name);
    return (isMetaSL_ ? LR"({"mode":"metaSL",)" : L"{") + common + LR"(,"implementation":)" + list(lines) +
           L"}";
  }

  // ---- Statements of a body

  void readLight() {
    readsLight_ = true;
    features_.add("current light");
  }

  void addStatement(Lines& lines, int depth) {
    switch (random_.below(22)) {
    case 0:
    case 1: lines.push_back(random_.of({L"r = a + b;", L"r = a;", L"r += h(a) + hash1(b);"})); break;
    case 2:
    case 3: addBuiltin(lines); break;
    case 4:
      lines.push_back(L"r *= sfg_currentLight.x;");
      readLight();
      break;
    case 5: lines.push_back(L"r += " + (uniform_.empty() ? WString(L"gain") : uniform_) + L";"); break;
    case 6:
      lines.push_back(random_.of({L"r += state.ray_length;", L"r += state.normal.x + state.origin.x;",
                                  L"r += sfg_texCoord0.x;", L"r += sfg_matWorld[0][0];",
                                  L"r += sfg_frontFacing ? 1 : sfg_time;"}));
      features_.add("state variable");
      break;
    case 7:
      lines.push_back(random_.of({L"// h1( gain { sfg_shader(a, a, b);", L"/* mix1( } */ r = mix1(r);",
                                  L"#define X h1(a) {", L"// sfg_isConnected(a) hash1(",
                                  L"float mix1x = mix11(h12); // f1"}));
      features_.add("names in comments");
      break;
    case 8:
      if (isMetaSL_) addLightBlock(lines);
      break;
    case 9:
      if (isMetaSL_) lines.push_back(L"r = __object_to_world[0][0] + __orthographic;");
      break;
    case 10:
    case 11:
      if (depth > 1) break;
      lines.push_back(random_.of({L"if (r > 0) {", L"{", L"for (;;) {"}));
      addStatement(lines, depth + 1);
      addStatement(lines, depth + 1);
      lines.push_back(random_.of({L"}", L"}", L"} // }"}));
      features_.add("nested block");
      break;
    case 12:
      if (random_.percent(8)) {
        lines.push_back(L"}");
        features_.add("closing brace too many");
      }
      break;
    case 13:
    case 14: lines.push_back(random_.of({L"r = mix1(r, a);", L"r = g(r) + h1(h12);", L"r = k (b);"})); break;
    default: addUse(lines);
    }
  }

  void addBuiltin(Lines& lines) {
    const WString call =
        random_.of({L"sfg_isConnected(a)", L"sfg_isConnected( b )", L"sfg_isConnected(t)",
                    L"sfg_isConnected(zz)", L"sfg_isConnected()", L"sfg_isConnected", L"sfg_isFinalOutput(r)",
                    L"sfg_isFinalOutput(s)", L"sfg_isFinalOutput(a)"});
    lines.push_back(L"r = " + call + L" ? a : b;");
    features_.add(call.find(L"Final") != WString::npos ? "sfg_isFinalOutput" : "sfg_isConnected");
  }

  /// A use of an input as a shader, often of one already used.
  WString makeUse() {
    const std::size_t input = called_[0] || random_.percent(60) ? 0 : 1;
    called_[input] = true;
    features_.add("shader use");
    const WString name = input == 0 ? L"a" : L"b";
    switch (random_.below(12)) {
    case 0: features_.add("shader use with one argument"); return L"sfg_shader(" + name + L");";
    case 1: features_.add("shader use of an unknown name"); return L"sfg_shader(" + name + L", none, 1.0);";
    case 2: features_.add("shader use without pairs"); return L"sfg_shader(" + name + L", a);";
    case 3: features_.add("shader use without arguments"); return L"sfg_shader();";
    case 4: return L"sfg_shader(" + name + L", b, r, a, 1.0);";
    case 5: features_.add("shader use with outputs"); return L"sfg_shader(" + name + L", a, b, r, r);";
    case 6: return L"sfg_shader(" + name + L", a, 2.0, s, w);";
    case 7: return L"sfg_shader( " + name + L" , a , 3.0 );";
    default: return L"sfg_shader(" + name + L", a, " + number(random_.below(3)) + L".0);";
    }
  }

  void addUse(Lines& lines) {
    const WString use = makeUse();
    lines.push_back(random_.percent(10) ? L"// " + use : use);
    if (!random_.percent(35)) return;
    features_.add("two uses in a block");
    lines.push_back(random_.percent(50) ? use : use + L" { " + makeUse() + L" }");
  }

  void addLightBlock(Lines& lines) {
    features_.add("light block");
    lines.push_back(L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN");
    lines.push_back(L"TOLM_SCENE_LIGHTING(a, b, l);");
    if (random_.percent(50)) addUse(lines);
    if (!random_.percent(4)) lines.push_back(L"TOLM_VESSOR_LIGHT_AND_SHADOW_END");
  }

  // ---- Helper code

  Lines makePredefines() {
    Lines lines;
    if (random_.percent(30)) return lines;
    for (std::size_t i = 1 + random_.below(4); i != 0; --i) addHelper(lines);
    if (random_.percent(6)) {
      lines.push_back(random_.of({L"static const float kh = h1(1);", L"cbuffer C { float h; }"}));
      features_.add("raw statement");
    }
    return lines;
  }

  const wchar_t* helperName() {
    return random_.of({L"h", L"h", L"g", L"k", L"hash", L"hash1", L"h1", L"h12"});
  }

  void addHelper(Lines& lines) {
    const WString name = helperName();
    const WString type = random_.of({L"float", L"float", L"float2"});
    const WString head = L"float " + name + L"(" + type + L" a)";
    switch (random_.below(16)) {
    case 0:
      lines.push_back(head + L";");
      lines.push_back(head + L" { return " + number(random_.below(2)) + L"; }");
      features_.add("prototype");
      break;
    case 1:
      lines.push_back(L"struct " + name + L" { float x" + number(random_.below(2)) + L"; };");
      features_.add("structure");
      break;
    case 2: {
      // One behind the other: compilers differ in which side of a sum comes first.
      const WString value =
          random_.of({L" = 0;", L" = 1;", L" : register(c0);", L"[2] <string s = 1;> = 1;", L";"});
      lines.push_back(
          random_.of({L"uniform float ", L"float ", L"uniform extern float4 ", L"Texture2D<float4> "}) +
          name + value);
      features_.add("uniform in the predefines");
      break;
    }
    case 3:
      lines.push_back(head + L" { return sfg_isConnected(a) ? 1 : 2; }");
      features_.add("built-in call in the predefines");
      break;
    case 4:
    case 5: {
      // A pair that calls each other, with a difference now and then.
      const WString other = helperName();
      lines.push_back(L"float " + name + L"(float a) { return " + number(random_.below(2)) + L"; }");
      lines.push_back(L"float " + name + L"(float2 a) { return " + other + L"(1); }");
      lines.push_back(L"float " + other + L"(float3 a) { return " + name + L"(1); }");
      features_.add("ring of helpers");
      break;
    }
    case 6:
      lines.push_back(head + L" { float r; float w; " + makeUse() + L" return r; }");
      features_.add("shader use in the predefines");
      break;
    case 7:
      lines.push_back(head + L" { return sfg_time + gain + tint; }");
      features_.add("names of uniforms in the predefines");
      break;
    case 8: lines.push_back(random_.of({L"// about h1(", L"#define H h(1)", L"/* { */", L"#if 1"})); break;
    case 9:
      lines.push_back(head);
      lines.push_back(L"{");
      lines.push_back(L"return h(a) + g(a); // k");
      lines.push_back(L"}");
      break;
    case 10:
      lines.push_back(random_.of({L"technique T { pass P { h(1); } }", L"struct { float n; };", L"struct S;",
                                  L"samplerstate q { Filter = 1; };"}));
      features_.add("odd symbol");
      break;
    case 11:
      lines.push_back(head + L" { TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN TOLM_SCENE_LIGHTING(1, 2, 3);" +
                      L" TOLM_VESSOR_LIGHT_AND_SHADOW_END return __orthographic; }");
      break;
    default:
      // Helpers that call helpers, of few different texts.
      lines.push_back(head + L" { return " +
                      random_.of({L"1", L"2", L"h(1)", L"g(1)", L"k(1) + hash(1)", L"hash1(2)"}) + L"; }");
      features_.add("helper function");
    }
  }

  RandomChoice& random_;
  FeatureCounts& features_;
  bool hasThird_ = false;
  bool hasSecondOutput_ = false;
  bool isExpression_ = false;
  bool isMetaSL_ = false;
  bool readsLight_ = false;
  bool called_[2] = {false, false};
  WString uniform_;
  WString uniforms_;
  WString profiles_;
  Lines helpers_;
};

class RandomScene {
public:
  explicit RandomScene(unsigned seed) : random_(seed) {
    setOptions();
    makeLibrary();
    addGraphInputs();
    const std::size_t count = 2 + random_.below(11);
    for (std::size_t i = 0; i < count; ++i) addNode();
    addLights();
    addOutputs();
    addChains();
  }

  TestScene scene;
  FeatureCounts features;

private:
  /// More paths than this would take the tests too long: they follow every one, several times.
  static constexpr std::size_t kMostPaths = 120;

  struct Kind {
    RefPtr<AShaderFragment> fragment;
    RandomFragment properties;
  };
  struct Node {
    AShaderFragment* fragment;
    const RandomFragment* properties;
    std::size_t paths;
  };

  static WString number(std::size_t value) { return itos(static_cast<long long>(value)); }

  void setOptions() {
    scene.options->surfaceLOD = static_cast<float>(random_.below(3) * 50);
    scene.options->lightLOD = static_cast<float>(random_.below(3) * 50);
    AValue constant(TypeID_float);
    scene.options->constants[L"t"] = constant;
  }

  void makeLibrary() {
    const std::size_t count = 2 + random_.below(4);
    for (std::size_t i = 0; i < count; ++i) {
      RandomFragment properties(random_, features);
      library_.push_back({loadFragment(L"f" + number(i), properties.json()), properties});
    }
  }

  void addGraphInputs() {
    for (std::size_t i = random_.below(3); i != 0; --i)
      scene.graph->addInput(random_.percent(50) ? TypeID_float : TypeID_fvec3, i == 1 ? L"g" : L"hue");
    if (random_.percent(15)) scene.graph->addInput(L"Surface", L"surface");
    if (random_.percent(30)) scene.graph->addUniform(parameter(TypeID_float, L"shared").get());
  }

  RefPtr<AParameter> thirdInput() {
    switch (random_.below(5)) {
    case 0: features.add("constant"); return parameter(TypeID_float, L"t", AParameter::kConstantFlag);
    case 1: features.add("sampler"); return parameter(TypeID_sampler2D, L"t");
    case 2: features.add("dotted input"); return parameter(TypeID_float, L"t.x");
    case 3: features.add("structure input"); return structure(L"S", L"t");
    default: return parameter(TypeID_fvec3, L"t");
    }
  }

  RefPtr<AParameter> output(const wchar_t* name, const TypeID& type) {
    RefPtr<AParameter> made = parameter(type, name);
    if (random_.percent(20)) made->setSemantic(UString(L"BOUND"));
    return made;
  }

  void addNode() {
    const Kind& kind = library_[random_.below(library_.size())];
    const WString name = L"n" + number(nodes_.size());
    // One behind the other: compilers differ in the order of arguments.
    const RefPtr<AParameter> result = output(L"r", TypeID_float);
    AShaderFragment* node = scene.addWithPorts(
        *kind.fragment, name,
        {parameter(TypeID_float, L"a"),
         random_.percent(8) ? parameter(TypeID_samplerCube, L"b") : parameter(TypeID_float, L"b")},
        {result});
    if (kind.properties.hasThird()) node->addInput(thirdInput().get());
    if (kind.properties.hasSecondOutput()) node->addOutput(output(L"s", TypeID_fvec3).get());
    for (const Node& other : nodes_)
      if (other.properties == &kind.properties) {
        features.add("fragment used again");
        break;
      }
    nodes_.push_back({node, &kind.properties, 1});
    for (std::size_t i = 0; i < node->getNumInputs(); ++i) connect(i);
  }

  void connect(std::size_t input) {
    Node& node = nodes_.back();
    const std::size_t choice = random_.below(10);
    if (choice == 0 && scene.graph->getNumInputs() != 0) {
      node.fragment->setInputConnection(input, random_.below(scene.graph->getNumInputs()));
      features.add("graph input");
      return;
    }
    if (choice <= 2 || nodes_.size() == 1) {
      features.add("unconnected input");
      return;
    }
    const std::size_t reach = std::min<std::size_t>(5, nodes_.size() - 1);
    const Node& source = nodes_[nodes_.size() - 2 - random_.below(reach)];
    const bool isCalled = input < 2 && node.properties->callsInput(input);
    if (isCalled && source.properties->isExpression() && !random_.percent(5)) return;
    if (node.paths + source.paths > kMostPaths) return;
    if (isCalled) features.add(source.properties->isExpression() ? "called expression" : "called fragment");
    std::size_t index = random_.below(source.fragment->getNumOutputs());
    if (source.properties->isExpression() && !random_.percent(3)) index = 0;
    if (index != 0) features.add("second output read");
    node.fragment->setInputConnection(input, source.fragment, index);
    node.paths += source.paths;
  }

  void addLights() {
    const std::size_t count = random_.below(4);
    for (std::size_t i = 0; i < count; ++i) {
      if (i != 0 && random_.percent(6)) {
        scene.environment->lights.push_back(scene.environment->lights.back());
        features.add("light twice");
        continue;
      }
      addLight(L"l" + number(i));
    }
    features.add(count == 0 ? "no light" : count == 1 ? "one light" : "several lights");
  }

  void addLight(const WString& name) {
    const WString profile = random_.of({L"PointLight", L"SkyLight", L"default"});
    const WString more = LR"(,"name":")" + profile + LR"(","predefine":["float h() { return )" +
                         number(random_.below(2)) + LR"(; }"])";
    const WString body = random_.of({L"r.x = h();", L"r.x = sfg_texCoord0.x;", L"r.x = power;"});
    const WString inputs = random_.percent(40) ? L"float power, " : L"";
    const WString lit =
        functionJson(random_.percent(3) ? WString(L"void light()\n{\n}")
                                        : L"void light(" + inputs + L"out Light r)\n{\n" + body + L"\n}",
                     more);
    const WString metaSL = LR"~({"mode":"metaSL","name":"msl_light","language":["dx11"],"implementation":)~"
                           LR"~(["void mslLight(out Light_iterator r)","{","r.count = 1;","}"]})~";
    const bool hasMetaSL = random_.percent(35);
    if (hasMetaSL) features.add("MetaSL light");
    const auto light = scene.addLight(name, hasMetaSL ? profilesJson({lit, metaSL}) : profilesJson({lit}));
    if (random_.percent(10)) scene.options->lightProfiles.erase(name);
    if (random_.percent(10)) light->addUniform(parameter(TypeID_float, L"energy").get());
  }

  void addOutputs() {
    const bool isOne = random_.percent(75);
    const std::size_t count = 1 + random_.below(3);
    for (std::size_t i = 0; i < count; ++i) {
      const Node& source =
          isOne || random_.percent(40) ? nodes_.back() : nodes_[random_.below(nodes_.size())];
      std::size_t index = random_.below(source.fragment->getNumOutputs());
      if (source.properties->isExpression() && !random_.percent(5)) index = 0;
      const TypeID type = source.fragment->getOutput(index)->getType();
      scene.output(L"out" + number(i), type, source.fragment, index);
    }
    features.add(isOne ? "outputs of one fragment" : "outputs of several fragments");
    if (count > 1) features.add("several outputs");
    if (random_.percent(2)) {
      scene.graph->addOutput(TypeID_float, L"loose");
      features.add("output without connection");
    }
  }

  /// Parameters as a list, `from` with an input for each graph output of its type or float4.
  WString outputsAsInputs() {
    WString text;
    for (std::size_t i = 0; i < scene.graph->getNumOutputs(); ++i) {
      const bool isWider = random_.percent(25);
      if (isWider) features.add("conversion");
      const bool isNoFit = random_.percent(2);
      text += (isNoFit   ? WString(L"float2")
               : isWider ? WString(L"float4")
                         : scene.graph->getOutput(i)->getType().toString()) +
              L" p" + number(i) + L", ";
    }
    return text;
  }

  void addChains() {
    if (random_.percent(20)) addPreprocess();
    if (random_.percent(25)) addPostprocess();
    if (random_.percent(20)) {
      const WString inputs = outputsAsInputs();
      scene.environment->output = scene.instance(
          *loadFragment(L"last", functionJson(L"void last(" + inputs + L"out float4 color)\n{\n}")), L"last");
      if (scene.graph->getNumPostprocessFragments() != 0 && !random_.percent(20))
        scene.environment->output = {};
      features.add("output fragment");
    }
  }

  void addPreprocess() {
    const WString input = random_.percent(4) ? L"float a, " : L"";
    RefPtr<AShaderFragment> made = scene.instance(
        *loadFragment(L"pre", functionJson(L"void pre(" + input +
                                               L"out float custom, out float3 p)\n{\ncustom = h(1);\n}",
                                           LR"(,"predefine":["float h(float a) { return 9; }"])")),
        L"pre0");
    scene.graph->addPreprocessFragment(made.get());
    if (random_.percent(70)) scene.graph->addFragment(made.get());
    features.add("pre-process fragment");
  }

  void addPostprocess() {
    scene.addPostprocess(L"post0", L"void post(" + outputsAsInputs() +
                                       L"out float4 color)\n{\ncolor = p0 + h(gain);\n}");
    if (random_.percent(50))
      scene.addPostprocess(L"post1", L"void post(float4 color, out float4 graded)\n{\ngraded = color;\n}");
    features.add("post-process fragment");
  }

  RandomChoice random_;
  std::vector<Kind> library_;
  std::vector<Node> nodes_;
};

}  // namespace TolmSDK::Graphics::sfg::test
