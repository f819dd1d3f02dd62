#pragma once

// The instances of one collapse.

#include <atomic>
#include <cassert>
#include <cstdint>

#include "collapse/instance_table.h"
#include "collapse/surface_profiles.h"
#include "sfg/fragment_instance.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Those of surface fragments and those of lights, each by its name. All instances of a collapse have numbers
/// that count up from 1, also those that are made elsewhere.
class InstanceRegistry {
public:
  InstanceRegistry() : context_(nextContext()), profiles_(surfaces_) {}
  InstanceRegistry(const InstanceRegistry&) = delete;
  InstanceRegistry& operator=(const InstanceRegistry&) = delete;

  /// The instance of that name; a new, uninitialised one when there is none.
  FragmentInstance& getSurface(const WString& name) {
    FragmentInstance& instance = surfaces_.get(name);
    if (instance.getNumber() == 0) instance.followProfiles(profiles_);
    admit(instance);
    return instance;
  }
  FragmentInstance& getLight(const WString& name) {
    FragmentInstance& instance = lights_.get(name);
    admit(instance);
    return instance;
  }
  /// False for an instance of another collapse. One that none has made or evaluated becomes this one's.
  bool admit(const FragmentInstance& instance) {
    const bool isOurs = instance.joinContext(context_, lastNumber_);
    assert(isOurs && "an instance is evaluated in one context only");
    return isOurs;
  }

  SurfaceProfiles& profiles() noexcept { return profiles_; }

private:
  /// Addresses come again, numbers do not.
  static std::uint64_t nextContext() noexcept {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
  }

  InstanceTable surfaces_;
  InstanceTable lights_;
  std::uint64_t context_;  // among all, from 1
  std::uint32_t lastNumber_ = 0;
  SurfaceProfiles profiles_;
};

}  // namespace TolmSDK::Graphics::sfg
