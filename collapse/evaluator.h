#pragma once

// Evaluation of fragment instances, without recursion.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>

#include "collapse/repeat_lists.h"
#include "collapse/text_forecast.h"
#include "sfg/fragment_instance.h"
#include "sfg/keyword_replace.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class AShaderCollapseContext;
struct ShaderCallText;

/// Writes what a depth-first walk over the sources of an instance would write, in that order, but with a
/// stack of its own and without walking where nothing would be written. Belongs to its context.
///
/// Repeats. Requirements, definition and declarations of an instance are written once, its call once (once
/// per active light), and the value of an inline expression follows from those of its inputs. So a second
/// visit of an instance writes nothing as long as the active profiles, the active light and the accumulators
/// stay as they are. Such a period is an *epoch*; the context says when a new one starts. Where neither the
/// instance nor anything that feeds it reads the current light, the active light may change. The one thing
/// that is written at every visit are the shader inputs of a shader function (the source of an input that the
/// consumer's code calls through sfg_shader). Each evaluation therefore leaves a *repeat list* with its
/// instance: the shader functions that were visited on the way and that would write again, in order. A second
/// visit in the same epoch redoes that list and nothing else; an empty list is passed over. Lists share
/// lists, and an instance that adds nothing hands on the list of its source: a chain above a shader function
/// costs a repeat nothing. An expression whose profile is of a host's own class may differ at every use: it,
/// and the expressions that hold its text, are written at every visit.
class FragmentEvaluator {
public:
  explicit FragmentEvaluator(AShaderCollapseContext& context) : context_(context) {}

  // Each answers false when the evaluation cannot be done: no active profile, a port that does not fit, a
  // source that is being evaluated itself (a cycle), a writer that fails.
  bool evaluate(FragmentInstance& instance);
  bool evaluate(FragmentInstance& instance, Array<WString>& outputValues);
  bool evaluateShader(FragmentInstance& instance, const Array<BuiltinFunction>& uses,
                      KeywordReplacePattern& callerPattern);
  bool appendInputValues(const FragmentInstance& instance, Array<WString>& values);

  /// Something changed that could make a second visit write.
  void startEpoch() noexcept { ++epoch_; }
  /// Another light is active: the same, but for instances without any light.
  void startLight() noexcept { ++light_; }

private:
  enum class Task : std::uint8_t { evaluate, evaluateInto, evaluateShader, collectInputs, repeat };

  struct ShaderUse {
    Array<BuiltinFunction> calls;
    KeywordReplacePattern* callerPattern;
    FragmentProfileInstance* caller = nullptr;  // whose pattern it is, when that is known
  };

  /// What the walk knows of an instance.
  struct InstanceState {
    RepeatLists::Number repeatList = RepeatLists::kEmpty;
    bool isUnderWay = false;
    bool readsLight = false;  // itself or something that feeds it
    bool changesAtEveryUse = false;
    std::uint64_t epoch = 0;  // of its last evaluation
    std::uint64_t light = 0;
  };

  /// One step of the walk that is under way.
  struct Frame {
    Task task = Task::evaluate;
    bool isWaiting = false;          // for the frame above, which evaluates the source of the next input
    bool sourceWritesAgain = false;  // what that frame, a shader function, would do at a second visit
    bool writesAgain = false;
    RepeatLists::Number list = RepeatLists::kEmpty;  // task repeat: what to redo
    const FragmentInstance* instance = nullptr;
    FragmentInstance* written = nullptr;  // the same, unless its inputs are all that is asked for
    FragmentInstance* source = nullptr;   // that feeds the next input
    bool readsLight = false;              // itself or something that feeds it
    bool changesAtEveryUse = false;       // something that feeds it
    std::uint64_t epoch = 0;              // at the start
    std::uint64_t light = 0;              // at the start
    std::size_t next = 0;                 // input, or item of the list
    Array<WString> inputValues;
    Array<WString>* values = nullptr;      // tasks evaluateInto and collectInputs: the caller's
    std::unique_ptr<ShaderUse> shaderUse;  // task evaluateShader
    Array<RepeatLists::Item> repeats;      // what a second visit of the instance would have to redo
  };

  using Frames = std::deque<Frame, StlAllocator<Frame>>;
  class Stack;
  class Run;

  static Frame frameOf(Task task, FragmentInstance& instance);
  bool run(Frame root);
  bool enter(Stack& stack, Frame frame);
  bool begin(Frame& frame);
  bool isFinished(const Frame& frame) const;
  bool visitNextInput(Stack& stack);
  bool visitNextItem(Stack& stack);
  bool enterSource(Stack& stack);
  bool takeInputValue(Frame& frame);
  void takeSpareTexts(Frame& frame);
  void giveBackTexts(Frame& frame);
  bool takeSourceValue(Frame& frame, std::size_t output);
  bool finish(Frame& frame);
  bool finishEvaluation(Frame& frame);
  void reserveTexts();
  bool writeCall(Frame& frame);
  bool finishShaderFunction(Frame& frame);
  bool writeRequirementsAndDefinition(Frame& frame);
  void allocateShaderInputs(Frame& frame);
  void writeShaderCalls(const Frame& frame);
  bool writeShaderCall(ShaderCallText& out, const Frame& frame, const Array<WString>& outputNames,
                       const BuiltinFunction& use);
  Frame shaderFrame(const FragmentInstance& caller, FragmentInstance& source, std::size_t input) const;
  Frame repeatFrame(RepeatLists::Number list) const;
  FragmentInstance* findSource(const FragmentInstance& instance, std::size_t input) const;
  InstanceState& stateOf(const FragmentInstance& instance);
  bool isEvaluated(const InstanceState& state) const {
    return state.epoch == epoch_ && (!state.readsLight || state.light == light_) && !state.changesAtEveryUse;
  }
  WString& body() const;

  AShaderCollapseContext& context_;
  Array<InstanceState> states_;  // by the instances' numbers
  std::uint64_t epoch_ = 1;
  std::uint64_t light_ = 1;
  std::uint64_t listsEpoch_ = 1;
  std::uint64_t listsLight_ = 1;
  std::size_t runs_ = 0;
  Frames frames_;
  Array<Array<WString>> spareTexts_;
  Array<WString> outputTexts_;
  TextRate declarations_;
  TextRate calls_;
  RepeatLists lists_;
};

}  // namespace TolmSDK::Graphics::sfg
