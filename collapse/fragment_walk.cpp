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

/// Epochs that are kept when they are left. Each holds what is known of every instance.
constexpr std::size_t kLeftEpochs = 8;

/// Whether the value is an expression that a host's own class writes, which may be another one at every use.
bool isOwnExpression(const FragmentProfileInstance& instance) {
  const AShaderFragmentProfile& profile = *instance.getProfile();
  return instance.isInlineProfile() && typeid(profile) != typeid(AShaderFragmentProfileInline);
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
  updatePending();
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
  left_.clear();
  beginEpoch();
}

void FragmentWalk::startLight() noexcept {
  isLightUsed_ = false;
  isPendingKnown_ = false;
}

/// An expression that reads the light is made once for each light, under whatever choice that is.
void FragmentWalk::startChoice() noexcept {
  isPendingKnown_ = false;
  if (isLightUsed_) startEpoch();
}

void FragmentWalk::startProfile(const FragmentInstance& instance) {
  if (!context_.admit(instance)) return;
  Record& record = recordOf(instance);
  isPendingKnown_ = false;
  laterWriters_.changeProfile();
  record.epoch = 0;
  left_.clear();
  const bool isCalled = laterWriters_.findFirstCall(instance) != nullptr;
  if (record.isUnderWay || record.isUsed || isCalled) startEpoch();
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
  visit.isFirst = laterWriters_.addCalled(*visit.written, visit.start);
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
    if (visit.isCalled) return stepInto(shaderCallOf(*visit.instance, source, visit.next));
    if (!isEvaluated(source)) return stepInto(evaluationOf(source));
    if (writesAgain(source)) return stepInto(repetitionOf(source));
  }
  if (!visit.isCalled && isOutdatedExpression(*visit.source)) return stepInto(rewritingOf(*visit.source));
  return Step::done;
}

FragmentWalk::Step FragmentWalk::visitSource(Rewriting& visit) {
  if (visit.source != nullptr) return Step::done;
  visit.source = findSource(*visit.instance, visit.next);
  if (visit.source == nullptr) return Step::failed;
  FragmentInstance& source = *visit.source;
  visit.isCalled = visit.instance->getActiveProfileInstance()->IsShaderInput(visit.next);
  if (visit.isCalled) return Step::done;
  const bool isMadeAnew = recordOf(source).changesAtEveryUse || isOutdatedExpression(source);
  return isMadeAnew ? stepInto(rewritingOf(source)) : Step::done;
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
    noteCall(visit);
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

void FragmentWalk::noteSource(Rewriting& visit) {
  if (!visit.isCalled && recordOf(*visit.source).changesAtEveryUse) visit.changesAtEveryUse = true;
}

// What an epoch's first visits of a caller find out holds for all.

void FragmentWalk::noteCall(const Evaluation& visit) {
  const bool isFirst = visit.epoch == epoch_ && !isVisited(*visit.instance);
  if (isFirst) laterWriters_.addCall(*visit.source, finishedCall(visit, true));
}

void FragmentWalk::noteCall(const ShaderCall& visit) {
  if (visit.isFirst && visit.epoch == epoch_)
    laterWriters_.addCall(*visit.source, finishedCall(visit, false));
}

LaterWriters::Call FragmentWalk::finishedCall(const InputValues& visit, bool isInEvaluation) const {
  return {visit.written, visit.next, finishedCall_.start, finishedCall_.writesAgain, isInEvaluation};
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
    const PendingWrites::Write write = pending_[i];
    FragmentInstance& instance = *write.instance;
    pending_.remove(i);
    if (isDone(write)) continue;
    if (write.awaitedBy != nullptr) {
      FragmentInstance* source = findSource(instance, write.input);
      return source != nullptr ? stepInto(shaderCallOf(instance, *source, write.input)) : Step::failed;
    }
    if (!write.isDeclaration) return stepInto(rewritingOf(instance));
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
  const LaterWriters::Call* first = laterWriters_.findFirstCall(*visit.written);
  finishedCall_ = {allocates || !repeatsOf(visit).empty(), visit.start,
                   first != nullptr ? std::min(visit.first, first->time) : visit.first};
  return true;
}

bool FragmentWalk::finish(Collection& visit) {
  for (WString& value : visit.values) visit.out->push_back(std::move(value));
  return true;
}

bool FragmentWalk::finish(Rewriting& visit) {
  if (!writer_.write(*visit.written, visit.values)) return false;
  const FragmentProfileInstance& active = *visit.written->getActiveProfileInstance();
  recordOf(*visit.written).changesAtEveryUse =
      active.isInlineProfile() && (visit.changesAtEveryUse || isOwnExpression(active));
  choiceOf(*visit.written) = profiles_.number();
  return true;
}

void FragmentWalk::noteEvaluation(const Evaluation& visit) {
  const FragmentProfileInstance& active = *visit.written->getActiveProfileInstance();
  Record& record = recordOf(*visit.written);
  choiceOf(*visit.written) = profiles_.number();
  record.changesAtEveryUse = active.isInlineProfile() && (visit.changesAtEveryUse || isOwnExpression(active));
  // Its place is that of the first visit.
  if (record.epoch == epoch_) return;
  record.repeats = lists_.add(repeatsOf(visit));
  // What changed on the way may concern what was visited before.
  record.epoch = visit.epoch;
  record.start = visit.start;
  record.first = visit.first;
  record.end = ++time_;
  if (record.epoch == epoch_) laterWriters_.add(*visit.written);
}

// What is known.

/// Whether nothing below the instance writes but its repeat list and what is pending between its start and
/// its end.
bool FragmentWalk::isEvaluated(const FragmentInstance& instance) {
  if (!isVisited(instance) || recordOf(instance).changesAtEveryUse) return false;
  updatePending();
  // What feeds it and was visited before it has been written by now, unless the order is another one this
  // time.
  if (hasPendingSources(recordOf(instance))) startEpoch();
  return recordOf(instance).epoch == epoch_;
}

bool FragmentWalk::hasPendingSources(const Record& record) {
  if (record.first == record.start) return false;
  for (;;) {
    const std::size_t found = pending_.findFirst(record.first, record.start - 1);
    if (found == kNotFound) return false;
    if (!isDone(pending_[found])) return true;
    pending_.remove(found);
  }
}

/// Whether another visit has made what the definition waited for.
bool FragmentWalk::isDone(const PendingWrites::Write& write) {
  return write.awaitedBy != nullptr && write.awaitedBy->getActiveProfileInstance()->isDefinitionWritten();
}

bool FragmentWalk::writesAgain(const FragmentInstance& instance) {
  const Record& record = recordOf(instance);
  return record.repeats != RepeatLists::kEmpty || pending_.findFirst(record.start, record.end) != kNotFound;
}

bool FragmentWalk::isOutdatedExpression(const FragmentInstance& source) {
  const FragmentProfileInstance* active = source.getActiveProfileInstance();
  return active != nullptr && active->isInlineProfile() && choiceOf(source) != profiles_.number();
}

/// Finds out what is pending for the active light and the choice in force. Where that cannot be told another
/// epoch begins.
void FragmentWalk::updatePending() {
  if (std::exchange(isPendingKnown_, true) || findPending()) return;
  // What is under way belongs to the epoch.
  if (runs_ != 0) {
    startEpoch();
  } else if (!returnToEpoch()) {
    leaveEpoch();
  }
}

/// False when it cannot be told.
bool FragmentWalk::findPending() {
  const auto isEvaluated = [this](const FragmentInstance& instance) { return isVisited(instance); };
  auto& writers = laterWriters_.find(isEvaluated);
  if (!writers.keepsCalls) return false;
  Array<PendingWrites::Write> writes;
  bool isKnown = true;
  std::erase_if(writers.instances, [&](FragmentInstance* instance) {
    isKnown = isKnown && addPending(writes, *instance);
    return LaterWriters::isDone(*instance, isVisited(*instance));
  });
  if (isKnown) pending_.assign(std::move(writes));
  return isKnown;
}

/// False when the instance has no profile, or is called by nobody knows whom.
bool FragmentWalk::addPending(Array<PendingWrites::Write>& writes, FragmentInstance& instance) {
  const FragmentProfileInstance* active = instance.getActiveProfileInstance();
  if (active == nullptr) return false;
  if (isVisited(instance)) {
    const Record& record = recordOf(instance);
    const bool isWritten = active->isCallWritten();
    if (!isWritten) {
      writes.push_back({record.start, &instance, true});
      laterWriters_.forEachCall(instance, [&](const LaterWriters::Call& call) {
        if (call.isInEvaluation && !active->isDefinitionWritten()) addPendingCall(writes, call, instance);
      });
    }
    const bool isPending = !isWritten || (active->writesForEveryLight() &&
                                          !active->isCallWritten(context_.getActiveLightIndex()));
    if (isPending) writes.push_back({record.end, &instance, false});
  }
  const LaterWriters::Call* first = laterWriters_.findFirstCall(instance);
  return first == nullptr || active->isDefinitionWritten() || addPendingCall(writes, *first, instance);
}

/// False when the caller is not known.
bool FragmentWalk::addPendingCall(Array<PendingWrites::Write>& writes, const LaterWriters::Call& call,
                                  const FragmentInstance& awaitedBy) {
  if (call.caller == nullptr) return false;
  if (!call.isRepeated) writes.push_back({call.time, call.caller, false, &awaitedBy, call.input});
  return true;
}

// Epochs.

void FragmentWalk::beginEpoch() noexcept {
  epoch_ = ++lastEpoch_;
  time_ = 0;
  laterWriters_.clear();
  pending_.clear();
  isPendingKnown_ = true;
}

void FragmentWalk::swapWith(LeftEpoch& left) noexcept {
  std::swap(epoch_, left.epoch);
  std::swap(time_, left.time);
  std::swap(listsEpoch_, left.listsEpoch);
  std::swap(records_, left.records);
  std::swap(lists_, left.lists);
  std::swap(laterWriters_, left.laterWriters);
}

/// False when the instances call in none of the epochs that were left as they do now.
bool FragmentWalk::returnToEpoch() {
  for (std::size_t i = left_.size(); i-- != 0;) {
    swapWith(*left_[i]);
    if (findPending()) {
      std::rotate(left_.begin() + static_cast<std::ptrdiff_t>(i),
                  left_.begin() + static_cast<std::ptrdiff_t>(i) + 1, left_.end());
      return true;
    }
    swapWith(*left_[i]);
  }
  return false;
}

/// Begins a new epoch. This one is kept, and the one left longest ago forgotten when they are many.
void FragmentWalk::leaveEpoch() {
  if (left_.size() == kLeftEpochs) left_.erase(left_.begin());
  left_.push_back(std::make_unique<LeftEpoch>(LeftEpoch{0, 0, 0, {}, {}, LaterWriters(profiles_)}));
  swapWith(*left_.back());
  beginEpoch();
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

std::uint32_t& FragmentWalk::choiceOf(const FragmentInstance& instance) {
  const std::uint32_t number = instance.getNumber();
  if (choices_.size() <= number) {
    if (choices_.empty()) choices_.reserve(profiles_.countInstances() + 1);
    choices_.resize(number + std::size_t{1});
  }
  return choices_[number];
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
