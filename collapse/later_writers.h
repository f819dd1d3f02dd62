#pragma once

// Which of the instances that a walk has visited may write again under another light or choice of profiles.

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "collapse/surface_profiles.h"
#include "sfg/fragment_instance.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Collects them while instances are visited. For each choice of profiles they are looked for once, and again
/// after further visits only.
class LaterWriters {
public:
  explicit LaterWriters(const SurfaceProfiles& profiles) : profiles_(profiles) {}

  void clear() {
    candidates_.clear();
    calls_.clear();
    byChoice_.clear();
    ++version_;
  }

  /// Called when an instance was visited for the first time.
  void add(FragmentInstance& instance) {
    const FragmentProfileInstance& active = *instance.getActiveProfileInstance();
    const bool isCandidate = profiles_.isSpecial(instance) || active.writesForEveryLight();
    if (isCandidate) candidates_.push_back(&instance);
    if (isCandidate || profiles_.isMember(instance)) ++version_;
  }

  /// Called when an instance was found to call its source, or to be called.
  void addCall(const FragmentInstance& instance) {
    calls_.push_back({&instance, instance.getActiveProfileInstance()});
    ++version_;
  }
  /// An instance has another profile, by itself.
  void changeProfile() { ++version_; }

  struct Writers {
    Array<FragmentInstance*> instances;
    bool keepsCalls = false;  // under the choice all that call or are called have the profile that does
    std::uint64_t version = 0;
  };

  /// Those of the choice in force; `isVisited(instance)` leaves out what was not visited. The caller takes
  /// out instances that have nothing more to write.
  template <class IsVisited>
  Writers& find(IsVisited&& isVisited) {
    Writers& writers = byChoice_[profiles_.number()];
    if (writers.version == version_) return writers;
    writers.version = version_;
    writers.keepsCalls = std::all_of(calls_.begin(), calls_.end(), [](const Call& call) {
      return call.instance->getActiveProfileInstance() == call.profile;
    });
    writers.instances.clear();
    profiles_.forEachSpecial([&](FragmentInstance& instance) {
      if (isVisited(instance)) writers.instances.push_back(&instance);
    });
    std::erase_if(candidates_, [&](FragmentInstance* instance) {
      if (!isVisited(*instance)) return true;
      if (profiles_.isSpecial(*instance)) return false;
      writers.instances.push_back(instance);
      const FragmentProfileInstance* active = instance->getActiveProfileInstance();
      return active != nullptr && active->isCallWritten() && !active->writesForEveryLight();
    });
    return writers;
  }

private:
  struct Call {
    const FragmentInstance* instance;
    const FragmentProfileInstance* profile;
  };

  const SurfaceProfiles& profiles_;
  Array<FragmentInstance*> candidates_;  // that may write with their "default" profile, or one of their own
  Array<Call> calls_;
  std::unordered_map<std::uint32_t, Writers> byChoice_;
  std::uint64_t version_ = 1;
};

}  // namespace TolmSDK::Graphics::sfg
