#include "collapse/fragment_walk.h"

#include <algorithm>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_profile_inline.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// Characters that the values of one visit may hold to be kept for the next.
constexpr std::size_t kLargestSpare = 4096;

/// Whether the value is an expression that a host's own class writes, which may be another one at every use.
bool isOwnExpression(const FragmentProfileInstance& instance) {
  const AShaderFragmentProfile& profile = *instance.getProfile();
  return instance.isInlineProfile() && typeid(profile) != typeid(AShaderFragmentProfileInline);
}

bool callsSources(const FragmentInstance& instance) {
  const std::size_t inputs = instance.getShaderFragment()->getInputConnections().size();
  for (std::size_t i = 0; i < inputs; ++i)
    if (instance.getActiveProfileInstance()->IsShaderInput(i)) return true;
  return false;
}

std::size_t totalCapacity(const Array<WString>& texts) {
  std::size_t capacity = 0;
  for (const WString& text : texts) capacity += text.capacity();
  return capacity;
}

}  // namespace

/// The visits of one run. Forgets the repeat lists of former epochs, but none that a run under way or what
/// was evaluated since the epoch began still needs.
class FragmentWalk::Run {
public:
  explicit Run(FragmentWalk& walk) : walk_(walk), below_(walk.stack_.size()) {
    walk_.isLightUsed_ = true;
    if (walk_.runs_++ == 0 && walk_.listsEpoch_ != walk_.epoch_) walk_.lists_.clear();
  }
  ~Run() {
    // A run that failed has not written all that was pending.
    if (!isDone()) walk_.isPendingKnown_ = false;
    while (!isDone()) walk_.leave();
    if (--walk_.runs_ == 0) walk_.listsEpoch_ = walk_.epoch_;
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  bool isDone() const { return walk_.stack_.size() == below_; }

private:
  FragmentWalk& walk_;
  std::size_t below_;
};

// What the instances call.

bool FragmentWalk::evaluate(FragmentInstance& instance) {
  if (!context_.admit(instance)) return false;
  if (!isEvaluated(instance)) return run(evaluationOf(instance));
  if (writesAgain(instance) && !run(repetitionOf(instance))) return false;
  return !isOutdatedExpression(instance) || run(rewritingOf(instance));
}

bool FragmentWalk::evaluate(FragmentInstance& instance, Array<WString>& outputValues) {
  Evaluation visit = evaluationOf(instance);
  visit.outputs = &outputValues;
  return run(std::move(visit));
}

bool FragmentWalk::evaluateShader(FragmentInstance& instance, const Array<BuiltinFunction>& uses,
                                  KeywordReplacePattern& callerPattern) {
  ShaderCall visit;
  visit.instance = visit.written = &instance;
  visit.uses = std::make_unique<ShaderUses>(ShaderUses{uses, &callerPattern, nullptr});
  return run(std::move(visit));
}

bool FragmentWalk::appendInputValues(const FragmentInstance& instance, Array<WString>& values) {
  Collection visit;
  visit.instance = &instance;
  visit.out = &values;
  return run(std::move(visit));
}

// What makes second visits write.

void FragmentWalk::startEpoch() noexcept {
  ++epoch_;
  time_ = 0;
  hasOwnExpressions_ = false;
  laterWriters_.clear();
  pending_.clear();
  isPendingKnown_ = true;
}

void FragmentWalk::startLight() noexcept {
  isLightUsed_ = false;
  isPendingKnown_ = false;
  if (hasOwnExpressions_) startEpoch();
}

/// An expression that reads the light is made once for each light, under whatever choice that is.
void FragmentWalk::startChoice() noexcept {
  isPendingKnown_ = false;
  if (hasOwnExpressions_ || isLightUsed_) startEpoch();
}

void FragmentWalk::startProfile(const FragmentInstance& instance) {
  if (!context_.admit(instance)) return;
  Record& record = recordOf(instance);
  isPendingKnown_ = false;
  laterWriters_.changeProfile();
  record.epoch = 0;
  if (record.isUnderWay || record.isUsed) startEpoch();
}

// The stack.

template <class AnyVisit>
bool FragmentWalk::run(AnyVisit first) {
  const Run scope(*this);
  if (!enter(std::move(first))) return false;
  while (!scope.isDone()) {
    const Step step = advance();
    if (step == Step::failed) return false;
    if (step == Step::done) leave();
  }
  return true;
}

template <class AnyVisit>
bool FragmentWalk::enter(AnyVisit visit) {
  ++visits_;
  if (!begin(visit)) return false;
  const FragmentInstance* written = nullptr;
  if constexpr (std::is_base_of_v<InputValues, AnyVisit>) written = visit.written;
  stack_.emplace_back(std::move(visit));
  // A writer may ask for the inputs of the instance that it writes, but not for the instance.
  if (written != nullptr) recordOf(*written).isUnderWay = true;
  return true;
}

FragmentWalk::Step FragmentWalk::advance() {
  return std::visit([this](auto& visit) { return advance(visit); }, stack_.back());
}

void FragmentWalk::leave() {
  std::visit([this](auto& visit) { leave(visit); }, stack_.back());
  stack_.pop_back();
}

template <class AnyVisit>
void FragmentWalk::leave(AnyVisit& visit) {
  if constexpr (std::is_base_of_v<Findings, AnyVisit>) repeats_.resize(visit.firstRepeat);
  if constexpr (std::is_base_of_v<InputValues, AnyVisit>) {
    if (visit.written != nullptr) recordOf(*visit.written).isUnderWay = false;
    giveBackTexts(visit);
  }
}

bool FragmentWalk::canVisit(const InputValues& visit) {
  if (!context_.admit(*visit.instance)) return false;
  if (visit.written != nullptr && recordOf(*visit.written).isUnderWay) return false;
  return visit.instance->getActiveProfileInstance() != nullptr;
}

// What a visit begins with. Consumers are written behind their sources, but declared in front of them.

bool FragmentWalk::begin(Evaluation& visit) {
  if (!canVisit(visit)) return false;
  start(visit);
  return visit.outputs != nullptr ? writer_.declareOutputs(*visit.written, *visit.outputs)
                                  : writer_.declareOutputs(*visit.written);
}

bool FragmentWalk::begin(ShaderCall& visit) {
  if (!canVisit(visit)) return false;
  start(visit);
  // An expression has no function to call.
  return !visit.written->getActiveProfileInstance()->isInlineProfile() &&
         writer_.declareOutputs(*visit.written);
}

bool FragmentWalk::begin(Collection& visit) {
  start(visit);
  return canVisit(visit);
}

void FragmentWalk::start(Findings& findings) {
  findings.firstRepeat = static_cast<std::uint32_t>(repeats_.size());
  findings.epoch = epoch_;
  findings.start = findings.first = ++time_;
}

// The next step of a visit.

template <class InputsVisit>
FragmentWalk::Step FragmentWalk::advance(InputsVisit& visit) {
  const auto& connections = visit.instance->getShaderFragment()->getInputConnections();
  while (visit.next < connections.size()) {
    const bool hasSource = connections[visit.next].fragment != nullptr;
    if (const Step step = hasSource ? visitSource(visit) : Step::done; step != Step::done) return step;
    if (!takeInputValue(visit)) return Step::failed;
    if (hasSource) noteSource(visit);
    visit.source = nullptr;
    ++visit.next;
  }
  return finish(visit) ? Step::done : Step::failed;
}

/// Visits the source of the next input, the first time it is asked.
template <class WalkingVisit>
FragmentWalk::Step FragmentWalk::visitSource(WalkingVisit& visit) {
  if (visit.source == nullptr) {
    visit.source = findSource(*visit.instance, visit.next);
    if (visit.source == nullptr) return Step::failed;
    FragmentInstance& source = *visit.source;
    visit.asked = time_;
    recordOf(source).isUsed = true;
    visit.isCalled = visit.instance->getActiveProfileInstance()->IsShaderInput(visit.next);
    if (visit.isCalled) {
      noteCall(*visit.instance);
      noteCall(source);
      return stepInto(shaderCallOf(*visit.instance, source, visit.next));
    }
    if (!isEvaluated(source)) return stepInto(evaluationOf(source));
    if (writesAgain(source)) return stepInto(repetitionOf(source));
  }
  if (!visit.isCalled && isOutdatedExpression(*visit.source)) return stepInto(rewritingOf(*visit.source));
  return Step::done;
}

FragmentWalk::Step FragmentWalk::visitSource(Rewriting& visit) {
  visit.source = findSource(*visit.instance, visit.next);
  if (visit.source == nullptr) return Step::failed;
  visit.isCalled = visit.instance->getActiveProfileInstance()->IsShaderInput(visit.next);
  if (!visit.isCalled && isOutdatedExpression(*visit.source)) return stepInto(rewritingOf(*visit.source));
  return Step::done;
}

bool FragmentWalk::takeInputValue(InputValues& visit) {
  const FragmentInstance& instance = *visit.instance;
  const auto& connections = instance.getShaderFragment()->getInputConnections();
  if (visit.next == 0) takeSpareTexts(visit);
  WString& value = visit.values[visit.next];
  value.clear();
  if (visit.source == nullptr) return writer_.writeOpenInput(value, instance, visit.next);
  if (visit.isCalled) return writer_.writeCalledInput(value, instance, visit.next);
  return writer_.writeOutputOf(value, *visit.source, connections[visit.next].index);
}

template <class WalkingVisit>
void FragmentWalk::noteSource(WalkingVisit& visit) {
  Findings& findings = visit;
  if (visit.isCalled) {
    findings.first = std::min(findings.first, finishedCall_.first);
    if (finishedCall_.writesAgain)
      repeats_.push_back({RepeatLists::kEmpty, visit.instance, visit.next, finishedCall_.start});
    return;
  }
  const Record& source = recordOf(*visit.source);
  findings.first = std::min(findings.first, source.first);
  if (source.changesAtEveryUse) findings.changesAtEveryUse = true;
  if (source.repeats == RepeatLists::kEmpty) return;
  const bool isFirstVisit = source.start > visit.asked;
  repeats_.push_back(isFirstVisit ? RepeatLists::Item{source.repeats, nullptr, 0, 0}
                                  : lists_.again(source.repeats, time_));
}

FragmentWalk::Step FragmentWalk::advance(Repetition& visit) {
  if (visit.instance != nullptr && visit.epoch != epoch_) {
    // What was pending is no longer known.
    FragmentInstance& instance = *std::exchange(visit.instance, nullptr);
    visit.list = RepeatLists::kEmpty;
    return stepInto(evaluationOf(instance));
  }
  // Shader functions write behind what was visited before them, and the rest comes behind all of the list.
  const bool isAtEnd = visit.next >= lists_.size(visit.list);
  const RepeatLists::Item item = isAtEnd ? RepeatLists::Item() : lists_.item(visit.list, visit.next);
  const std::uint32_t until = isAtEnd ? visit.to : item.time;
  if (const Step step = writePending(visit.from, until); step != Step::done) return step;
  if (isAtEnd) return Step::done;

  ++visit.next;
  if (item.list != RepeatLists::kEmpty)
    return stepInto(Repetition{item.list, 0, nullptr, visit.epoch, visit.from, 0});
  FragmentInstance* source = findSource(*item.caller, item.input);
  return source != nullptr ? stepInto(shaderCallOf(*item.caller, *source, item.input)) : Step::failed;
}

/// The next of what is pending in that time.
FragmentWalk::Step FragmentWalk::writePending(std::uint32_t from, std::uint32_t to) {
  for (std::size_t i = pending_.findFirst(from, to); i != kNotFound; i = pending_.findFirst(from, to)) {
    FragmentInstance& instance = *pending_[i].instance;
    const bool isDeclaration = pending_[i].isDeclaration;
    pending_.remove(i);
    if (!isDeclaration) return stepInto(rewritingOf(instance));
    ++visits_;
    if (!writer_.declareOutputs(instance)) return Step::failed;
  }
  return Step::done;
}

// What a visit ends with.

bool FragmentWalk::finish(Evaluation& visit) {
  const bool done = visit.outputs != nullptr ? writer_.write(*visit.written, visit.values, *visit.outputs)
                                             : writer_.write(*visit.written, visit.values);
  if (done) noteEvaluation(visit);
  return done;
}

bool FragmentWalk::finish(ShaderCall& visit) {
  const std::size_t allocated = context_.getShaderInputTypes().size();
  if (!writer_.writeShaderFunction(*visit.written, visit.values, *visit.uses)) return false;
  const bool allocates = context_.getShaderInputTypes().size() != allocated;
  finishedCall_ = {allocates || !repeatsOf(visit).empty(), visit.start, visit.first};
  return true;
}

bool FragmentWalk::finish(Collection& visit) {
  for (WString& value : visit.values) visit.out->push_back(std::move(value));
  return true;
}

bool FragmentWalk::finish(Rewriting& visit) {
  if (!writer_.write(*visit.written, visit.values)) return false;
  recordOf(*visit.written).choice = profiles_.number();
  return true;
}

void FragmentWalk::noteEvaluation(const Evaluation& visit) {
  const FragmentProfileInstance& active = *visit.written->getActiveProfileInstance();
  Record& record = recordOf(*visit.written);
  record.choice = profiles_.number();
  record.changesAtEveryUse = active.isInlineProfile() && (visit.changesAtEveryUse || isOwnExpression(active));
  record.repeats = lists_.add(repeatsOf(visit));
  if (record.changesAtEveryUse) hasOwnExpressions_ = true;
  // What changed on the way may concern what was visited before.
  const bool isFirst = record.epoch != epoch_;
  record.epoch = visit.epoch;
  record.start = visit.start;
  record.first = visit.first;
  record.end = ++time_;
  if (isFirst && record.epoch == epoch_) laterWriters_.add(*visit.written);
}

// What is known.

/// Whether nothing below the instance writes but its repeat list and what is pending between its start and
/// its end.
bool FragmentWalk::isEvaluated(const FragmentInstance& instance) {
  if (!isVisited(instance) || recordOf(instance).changesAtEveryUse) return false;
  updatePending();
  // What feeds it and was visited before it has been written by now, unless the order is another one this
  // time.
  const Record& record = recordOf(instance);
  if (record.first < record.start && pending_.findFirst(record.first, record.start - 1) != kNotFound)
    startEpoch();
  return record.epoch == epoch_;
}

bool FragmentWalk::writesAgain(const FragmentInstance& instance) {
  const Record& record = recordOf(instance);
  return record.repeats != RepeatLists::kEmpty || pending_.findFirst(record.start, record.end) != kNotFound;
}

bool FragmentWalk::isOutdatedExpression(const FragmentInstance& source) {
  const FragmentProfileInstance* active = source.getActiveProfileInstance();
  return active != nullptr && active->isInlineProfile() && recordOf(source).choice != profiles_.number();
}

void FragmentWalk::noteCall(const FragmentInstance& instance) {
  Record& record = recordOf(instance);
  if (record.callEpoch == epoch_) return;
  record.callEpoch = epoch_;
  laterWriters_.addCall(instance);
}

/// Finds out what is pending for the active light and the choice in force. Where that cannot be told a new
/// epoch begins.
void FragmentWalk::updatePending() {
  if (std::exchange(isPendingKnown_, true)) return;
  Array<PendingWrites::Write> writes;
  auto& writers =
      laterWriters_.find([this](const FragmentInstance& instance) { return isVisited(instance); });
  bool isKnown = writers.keepsCalls;
  std::erase_if(writers.instances, [&](FragmentInstance* instance) {
    bool isDone = false;
    isKnown = isKnown && addPending(writes, *instance, isDone);
    return isDone;
  });
  if (isKnown)
    pending_.assign(std::move(writes));
  else
    startEpoch();
}

/// False when the instance has no profile, or one that calls its sources and did not in this epoch. Tells
/// whether it will never write again.
bool FragmentWalk::addPending(Array<PendingWrites::Write>& writes, FragmentInstance& instance, bool& isDone) {
  const FragmentProfileInstance* active = instance.getActiveProfileInstance();
  if (active == nullptr) return false;
  const Record& record = recordOf(instance);
  if (!isVisited(instance)) return true;
  if (record.callEpoch != epoch_ && callsSources(instance)) return false;
  const bool isWritten = active->isCallWritten();
  if (!isWritten) writes.push_back({record.start, &instance, true});
  const bool isPending =
      !isWritten || (active->writesForEveryLight() && !active->isCallWritten(context_.getActiveLightIndex()));
  if (isPending) writes.push_back({record.end, &instance, false});
  isDone = isWritten && !active->writesForEveryLight();
  return true;
}

// Parts of the above.

FragmentWalk::Evaluation FragmentWalk::evaluationOf(FragmentInstance& instance) {
  Evaluation visit;
  visit.instance = visit.written = &instance;
  return visit;
}

FragmentWalk::Rewriting FragmentWalk::rewritingOf(FragmentInstance& instance) {
  Rewriting visit;
  visit.instance = visit.written = &instance;
  return visit;
}

FragmentWalk::ShaderCall FragmentWalk::shaderCallOf(const FragmentInstance& caller, FragmentInstance& source,
                                                    std::size_t input) const {
  FragmentProfileInstance& active = *caller.getActiveProfileInstance();
  ShaderCall visit;
  visit.instance = visit.written = &source;
  visit.uses = std::make_unique<ShaderUses>(ShaderUses{{}, &active.getShaderReplacePattern(), &active});
  active.GetShaderFunctions(input, visit.uses->calls);
  return visit;
}

FragmentWalk::Repetition FragmentWalk::repetitionOf(FragmentInstance& instance) {
  const Record& record = recordOf(instance);
  return {record.repeats, 0, &instance, record.epoch, record.start, record.end};
}

/// The instance of the fragment that feeds an input; null when that is no fragment of ours.
FragmentInstance* FragmentWalk::findSource(const FragmentInstance& instance, std::size_t input) const {
  const IShaderFragment* connected = instance.getShaderFragment()->getInputConnections()[input].fragment;
  if (FragmentInstance* known = instance.findSource(input, connected)) return known;
  const auto* fragment = dynamic_cast<const AShaderFragment*>(connected);
  return fragment != nullptr ? &context_.getFragmentInstance(fragment) : nullptr;
}

/// Up to that of an instance.
void FragmentWalk::makeRecords(const FragmentInstance& last) {
  if (records_.empty()) records_.reserve(profiles_.countInstances() + 1);
  records_.resize(last.getNumber() + std::size_t{1});
}

std::span<const RepeatLists::Item> FragmentWalk::repeatsOf(const Findings& findings) const {
  return std::span(repeats_).subspan(findings.firstRepeat);
}

/// The values of a visit are written into the texts of one that is done, which have their memory already.
void FragmentWalk::takeSpareTexts(InputValues& visit) {
  if (!spareTexts_.empty()) {
    visit.values = std::move(spareTexts_.back());
    spareTexts_.pop_back();
  }
  visit.values.resize(visit.instance->getShaderFragment()->getInputConnections().size());
}

/// Long expressions are not kept.
void FragmentWalk::giveBackTexts(InputValues& visit) {
  if (!visit.values.empty() && totalCapacity(visit.values) <= kLargestSpare)
    spareTexts_.push_back(std::move(visit.values));
}

}  // namespace TolmSDK::Graphics::sfg
