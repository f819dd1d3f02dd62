#pragma once

// The collapse as a plain recursive walk, kept for the tests: every fragment is evaluated whenever a consumer
// asks, and nothing is passed over. Takes time in proportion to the paths of a graph, and needs graphs
// without cycles and with ports that fit. Shares the context's writers and the profile instances with the
// real one, nothing else.

#include <map>
#include <set>
#include <string>

#include "profiles/shader_temporaries.h"
#include "sfg/fragment_profile_instance.h"
#include "sfg/shader_collapse_context.h"
#include "tests/support/describe.h"
#include "tests/support/test_graph.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg::test {

class LiteralCollapse {
public:
  explicit LiteralCollapse(const TestScene& scene) : scene_(scene) {
    context_.initialize(scene.language, scene.environment, nullptr, scene.options);
    context_.getResultProfile()->setProfilename(L"default");
    for (const auto& connection : scene.graph->getOutputConnections()) create(connection.fragment);
    for (const auto& light : scene.environment->lights) {
      lights_[light->instanceName()].create(*this, dynamic_cast<const AShaderFragment*>(light.get()));
    }
    context_.registerCustomStateVariables(scene.graph.get());
  }

  /// The result of the default tool for a graph whose outputs are fed by one fragment.
  std::string collapseDefault() {
    profile().setFunctionName(L"CollapsedFunction");
    for (std::size_t i = 0; i < scene_.graph->getNumInputs(); ++i) {
      profile().getFunctionParameters()->addInput(scene_.graph->getInputType(scene_.language.get(), i),
                                                  scene_.graph->getInputName(i));
    }
    for (std::size_t i = 0; i < scene_.graph->getNumOutputs(); ++i) {
      profile().getFunctionParameters()->addOutput(scene_.graph->getOutputType(scene_.language.get(), i),
                                                   scene_.graph->getOutputName(i));
    }
    if (!setSurfaceProfile(L"default")) return "null";
    const auto& connections = scene_.graph->getOutputConnections();
    Instance& root = find(connections[0].fragment);
    Array<WString> values(connections[0].fragment->getNumOutputs());
    for (std::size_t i = 0; i < connections.size(); ++i) {
      values[connections[i].index] = scene_.graph->getOutputName(i);
    }
    const Array<WString> names = values;
    if (!root.evaluate(*this, values)) throw Exception(L"Failed to evaluate fragment!");
    for (std::size_t i = 0; i < connections.size(); ++i) {
      const WString name = scene_.graph->getOutputName(i);
      const WString value =
          root.active->isInlineProfile() ? root.output(connections[i].index) : names[connections[i].index];
      if (value != name) write(L"    " + name + L" = " + value + L";\n");
    }
    context_.getResult()->getShaderInputTypes() = context_.getShaderInputTypes();
    return describe(context_.getResult());
  }

  std::string collapseLightLoop() {
    profile().setFunctionName(L"AccumulatedLitSurface");
    for (const auto& light : scene_.environment->lights) {
      const WString name = lightProfile(*light);
      Instance& instance = lights_[light->instanceName()];
      if (!setSurfaceProfile(name) || !instance.setProfile(*this, name)) {
        throw Exception(L"Failed to set light profile %s.", name);
      }
      instance.writeRequirements(*this);
    }
    writeLightLoop();

    Array<WString> values;
    for (const auto& connection : scene_.graph->getOutputConnections()) {
      Instance& instance = find(connection.fragment);
      if (instance.accumulators.empty() && !instance.evaluate(*this)) return "null";
      values.push_back(instance.output(connection.index));
    }
    profile().stateVariables().erase(StateVariable_currentLight);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const WString name = L"output_" + itos(static_cast<long long>(i));
      write(L"    " + name + L" = " + values[i] + L";\n");
      const AParameter* output = scene_.graph->getOutput(i);
      context_.getResult()->addOutput(output);
      profile().getFunctionParameters()->addOutput(scene_.language->getTypeName(output->getType()), name);
    }
    context_.getResult()->getShaderInputTypes() = context_.getShaderInputTypes();
    return describe(context_.getResult());
  }

private:
  struct Instance {
    const AShaderFragment* fragment = nullptr;
    FragmentProfileInstance* active = nullptr;
    std::map<const IShaderFragmentProfile*, FragmentProfileInstance> profiles;
    Array<RefPtr<AParameter const>> uniforms;
    Array<RefPtr<AParameter const>> inputUniforms;
    Array<WString> inputValues;
    Array<WString> accumulators;
    bool uniformsWritten = false;
    std::size_t number = 0;

    void create(LiteralCollapse& run, const AShaderFragment* made) {
      if (fragment != nullptr) return;
      fragment = made;
      number = ++run.created_;
      for (std::size_t i = 0; i < fragment->getNumUniforms(); ++i) {
        const AParameter* uniform = fragment->getUniform(i);
        uniforms.push_back(
            makeRef<OverrideNameParameter>(*uniform, uniform->getName() + fragment->instanceName()));
      }
      activate(run, fragment->findFirstProfile(run.scene_.language->getLanguageString()));
      inputValues.resize(fragment->getNumInputs());
      inputUniforms.resize(fragment->getNumInputs());
      for (std::size_t i = 0; i < fragment->getNumInputs(); ++i) {
        const bool connected = fragment->getInputConnections()[i].isConnected();
        if (connected && (active == nullptr || !active->IsShaderInput(i))) continue;
        makeInputUniform(run, i);
      }
    }

    void makeInputUniform(LiteralCollapse& run, std::size_t i) {
      const AParameter* input = fragment->getInput(i);
      const WString name = input->getName() + fragment->instanceName();
      inputUniforms[i] = makeRef<OverrideNameParameter>(*input, name);
      inputValues[i] = name;
      if (uniformsWritten) run.context_.getResult()->addUniform(inputUniforms[i].get());
    }

    void activate(LiteralCollapse& run, const IShaderFragmentProfile* profile) {
      active = nullptr;
      if (profile == nullptr) return;
      FragmentProfileInstance& instance = profiles[profile];
      if (!instance.isInitialized()) {
        WString suffix;
        for (std::size_t i = 0; i < fragment->getNumProfiles(); ++i) {
          if (fragment->getProfile(i) == profile && suffix.empty())
            suffix = itos(static_cast<long long>(i) + 1);
        }
        instance.create(run.scene_.language.get(), fragment,
                        dynamic_cast<const AShaderFragmentProfile*>(profile), suffix);
        for (std::size_t i = 0; i < uniforms.size(); ++i) {
          instance.getUniformOriginal().push_back(fragment->getUniform(i)->getName());
          instance.getUniformNew().push_back(uniforms[i]->getName());
        }
      }
      active = &instance;
    }

    bool setProfile(LiteralCollapse& run, const WString& name) {
      const UString& language = run.scene_.language->getLanguageString();
      const IShaderFragmentProfile* best = fragment->findBestProfile(name, language, 100.0f);
      if (best == nullptr) best = fragment->findBestProfile(L"default", language, 100.0f);
      if (best == nullptr) return false;
      activate(run, best);
      return true;
    }

    WString output(std::size_t index) const {
      return accumulators.empty() ? active->getOutputName(index) : accumulators[index];
    }

    bool evaluate(LiteralCollapse& run) {
      if (active == nullptr || !active->declareOutputs(run.body())) return false;
      Array<WString> values = active->getOutputNames();
      return evaluate(run, values);
    }

    bool evaluate(LiteralCollapse& run, Array<WString>& values) {
      if (active == nullptr || !active->declareUnspecifiedOutputs(run.body(), values)) return false;
      Array<WString> inputs;
      return buildInputs(run, inputs) && writeRequirements(run) && active->writeDefinition(run.context_) &&
             active->writeFunctionCall(run.body(), run.context_, inputs, values);
    }

    bool buildInputs(LiteralCollapse& run, Array<WString>& values) {
      for (std::size_t i = 0; i < fragment->getInputConnections().size(); ++i) {
        const ShaderFragmentConnection& connection = fragment->getInputConnections()[i];
        const IShaderFragmentGraph* graph = fragment->getOwnerGraph();
        if (connection.fragment != nullptr) {
          Instance& source = run.find(connection.fragment);
          Array<BuiltinFunction> uses;
          if (active->GetShaderFunctions(i, uses)) {
            if (!source.evaluateShader(run, uses, *active)) return false;
            if (inputValues[i].empty()) makeInputUniform(run, i);
            values.push_back(inputValues[i]);
          } else {
            if (!source.evaluate(run)) return false;
            values.push_back(source.output(connection.index));
          }
        } else if (graph != nullptr && connection.index < graph->getNumInputs()) {
          values.push_back(graph->getInputName(connection.index));
        } else {
          values.push_back(inputValues[i]);
        }
      }
      return true;
    }

    bool evaluateShader(LiteralCollapse& run, const Array<BuiltinFunction>& uses,
                        FragmentProfileInstance& caller) {
      if (active == nullptr || active->isInlineProfile() || !active->declareOutputs(run.body())) return false;
      Array<WString> outputs = active->getOutputNames();
      Array<WString> inputs;
      if (!active->declareUnspecifiedOutputs(run.body(), outputs) || !buildInputs(run, inputs) ||
          !writeRequirements(run) || !active->writeDefinition(run.context_)) {
        return false;
      }
      const ILanguageTraits* language = run.scene_.language.get();
      for (std::size_t i = 0; i < inputs.size(); ++i) {
        const ShaderFragmentConnection& connection = fragment->getInputConnections()[i];
        WString type;
        if (connection.fragment != nullptr) {
          type = fragment->getInputType(language, i);
        } else if (connection.isConnected()) {
          type = fragment->getOwnerGraph()->getInputType(language, connection.index);
        }
        if (type.empty()) continue;
        const WString name =
            L"state.shaderInput" + itos(static_cast<long long>(run.context_.getShaderInputTypes().size()));
        run.context_.allocateNewShaderInput(type);
        run.write(L"    " + name + L" = " + inputs[i] + L";\n");
        inputs[i] = name;
      }
      active->beginShaderFunctionCall();
      for (const BuiltinFunction& use : uses) {
        ShaderCallText call;
        if (writeUse(run, call, use, inputs, outputs))
          caller.replaceShaderUse(WString(use.range.view()), call);
      }
      active->endShaderFunctionCall();
      return true;
    }

    bool writeUse(LiteralCollapse& run, ShaderCallText& call, const BuiltinFunction& use,
                  Array<WString> inputs, Array<WString> outputs) {
      if (use.arguments.size() == 1) return false;
      std::set<std::size_t> given;
      for (std::size_t i = 1; i + 1 < use.arguments.size(); i += 2) {
        const WString name(use.arguments[i].view());
        const WString value(use.arguments[i + 1].view());
        if (active->GetInputTextParameterIndex(name) != kNotFound) {
          inputs[active->GetInputTextParameterIndex(name)] = value;
        } else if (active->GetOutputTextParameterIndex(name) != kNotFound) {
          outputs[active->GetOutputTextParameterIndex(name)] = value;
          given.insert(active->GetOutputTextParameterIndex(name));
        } else {
          return false;
        }
      }
      for (std::size_t i = 0; i < outputs.size(); ++i) {
        if (given.contains(i)) continue;
        outputs[i] += L"_temp";
        call.declare(active->getOutputType(i), outputs[i]);
      }
      return active->writeFunctionCall(call.text, run.context_, inputs, outputs);
    }

    bool writeRequirements(LiteralCollapse& run) {
      if (!uniformsWritten) {
        for (const auto& uniform : uniforms) run.context_.getResult()->addUniform(uniform.get());
        for (const auto& uniform : inputUniforms) {
          if (uniform) run.context_.getResult()->addUniform(uniform.get());
        }
      }
      uniformsWritten = true;
      return active == nullptr || active->writeRequirements(&run.profile(), run.context_);
    }

    void declareAccumulators(LiteralCollapse& run) {
      for (std::size_t i = 0; i < fragment->getNumOutputs(); ++i) {
        const AParameter* output = fragment->getOutput(i);
        accumulators.push_back(L"accumulate_" + fragment->instanceName() + L"_" + output->getName());
        run.write(L"    " + run.scene_.language->getTypeName(output->getType()) + L" " + accumulators.back() +
                  L" = " + run.scene_.language->getValueText(AValue(output->getType())) + L";\n");
      }
    }

    void accumulate(LiteralCollapse& run) {
      if (!evaluate(run)) return;
      for (std::size_t i = 0; i < accumulators.size(); ++i) {
        run.write(L"    " + accumulators[i] + L" += " + active->getOutputName(i) + L";\n");
      }
    }
  };

  void create(const IShaderFragment* fragment) {
    for (const auto& connection : fragment->getInputConnections()) {
      if (connection.fragment != nullptr) create(connection.fragment);
    }
    find(fragment).create(*this, dynamic_cast<const AShaderFragment*>(fragment));
  }

  Instance& find(const IShaderFragment* fragment) { return surfaces_[fragment->instanceName()]; }

  bool setSurfaceProfile(const WString& name) {
    for (auto& [key, instance] : surfaces_) {
      if (!instance.setProfile(*this, name)) return false;
    }
    return true;
  }

  WString lightProfile(const IShaderFragment& light) const {
    const IShaderFragmentProfile* wanted = scene_.options->getLightProfile(&light);
    return wanted != nullptr ? wanted->getProfilename() : L"default";
  }

  void collectLit(const IShaderFragment* fragment, std::map<std::size_t, Instance*>& lit) {
    Instance& instance = find(fragment);
    if (instance.active != nullptr && instance.active->requiresCurrentLight()) {
      lit[instance.number] = &instance;
      return;
    }
    for (const auto& connection : fragment->getInputConnections()) {
      if (connection.fragment != nullptr) collectLit(connection.fragment, lit);
    }
  }

  void writeLightLoop() {
    const WString separator = L"    // " + WString(60, L'-') + L" \n";
    std::map<std::size_t, Instance*> lit;
    for (const auto& connection : scene_.graph->getOutputConnections()) collectLit(connection.fragment, lit);
    for (const auto& [number, instance] : lit) instance->declareAccumulators(*this);
    if (scene_.environment->lights.empty()) {
      write(separator + L"    // default light \n" + separator);
      if (!setSurfaceProfile(L"default")) throw Exception(L"Failed to set default profile.");
      for (const auto& [number, instance] : lit) instance->accumulate(*this);
    }
    for (std::size_t i = 0; i < scene_.environment->lights.size(); ++i) {
      context_.setActiveLightIndex(i);
      write(separator + L"    // Light " + itos(static_cast<long long>(i)) + L" \n" + separator);
      const IShaderFragment& light = *scene_.environment->lights[i];
      const WString name = lightProfile(light);
      if (!setSurfaceProfile(name)) throw Exception(L"Failed to set light profile %s.", name);
      bool required = false;
      for (auto& [key, instance] : surfaces_) {
        required = required || (instance.active != nullptr && instance.active->requiresCurrentLight());
      }
      if (required) {
        Instance& instance = lights_[light.instanceName()];
        instance.setProfile(*this, name);
        instance.evaluate(*this);
        context_.setCurrentLight(name, instance.output(0));
      }
      for (const auto& [number, instance] : lit) instance->accumulate(*this);
    }
  }

  AShaderFragmentProfile& profile() { return *context_.getResultProfile(); }
  WString& body() { return profile().getFunctionBody(); }
  void write(const WString& text) { context_.writeCode(std::wstring_view(text)); }

  const TestScene& scene_;
  AShaderCollapseContext context_;
  std::map<WString, Instance> surfaces_;
  std::map<WString, Instance> lights_;
  std::size_t created_ = 0;
};

}  // namespace TolmSDK::Graphics::sfg::test
