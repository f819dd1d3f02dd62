#pragma once

// Which of the instances that a walk has visited may write again under another light or choice of profiles.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "collapse/surface_profiles.h"
#include "sfg/fragment_instance.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Collects them while instances are visited, and which of them call their sources as functions. For each
/// choice of profiles they are looked for once, and again after further visits only.
class LaterWriters {
public:
  /// `profiles` outlives this.
  explicit LaterWriters(const SurfaceProfiles& profiles) : profiles_(&profiles) {}

  void clear() {
    candidates_.clear();
    calls_.clear();
    callsOf_.clear();
    indexedCalls_ = 0;
    called_.clear();
    byChoice_.clear();
    ++version_;
  }

  /// Called when an instance was evaluated for the first time.
  void add(FragmentInstance& instance) {
    take(instance, instance.getActiveProfileInstance()->writesForEveryLight());
  }
  /// An instance has another profile, by itself.
  void changeProfile() { ++version_; }

  /// An input whose source its instance calls as a function.
  struct Call {
    FragmentInstance* caller = nullptr;  // null when it is not known
    std::size_t input = 0;
    std::uint32_t time = 0;       // at which the call was visited first
    bool isRepeated = false;      // whoever visits the caller again comes to the call again
    bool isInEvaluation = false;  // of the caller, not in a call of it
  };

  /// Called when an instance is about to be visited as a function; false when it was before.
  bool addCalled(FragmentInstance& instance, std::uint32_t time) {
    const bool isFirst = called_.try_emplace(&instance, Call{nullptr, 0, time}).second;
    if (isFirst) take(instance, false);
    return isFirst;
  }
  /// Called behind the first visit of a call in an evaluation of the caller, and in the first call of it.
  void addCall(const FragmentInstance& source, const Call& call) {
    calls_.push_back(call);
    Call& first = called_.at(&source);
    if (first.time == call.time) first = call;
    ++version_;
  }

  /// The first call of an instance; null when it was not called.
  const Call* findFirstCall(const FragmentInstance& instance) const {
    const auto found = called_.find(&instance);
    return found != called_.end() ? &found->second : nullptr;
  }

  /// Calls `use(call)` for each call that an instance makes.
  template <class Use>
  void forEachCall(const FragmentInstance& caller, Use&& use) {
    for (; indexedCalls_ < calls_.size(); ++indexedCalls_)
      callsOf_[calls_[indexedCalls_].caller].push_back(indexedCalls_);
    const auto found = callsOf_.find(&caller);
    if (found == callsOf_.end()) return;
    for (const std::size_t call : found->second) use(calls_[call]);
  }

  struct Writers {
    Array<FragmentInstance*> instances;
    bool keepsCalls = false;  // under the choice the same inputs are called as were when they were visited
    std::uint64_t version = 0;
  };

  /// Those of the choice in force; `isEvaluated(instance)` tells those that are from those that were called
  /// only, or not visited. The caller takes out instances that have nothing more to write.
  template <class IsEvaluated>
  Writers& find(IsEvaluated&& isEvaluated) {
    Writers& writers = byChoice_[profiles_->number()];
    if (writers.version == version_) return writers;
    writers.version = version_;
    writers.keepsCalls = true;
    writers.instances.clear();
    const auto isVisited = [&](const FragmentInstance& instance) {
      return isEvaluated(instance) || called_.contains(&instance);
    };
    const auto takeWriter = [&](FragmentInstance& instance) {
      writers.instances.push_back(&instance);
      const bool keepsCalls = callsAsBefore(instance);
      if (!keepsCalls) writers.keepsCalls = false;
      return keepsCalls;
    };
    profiles_->forEachSpecial([&](FragmentInstance& instance) {
      if (isVisited(instance)) takeWriter(instance);
    });
    std::erase_if(candidates_, [&](FragmentInstance* instance) {
      if (!isVisited(*instance)) return true;
      if (profiles_->isSpecial(*instance)) return false;
      return takeWriter(*instance) && isDone(*instance, isEvaluated(*instance));
    });
    return writers;
  }

  /// Whether the instance writes nothing more with its active profile.
  static bool isDone(const FragmentInstance& instance, bool isEvaluated) {
    const FragmentProfileInstance* active = instance.getActiveProfileInstance();
    if (active == nullptr) return false;
    if (!isEvaluated) return active->isDefinitionWritten();
    return active->isCallWritten() && !active->writesForEveryLight();
  }

private:
  void take(FragmentInstance& instance, bool writesForEveryLight) {
    const bool isCandidate = profiles_->isSpecial(instance) || writesForEveryLight;
    if (isCandidate) candidates_.push_back(&instance);
    if (isCandidate || profiles_->isMember(instance)) ++version_;
  }

  /// Whether the same inputs are called as were when the instance was visited.
  bool callsAsBefore(const FragmentInstance& instance) {
    const FragmentProfileInstance* active = instance.getActiveProfileInstance();
    if (active == nullptr) return false;
    // An expression has no function to call.
    if (active->isInlineProfile() && called_.contains(&instance)) return false;
    const auto& connections = instance.getShaderFragment()->getInputConnections();
    Array<bool> wasCalled(connections.size(), false);
    forEachCall(instance, [&](const Call& call) { wasCalled[call.input] = true; });
    for (std::size_t i = 0; i < connections.size(); ++i)
      if (connections[i].fragment != nullptr && active->IsShaderInput(i) != wasCalled[i]) return false;
    return true;
  }

  const SurfaceProfiles* profiles_;
  Array<FragmentInstance*> candidates_;  // that may write with their "default" profile, or one of their own
  Array<Call> calls_;
  std::unordered_map<const FragmentInstance*, Array<std::size_t>> callsOf_;  // once they are asked for
  std::size_t indexedCalls_ = 0;
  std::unordered_map<const FragmentInstance*, Call> called_;  // with the first call of each
  std::unordered_map<std::uint32_t, Writers> byChoice_;
  std::uint64_t version_ = 1;
};

}  // namespace TolmSDK::Graphics::sfg
