#pragma once

// Evaluation of fragment instances, without recursion and without walking where nothing is written.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <utility>
#include <variant>
#include <vector>

#include "collapse/call_writer.h"
#include "collapse/later_writers.h"
#include "collapse/pending_writes.h"
#include "collapse/repeat_lists.h"
#include "collapse/surface_profiles.h"
#include "sfg/fragment_instance.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class AShaderCollapseContext;

/// Writes what a depth-first walk over the sources of an instance would write, in that order, but with a
/// stack of its own and without walking where nothing would be written. Belongs to its context.
///
/// A *visit* evaluates an instance: it visits the sources of its inputs, then writes. Requirements,
/// definition, declarations and call are written once by each profile of an instance, the call once for each
/// light when the profile reads the light. So most second visits write nothing. What they do write is known
/// beforehand:
///
/// - Shader functions (the source of an input that the consumer's code calls through sfg_shader) write their
///   inputs at every visit. Each visit leaves a *repeat list* with its instance: the shader functions visited
///   on the way that write again, in order. A second visit redoes that list. Lists share lists, and an
///   instance that adds nothing hands on the list of its source.
/// - For another light, instances that read it write their call again. For another choice of profiles,
///   instances with a profile that was not written yet write all. These are *pending*: in the order of the
///   first visits, which is that of the text, they are written when a visit of what they feed comes to them.
///   They write by themselves; what is between them and the visited instance is not visited.
/// - An inline expression writes no text of its own. Its value is made again when another choice of profiles
///   may have changed it and somebody writes it.
///
/// - A pending instance that calls sources as functions calls them first, each at the time of the first call.
///   So does the first caller of a function that has another profile.
///
/// All this holds as long as instances keep their connections and call the same inputs. Such a period is an
/// *epoch*; in a new one every instance is visited again. When a choice of profiles makes them call others,
/// the epoch is left, and comes back with a choice under which they call as they did in it.
class FragmentWalk {
public:
  FragmentWalk(AShaderCollapseContext& context, SurfaceProfiles& profiles)
      : context_(context), profiles_(profiles), writer_(context), laterWriters_(profiles) {}

  // Each answers false when the evaluation cannot be done: no active profile, a port that does not fit, a
  // source that is being evaluated itself (a cycle), a writer that fails.
  bool evaluate(FragmentInstance& instance);
  bool evaluate(FragmentInstance& instance, Array<WString>& outputValues);
  bool evaluateShader(FragmentInstance& instance, const Array<BuiltinFunction>& uses,
                      KeywordReplacePattern& callerPattern);
  bool appendInputValues(const FragmentInstance& instance, Array<WString>& values);

  /// Something changed that could make any second visit write.
  void startEpoch() noexcept;
  /// Another light is active.
  void startLight() noexcept;
  /// Another choice of profiles is in force that differs in special profiles only.
  void startChoice() noexcept;
  /// An instance has another profile, by itself.
  void startProfile(const FragmentInstance& instance);

  /// Visits so far, of all kinds, and pending writes.
  std::size_t countVisits() const noexcept { return visits_; }

private:
  /// What the walk knows of an instance. Times count the visits of an epoch.
  struct Record {
    RepeatLists::Number repeats = RepeatLists::kEmpty;
    std::uint32_t epoch = 0;  // of its evaluation, which was from `start` to `end`
    std::uint32_t start = 0;
    std::uint32_t end = 0;
    std::uint32_t first = 0;  // start of what feeds it and was evaluated first
    bool isUnderWay = false;
    bool isUsed = false;             // by the evaluation of another one
    bool changesAtEveryUse = false;  // an expression of a host's own class, or one that holds such a one
  };

  /// What its consumer asks of a shader call that is done.
  struct FinishedCall {
    bool writesAgain = false;
    std::uint32_t start = 0;
    std::uint32_t first = 0;
  };

  /// The values of an instance's inputs, which all visits but repetitions collect one after another.
  struct InputValues {
    const FragmentInstance* instance = nullptr;
    FragmentInstance* written = nullptr;  // the same, unless its inputs are all that is asked for
    FragmentInstance* source = nullptr;   // of the next input, once it is found
    Array<WString> values;
    std::uint32_t next = 0;   // input
    std::uint32_t asked = 0;  // the time when its source was found
    bool isCalled = false;    // is that source
  };
  /// What a walk over the sources finds out. Its repeats are those of the walk from `firstRepeat` on.
  struct Findings {
    std::uint32_t firstRepeat = 0;
    std::uint32_t epoch = 0;
    std::uint32_t start = 0;
    std::uint32_t first = 0;
    bool changesAtEveryUse = false;
  };

  /// Evaluates an instance, into given values when there are some.
  struct Evaluation : InputValues, Findings {
    Array<WString>* outputs = nullptr;
  };
  /// Evaluates an instance as the function that its consumer calls.
  struct ShaderCall : InputValues, Findings {
    std::unique_ptr<ShaderUses> uses;  // few instances are called, but many visits are under way
    bool isFirst = false;              // call of the instance in its epoch
  };
  /// Evaluates the sources of an instance and hands over the values of its inputs.
  struct Collection : InputValues, Findings {
    Array<WString>* out = nullptr;
  };
  /// Writes an instance whose sources are evaluated.
  struct Rewriting : InputValues {
    bool changesAtEveryUse = false;
  };
  /// Redoes a repeat list. That of an evaluated instance also writes what is pending below it.
  struct Repetition {
    RepeatLists::Number list = RepeatLists::kEmpty;
    std::size_t next = 0;
    FragmentInstance* instance = nullptr;  // null for a list in a list
    std::uint32_t epoch = 0;
    std::uint32_t from = 0;  // what is pending from that time
    std::uint32_t to = 0;
  };
  using Visit = std::variant<Evaluation, ShaderCall, Collection, Rewriting, Repetition>;
  using Visits = std::deque<Visit, StlAllocator<Visit>>;

  /// What is known of an epoch that was left.
  struct LeftEpoch {
    std::uint32_t epoch;
    std::uint32_t time;
    std::uint32_t listsEpoch;
    Array<Record> records;
    RepeatLists lists;
    LaterWriters laterWriters;
  };

  enum class Step { done, entered, failed };
  class Run;

  static Evaluation evaluationOf(FragmentInstance& instance);
  static Rewriting rewritingOf(FragmentInstance& instance);
  ShaderCall shaderCallOf(const FragmentInstance& caller, FragmentInstance& source, std::size_t input) const;
  Repetition repetitionOf(FragmentInstance& instance);

  // The stack.
  template <class AnyVisit>
  bool run(AnyVisit first);
  template <class AnyVisit>
  bool enter(AnyVisit visit);
  template <class AnyVisit>
  Step stepInto(AnyVisit visit) {
    return enter(std::move(visit)) ? Step::entered : Step::failed;
  }
  Step advance();
  void leave();
  template <class AnyVisit>
  void leave(AnyVisit& visit);
  bool canVisit(const InputValues& visit);

  // What a visit begins with.
  bool begin(Evaluation& visit);
  bool begin(ShaderCall& visit);
  bool begin(Collection& visit);
  bool begin(Rewriting& visit) { return canVisit(visit); }
  bool begin(Repetition&) { return true; }
  void start(Findings& findings);

  // Its next step.
  template <class InputsVisit>
  Step advance(InputsVisit& visit);
  Step advance(Repetition& visit);
  template <class WalkingVisit>
  Step visitSource(WalkingVisit& visit);
  Step visitSource(Rewriting& visit);
  bool takeInputValue(InputValues& visit);
  template <class WalkingVisit>
  void noteSource(WalkingVisit& visit);
  void noteSource(Rewriting& visit);
  void noteCall(const Evaluation& visit);
  void noteCall(const ShaderCall& visit);
  void noteCall(const Collection&) {}
  LaterWriters::Call finishedCall(const InputValues& visit, bool isInEvaluation) const;
  Step writePending(std::uint32_t from, std::uint32_t to);

  // What it ends with.
  bool finish(Evaluation& visit);
  bool finish(ShaderCall& visit);
  bool finish(Collection& visit);
  bool finish(Rewriting& visit);
  void noteEvaluation(const Evaluation& visit);

  // What is known.
  bool isEvaluated(const FragmentInstance& instance);
  bool hasPendingSources(const Record& record);
  bool writesAgain(const FragmentInstance& instance);
  bool isOutdatedExpression(const FragmentInstance& source);
  bool isVisited(const FragmentInstance& instance) { return recordOf(instance).epoch == epoch_; }
  std::uint32_t& choiceOf(const FragmentInstance& instance);
  void updatePending();
  bool findPending();
  bool returnToEpoch();
  void leaveEpoch();
  void swapWith(LeftEpoch& left) noexcept;
  void beginEpoch() noexcept;
  bool addPending(Array<PendingWrites::Write>& writes, FragmentInstance& instance);
  static bool addPendingCall(Array<PendingWrites::Write>& writes, const LaterWriters::Call& call,
                             const FragmentInstance& awaitedBy);
  static bool isDone(const PendingWrites::Write& write);
  FragmentInstance* findSource(const FragmentInstance& instance, std::size_t input) const;
  /// Of an instance that the context has admitted.
  Record& recordOf(const FragmentInstance& instance) {
    if (records_.size() <= instance.getNumber()) makeRecords(instance);
    return records_[instance.getNumber()];
  }
  void makeRecords(const FragmentInstance& last);
  std::span<const RepeatLists::Item> repeatsOf(const Findings& findings) const;
  void takeSpareTexts(InputValues& visit);
  void giveBackTexts(InputValues& visit);

  AShaderCollapseContext& context_;
  SurfaceProfiles& profiles_;
  CallWriter writer_;

  // The visits under way; those of a run are on top of those of the runs that wait for it.
  Visits stack_;
  std::size_t runs_ = 0;
  std::size_t visits_ = 0;
  FinishedCall finishedCall_;
  Array<RepeatLists::Item> repeats_;  // of the visits under way, one behind another
  Array<Array<WString>> spareTexts_;

  // What is known since the epoch began.
  std::uint32_t epoch_ = 1;
  std::uint32_t time_ = 0;
  Array<Record> records_;  // by the instances' numbers
  RepeatLists lists_;
  std::uint32_t listsEpoch_ = 1;
  LaterWriters laterWriters_;
  PendingWrites pending_;
  bool isPendingKnown_ = true;
  bool isLightUsed_ = false;  // something was evaluated under the active light

  std::uint32_t lastEpoch_ = 1;
  std::vector<std::unique_ptr<LeftEpoch>> left_;  // the one left last comes last
  Array<std::uint32_t> choices_;  // by the instances' numbers: under which the expression was made last
};

}  // namespace TolmSDK::Graphics::sfg
