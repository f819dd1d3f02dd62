#pragma once

// A collapse as a plain recursive walk that follows every path of the graph and passes over nothing. For
// graphs without cycles and with few paths. It reads fragments, graphs and hosts through their accessors and
// shares no code with the tools that it judges.

#include <deque>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "sfg/shader_fragment_graph.h"
#include "tests/model/collapsed_text.h"
#include "tests/model/model_accumulator.h"
#include "tests/model/model_instance.h"
#include "tolmsdk/host_interfaces.h"

namespace TolmSDK::Graphics::sfg::model {

/// What a collapse reads.
struct Input {
  const IShaderFragmentGraph* graph;
  const IShadingEnvironment* environment;
  const IShaderOptions* options;
  const ILanguageTraits* language;
};

/// The description of the default tool's result, "null", or the message it throws.
std::string collapseDefault(const Input& input);
/// The same for the light-loop tool.
std::string collapseLightLoop(const Input& input);

class Failure : public std::runtime_error {
public:
  explicit Failure(const std::wstring& message);
};

class Collapse {
public:
  explicit Collapse(const Input& input);

  /// Each answers false when there is no result.
  bool runDefault();
  bool runLightLoop();
  const CollapsedText& result() const { return result_; }

private:
  // Before the graph is evaluated.
  void prepare();
  void checkOutputs();
  bool addConversion(const IShaderFragment& target);
  void createInstances();
  void createSurface(const IShaderFragment& fragment);
  void makeInputs(Instance& instance);
  void makeInput(Instance& instance, std::size_t input);
  void registerCustomStateVariables();
  void prepareChains();
  void writePreprocess();

  // Choosing profiles.
  bool setProfile(Instance& instance, const std::wstring& name, float lod);
  bool trySetProfile(Instance& instance, const std::wstring& name, float lod);
  bool setSurfaceProfile(const std::wstring& name);
  std::wstring lightProfile(const IShaderFragment& light) const;
  bool requiresLight() const;

  // Evaluating instances.
  bool evaluate(Instance& instance);
  bool evaluate(Instance& instance, std::vector<std::wstring>& outputs);
  bool safeEvaluate(Instance& instance);
  void accumulate(Instance& instance);
  void declareAccumulators(Instance& instance);
  bool buildInputs(Instance& instance, std::vector<std::wstring>& values);
  bool buildInput(Instance& instance, std::size_t input, std::wstring& value);
  bool evaluateShader(Instance& instance, const std::vector<BuiltinCall>& uses, Pattern& callerShaders);
  void passShaderInputs(const Instance& instance, std::vector<std::wstring>& values);
  bool writeUse(std::wstring& out, Instance& instance, const BuiltinCall& use,
                std::vector<std::wstring> inputs, std::vector<std::wstring> outputs);
  void declareOutputs(ProfileInstance& instance);
  bool declareUnspecified(ProfileInstance& instance, std::vector<std::wstring>& outputs);

  // Writing what instances need.
  void writeRequirements(Instance& instance);
  void writePredefines(ProfileInstance& instance);
  std::wstring completePredefines(const ProfileInstance& instance);
  void writeDefinition(ProfileInstance& instance);
  std::wstring completeDefinition(ProfileInstance& instance);
  bool writeCall(std::wstring& out, ProfileInstance& instance, const std::vector<std::wstring>& inputs,
                 const std::vector<std::wstring>& outputs);
  void writeExpression(ProfileInstance& instance, const std::vector<std::wstring>& inputs);
  void writeLightFunctions();
  std::wstring expandLights(std::wstring text) const;
  void appendSnippet(const std::wstring& text, const std::vector<std::wstring>& values,
                     const Pattern& pattern, Pattern& renames, const std::wstring& definition);
  void addStateParameters(std::vector<TextPort>& inputs, const Profile& profile) const;

  // The light loop and the outputs.
  void writeLightRequirements();
  void writeLightLoop();
  void writeLight(std::size_t index);
  std::vector<Instance*> collectLit();
  void collectLit(const IShaderFragment& fragment, std::map<std::size_t, Instance*>& lit);
  bool evaluateOutputs(std::vector<std::wstring>& values);
  void writeOutputs(const std::vector<std::wstring>& values);
  void runPostprocess(std::vector<std::wstring> values);
  void addOutput(const AParameter& parameter, const std::wstring& name);
  bool findOutputFragment(const IShaderFragment*& fragment) const;
  bool evaluateInto(Instance& root);
  bool assignOutputs(const Instance& root);
  void addGraphUniforms();

  std::wstring typeName(const AParameter& parameter) const;
  std::wstring defaultText(const AParameter& parameter) const;
  std::wstring language() const;
  void write(const std::wstring& text) { result_.body += text; }
  Instance& surface(const IShaderFragment& fragment);

  Input input_;
  CollapsedText result_;
  Accumulator accumulator_;
  std::map<std::wstring, Instance> surfaces_;
  std::map<std::wstring, Instance> lights_;
  std::deque<Instance> preprocess_;
  std::deque<Instance> postprocess_;
  std::map<std::wstring, std::wstring> customTypes_;
  std::wstring lightType_;
  std::wstring lightName_;
  std::size_t activeLight_ = 0;
  std::size_t created_ = 0;
  bool areLightFunctionsWritten_ = false;
};

}  // namespace TolmSDK::Graphics::sfg::model
