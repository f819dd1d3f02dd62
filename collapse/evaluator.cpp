#include "collapse/evaluator.h"

#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <utility>

#include "profiles/shader_temporaries.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile_inline.h"
#include "sfg/size_limit.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// Characters that the values of one frame may hold to be kept for the next.
constexpr std::size_t kLargestSpare = 4096;

/// Holds a shader-function call open.
class ShaderCallScope {
public:
  explicit ShaderCallScope(FragmentProfileInstance& instance) : instance_(instance) {
    instance_.beginShaderFunctionCall();
  }
  ~ShaderCallScope() { instance_.endShaderFunctionCall(); }
  ShaderCallScope(const ShaderCallScope&) = delete;
  ShaderCallScope& operator=(const ShaderCallScope&) = delete;

private:
  FragmentProfileInstance& instance_;
};

/// Whether the value is an expression that a host's own class writes, which may be another one at every use.
bool isOwnExpression(const FragmentProfileInstance& instance) {
  const AShaderFragmentProfile& profile = *instance.getProfile();
  return instance.isInlineProfile() && typeid(profile) != typeid(AShaderFragmentProfileInline);
}

/// Whether a writer may read the active light, also without saying so. Functions that do not say so are
/// written once.
bool mayReadLight(const FragmentProfileInstance& instance) {
  return instance.requiresCurrentLight() || isOwnExpression(instance);
}

/// Whether a function takes as many values as there are inputs. An inline expression says so itself.
bool fitsParameters(const FragmentProfileInstance& instance, std::size_t values) {
  if (instance.isInlineProfile()) return true;
  const ITextParameterList* parameters = instance.getProfile()->getFunctionParameters();
  return parameters == nullptr || parameters->getNumInputs() == values;
}

/// Whether every value belongs to an output of the function.
bool fitsOutputs(const FragmentProfileInstance& instance, const Array<WString>& values) {
  if (instance.isInlineProfile()) return true;
  for (std::size_t i = instance.getNumOutputs(); i < values.size(); ++i) {
    if (!values[i].empty()) return false;
  }
  return true;
}

std::size_t totalLength(const Array<WString>& texts) {
  std::size_t length = 0;
  for (const WString& text : texts) length += text.size();
  return length;
}

std::size_t totalCapacity(const Array<WString>& texts) {
  std::size_t capacity = 0;
  for (const WString& text : texts) capacity += text.capacity();
  return capacity;
}

/// The type of the value that an input receives: of the port when a fragment feeds it, of the graph input
/// that feeds it; empty for an input that nothing feeds.
const WString& inputValueType(const AShaderFragment& fragment, const ILanguageTraits* language,
                              std::size_t input) {
  static const WString none;
  const ShaderFragmentConnection& connection = fragment.getInputConnections()[input];
  if (connection.fragment != nullptr) {
    const bool hasPort = input < fragment.getNumInputs() && fragment.getInput(input) != nullptr;
    return hasPort ? fragment.getInputType(language, input) : none;
  }
  const IShaderFragmentGraph* graph = fragment.getOwnerGraph();
  const bool hasGraphInput = graph != nullptr && connection.index < graph->getNumInputs() &&
                             graph->getInput(connection.index) != nullptr;
  return hasGraphInput ? graph->getInputType(language, connection.index) : none;
}

}  // namespace

/// The frames of one run, on top of those of the runs that wait for it. Instances are under way as long as a
/// frame that writes them is in here: a writer may ask for the inputs of the instance that it writes.
class FragmentEvaluator::Stack {
public:
  explicit Stack(FragmentEvaluator& evaluator)
      : evaluator_(evaluator), frames_(evaluator.frames_), below_(frames_.size()) {}
  ~Stack() {
    while (!empty()) pop();
  }
  Stack(const Stack&) = delete;
  Stack& operator=(const Stack&) = delete;

  bool empty() const { return frames_.size() == below_; }
  Frame& top() { return frames_.back(); }
  void push(Frame&& frame) {
    frames_.push_back(std::move(frame));
    if (top().written != nullptr) evaluator_.stateOf(*top().written).isUnderWay = true;
  }
  void pop() {
    if (top().written != nullptr) evaluator_.stateOf(*top().written).isUnderWay = false;
    frames_.pop_back();
  }

private:
  FragmentEvaluator& evaluator_;
  Frames& frames_;
  std::size_t below_;
};

/// Forgets the repeat lists of former epochs and lights, but none that an evaluated instance or a run under
/// way still needs. An instance that does not read the light has no list.
class FragmentEvaluator::Run {
public:
  explicit Run(FragmentEvaluator& evaluator) : evaluator_(evaluator) {
    const bool isOld =
        evaluator_.listsEpoch_ != evaluator_.epoch_ || evaluator_.listsLight_ != evaluator_.light_;
    if (evaluator_.runs_++ == 0 && isOld) evaluator_.lists_.clear();
  }
  ~Run() {
    if (--evaluator_.runs_ != 0) return;
    evaluator_.listsEpoch_ = evaluator_.epoch_;
    evaluator_.listsLight_ = evaluator_.light_;
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

private:
  FragmentEvaluator& evaluator_;
};

// What the instances call.

bool FragmentEvaluator::evaluate(FragmentInstance& instance) {
  if (!context_.admit(instance)) return false;
  if (const InstanceState& state = stateOf(instance); isEvaluated(state))
    return state.repeatList == RepeatLists::kEmpty || run(repeatFrame(state.repeatList));
  return run(frameOf(Task::evaluate, instance));
}

bool FragmentEvaluator::evaluate(FragmentInstance& instance, Array<WString>& outputValues) {
  Frame frame = frameOf(Task::evaluateInto, instance);
  frame.values = &outputValues;
  return run(std::move(frame));
}

bool FragmentEvaluator::evaluateShader(FragmentInstance& instance, const Array<BuiltinFunction>& uses,
                                       KeywordReplacePattern& callerPattern) {
  Frame frame = frameOf(Task::evaluateShader, instance);
  frame.shaderUse = std::make_unique<ShaderUse>(ShaderUse{uses, &callerPattern, nullptr});
  return run(std::move(frame));
}

bool FragmentEvaluator::appendInputValues(const FragmentInstance& instance, Array<WString>& values) {
  Frame frame;
  frame.task = Task::collectInputs;
  frame.instance = &instance;
  frame.values = &values;
  return run(std::move(frame));
}

FragmentEvaluator::Frame FragmentEvaluator::frameOf(Task task, FragmentInstance& instance) {
  Frame frame;
  frame.task = task;
  frame.instance = &instance;
  frame.written = &instance;
  return frame;
}

// The walk.

bool FragmentEvaluator::run(Frame root) {
  const Run scope(*this);
  Stack stack(*this);
  if (!enter(stack, std::move(root))) return false;
  while (!stack.empty()) {
    Frame& frame = stack.top();
    if (!isFinished(frame)) {
      const bool done = frame.task == Task::repeat ? visitNextItem(stack) : visitNextInput(stack);
      if (!done) return false;
      continue;
    }
    if (!finish(frame)) return false;
    const bool writesAgain = frame.writesAgain;
    giveBackTexts(frame);
    stack.pop();
    if (!stack.empty()) stack.top().sourceWritesAgain = writesAgain;
  }
  return true;
}

bool FragmentEvaluator::enter(Stack& stack, Frame frame) {
  if (frame.task != Task::repeat) {
    if (!context_.admit(*frame.instance)) return false;
    if (frame.written != nullptr && stateOf(*frame.written).isUnderWay) return false;
    if (frame.instance->activeProfileInstance_ == nullptr || !begin(frame)) return false;
  }
  frame.epoch = epoch_;
  frame.light = light_;
  stack.push(std::move(frame));
  return true;
}

/// Declares the outputs: consumers are written behind their sources, but declared in front of them.
bool FragmentEvaluator::begin(Frame& frame) {
  FragmentProfileInstance& active = *frame.instance->activeProfileInstance_;
  switch (frame.task) {
  case Task::evaluate: {
    const std::size_t before = body().size();
    const bool done = active.declareOutputs(body());
    declarations_.add(body().size() - before);
    return done;
  }
  // An expression has no function to call.
  case Task::evaluateShader: return !active.isInlineProfile() && active.declareOutputs(body());
  case Task::evaluateInto:
    return fitsOutputs(active, *frame.values) && active.declareUnspecifiedOutputs(body(), *frame.values);
  default: return true;
  }
}

bool FragmentEvaluator::isFinished(const Frame& frame) const {
  if (frame.task == Task::repeat) return frame.next == lists_.size(frame.list);
  return frame.next == frame.instance->fragment_->getInputConnections().size();
}

bool FragmentEvaluator::visitNextInput(Stack& stack) {
  Frame& frame = stack.top();
  if (!frame.isWaiting) {
    const bool hasSource = frame.instance->fragment_->getInputConnections()[frame.next].fragment != nullptr;
    if (hasSource && !enterSource(stack)) return false;
    if (frame.isWaiting) return true;
  }
  frame.isWaiting = false;
  return takeInputValue(frame);
}

/// Starts what the source of the next input still has to write, and then waits for it.
bool FragmentEvaluator::enterSource(Stack& stack) {
  Frame& frame = stack.top();
  frame.source = findSource(*frame.instance, frame.next);
  if (frame.source == nullptr) return false;
  if (frame.instance->activeProfileInstance_->IsShaderInput(frame.next)) {
    frame.isWaiting = true;
    return enter(stack, shaderFrame(*frame.instance, *frame.source, frame.next));
  }
  if (!context_.admit(*frame.source)) return false;
  const InstanceState& source = stateOf(*frame.source);
  if (!isEvaluated(source)) {
    frame.isWaiting = true;
    return enter(stack, frameOf(Task::evaluate, *frame.source));
  }
  if (source.repeatList == RepeatLists::kEmpty) return true;
  frame.isWaiting = true;
  return enter(stack, repeatFrame(source.repeatList));
}

bool FragmentEvaluator::visitNextItem(Stack& stack) {
  Frame& frame = stack.top();
  const RepeatLists::Item item = lists_.item(frame.list, frame.next++);
  if (item.list != RepeatLists::kEmpty) return enter(stack, repeatFrame(item.list));
  FragmentInstance* source = findSource(*item.caller, item.input);
  return source != nullptr && enter(stack, shaderFrame(*item.caller, *source, item.input));
}

/// The value of the next input, whose source (when it has one) is evaluated.
bool FragmentEvaluator::takeInputValue(Frame& frame) {
  const FragmentInstance& instance = *frame.instance;
  const ShaderFragmentConnection& connection = instance.fragment_->getInputConnections()[frame.next];
  if (frame.next == 0) takeSpareTexts(frame);
  if (connection.fragment != nullptr) {
    if (!takeSourceValue(frame, connection.index)) return false;
  } else {
    const IShaderFragmentGraph* graph = instance.fragment_->getOwnerGraph();
    if (graph != nullptr && connection.index < graph->getNumInputs()) {
      if (graph->getInput(connection.index) == nullptr) return false;
      frame.inputValues[frame.next] = graph->getInputName(connection.index);
    } else if (frame.next < instance.inputs().size()) {
      frame.inputValues[frame.next] = instance.inputValue(frame.next);
    } else {
      return false;
    }
  }
  ++frame.next;
  return true;
}

/// The values of a frame are written into the texts of one that is done, which have their memory already.
void FragmentEvaluator::takeSpareTexts(Frame& frame) {
  if (!spareTexts_.empty()) {
    frame.inputValues = std::move(spareTexts_.back());
    spareTexts_.pop_back();
  }
  frame.inputValues.resize(frame.instance->fragment_->getInputConnections().size());
}

void FragmentEvaluator::giveBackTexts(Frame& frame) {
  // Long expressions are not kept.
  if (frame.inputValues.empty() || totalCapacity(frame.inputValues) > kLargestSpare) return;
  spareTexts_.push_back(std::move(frame.inputValues));
}

bool FragmentEvaluator::takeSourceValue(Frame& frame, std::size_t output) {
  const FragmentInstance& instance = *frame.instance;
  if (instance.activeProfileInstance_->IsShaderInput(frame.next)) {
    if (frame.next >= instance.inputs().size()) return false;
    instance.createLateInputUniform(context_, frame.next);
    frame.inputValues[frame.next] = instance.inputValue(frame.next);
    frame.readsLight = true;  // shader functions are taken to read it
    if (frame.sourceWritesAgain) frame.repeats.push_back({RepeatLists::kEmpty, frame.instance, frame.next});
    return true;
  }
  if (!frame.source->hasActiveProfileOutput(output)) return false;
  frame.inputValues[frame.next].clear();
  frame.source->appendActiveProfileOutput(frame.inputValues[frame.next], output);
  const InstanceState& source = stateOf(*frame.source);
  if (source.readsLight) frame.readsLight = true;
  if (source.changesAtEveryUse) frame.changesAtEveryUse = true;
  if (source.repeatList != RepeatLists::kEmpty) frame.repeats.push_back({source.repeatList, nullptr, 0});
  return true;
}

bool FragmentEvaluator::finish(Frame& frame) {
  switch (frame.task) {
  case Task::evaluate:
  case Task::evaluateInto: return finishEvaluation(frame);
  case Task::evaluateShader: return finishShaderFunction(frame);
  case Task::collectInputs:
    for (WString& value : frame.inputValues) frame.values->push_back(std::move(value));
    return true;
  case Task::repeat: return true;
  }
  return false;
}

bool FragmentEvaluator::finishEvaluation(Frame& frame) {
  FragmentProfileInstance& active = *frame.instance->activeProfileInstance_;
  if (!writeRequirementsAndDefinition(frame)) return false;

  // An expression checks its own length.
  if (!active.isInlineProfile()) checkTextLength(body().size() + totalLength(frame.inputValues));
  const std::size_t before = body().size();
  if (!writeCall(frame)) return false;
  checkTextLength(body().size());
  calls_.add(body().size() - before);
  reserveTexts();

  InstanceState& state = stateOf(*frame.instance);
  state.repeatList = lists_.add(frame.repeats);
  state.epoch = frame.epoch;
  state.light = frame.light;
  state.readsLight = frame.readsLight || mayReadLight(active);
  state.changesAtEveryUse = active.isInlineProfile() && (frame.changesAtEveryUse || isOwnExpression(active));
  return true;
}

/// Forecasts the whole from what the instances so far have written. Without a forecast texts grow on their
/// own.
void FragmentEvaluator::reserveTexts() {
  const std::size_t instances = context_.countSurfaceInstances();
  if (calls_.pieces >= instances) return;
  const auto reserve = [](WString& text, double rest) {
    if (rest > static_cast<double>(text.capacity() - text.size())) growTo(text, rest);
  };
  if (isAlmostFull(body())) reserve(body(), declarations_.rest(instances) + calls_.rest(instances));
  WString& definitions = context_.getResultProfile()->predefines();
  if (isAlmostFull(definitions))
    reserve(definitions, TextRate{calls_.pieces, definitions.size()}.rest(instances));
}

bool FragmentEvaluator::writeCall(Frame& frame) {
  FragmentProfileInstance& active = *frame.instance->activeProfileInstance_;
  if (frame.values != nullptr)
    return active.writeFunctionCall(body(), context_, frame.inputValues, *frame.values);
  // The names of the outputs are no values for an inline expression, which replaces them while it is written.
  if (active.isInlineProfile())
    return active.writeFunctionCall(body(), context_, frame.inputValues, active.getOutputNames());

  // Names in texts that serve one call after another; a writer may evaluate something else in between.
  Array<WString> names = std::move(outputTexts_);
  names.resize(active.getNumOutputs());
  for (std::size_t i = 0; i < names.size(); ++i) {
    names[i].clear();
    active.appendOutputName(names[i], i);
  }
  const bool done = active.writeFunctionCall(body(), context_, frame.inputValues, names);
  outputTexts_ = std::move(names);
  return done;
}

bool FragmentEvaluator::finishShaderFunction(Frame& frame) {
  if (!writeRequirementsAndDefinition(frame)) return false;

  const std::size_t allocatedBefore = context_.getShaderInputTypes().size();
  allocateShaderInputs(frame);
  frame.writesAgain = !frame.repeats.empty() || context_.getShaderInputTypes().size() != allocatedBefore;
  writeShaderCalls(frame);
  return true;
}

bool FragmentEvaluator::writeRequirementsAndDefinition(Frame& frame) {
  FragmentProfileInstance& active = *frame.instance->activeProfileInstance_;
  return fitsParameters(active, frame.inputValues.size()) && frame.written->writeRequirements(context_) &&
         active.writeDefinition(context_);
}

/// Hands every input value that has a type over to the shader function through the state.
void FragmentEvaluator::allocateShaderInputs(Frame& frame) {
  const FragmentInstance& instance = *frame.instance;
  for (std::size_t i = 0; i < frame.inputValues.size(); ++i) {
    const WString& type = inputValueType(*instance.fragment_, instance.language_.get(), i);
    if (type.empty()) continue;
    WString name = formatted(L"state.shaderInput%Iu", context_.getShaderInputTypes().size());
    context_.allocateNewShaderInput(type);
    context_.writeCodef(L"    %s = %s;\n", name, frame.inputValues[i]);
    frame.inputValues[i] = std::move(name);
  }
}

void FragmentEvaluator::writeShaderCalls(const Frame& frame) {
  FragmentProfileInstance& active = *frame.instance->activeProfileInstance_;
  const Array<WString> outputNames = active.getOutputNames();
  const ShaderCallScope scope(active);
  // Uses of one text are replaced by the last call: set once, however many there are.
  struct Replacement {
    std::wstring_view use;
    ShaderCallText call;
  };
  Array<Replacement> replacements;
  std::unordered_map<std::wstring_view, std::size_t> placeOf;
  for (const BuiltinFunction& use : frame.shaderUse->calls) {
    ShaderCallText call;
    if (!writeShaderCall(call, frame, outputNames, use)) continue;
    const auto [known, isNew] = placeOf.emplace(use.range.view(), replacements.size());
    if (isNew) replacements.push_back({use.range.view(), {}});
    replacements[known->second].call = std::move(call);
  }

  const ShaderUse& uses = *frame.shaderUse;
  for (Replacement& replacement : replacements) {
    const WString use(replacement.use);
    if (uses.caller != nullptr)
      uses.caller->replaceShaderUse(use, std::move(replacement.call));
    else
      uses.callerPattern->overrideReplacePattern(use, replacement.call.text);
  }
}

/// One call of the shader function: pairs of parameter name and value replace input values and output
/// variables.
bool FragmentEvaluator::writeShaderCall(ShaderCallText& out, const Frame& frame,
                                        const Array<WString>& outputNames, const BuiltinFunction& use) {
  if (use.arguments.size() == 1) return false;
  FragmentProfileInstance& active = *frame.instance->activeProfileInstance_;
  Array<WString> inputs = frame.inputValues;
  Array<WString> outputs = outputNames;
  Array<bool> isGiven(outputs.size(), false);
  for (std::size_t i = 1; i + 1 < use.arguments.size(); i += 2) {
    const WString name(use.arguments[i].view());
    const WString value(use.arguments[i + 1].view());
    const std::size_t input = active.GetInputTextParameterIndex(name);
    const std::size_t output = active.GetOutputTextParameterIndex(name);
    if (input < inputs.size()) {
      inputs[input] = value;
    } else if (input == kNotFound && output < outputs.size()) {
      outputs[output] = value;
      isGiven[output] = true;
    } else {
      return false;
    }
  }

  // Outputs that the caller does not ask for still need a variable.
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    if (isGiven[i]) continue;
    outputs[i] += L"_temp";
    out.declare(active.getOutputType(i), outputs[i]);
  }
  checkTextLength(out.text.size() + totalLength(inputs) + totalLength(outputs));
  return active.writeFunctionCall(out.text, context_, inputs, outputs);
}

// Parts of the above.

FragmentEvaluator::Frame FragmentEvaluator::shaderFrame(const FragmentInstance& caller,
                                                        FragmentInstance& source, std::size_t input) const {
  Frame frame = frameOf(Task::evaluateShader, source);
  FragmentProfileInstance& active = *caller.activeProfileInstance_;
  frame.shaderUse = std::make_unique<ShaderUse>(ShaderUse{{}, &active.getShaderReplacePattern(), &active});
  active.GetShaderFunctions(input, frame.shaderUse->calls);
  return frame;
}

FragmentEvaluator::Frame FragmentEvaluator::repeatFrame(RepeatLists::Number list) const {
  Frame frame;
  frame.task = Task::repeat;
  frame.list = list;
  return frame;
}

/// The instance of the fragment that feeds an input; null when that is no fragment of ours.
FragmentInstance* FragmentEvaluator::findSource(const FragmentInstance& instance, std::size_t input) const {
  const IShaderFragment* connected = instance.fragment_->getInputConnections()[input].fragment;
  if (input < instance.inputs().size()) {
    FragmentInstance* known = instance.inputs()[input].source;
    if (known != nullptr && known->fragment_.get() == connected) return known;
  }
  const auto* fragment = dynamic_cast<const AShaderFragment*>(connected);
  return fragment != nullptr ? &context_.getFragmentInstance(fragment) : nullptr;
}

/// Of an instance that the context has admitted.
FragmentEvaluator::InstanceState& FragmentEvaluator::stateOf(const FragmentInstance& instance) {
  if (states_.size() <= instance.number_) states_.resize(instance.number_ + std::size_t{1});
  return states_[instance.number_];
}

WString& FragmentEvaluator::body() const { return context_.getResultProfile()->getFunctionBody(); }

}  // namespace TolmSDK::Graphics::sfg
