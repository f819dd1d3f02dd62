#pragma once

// The instances of one collapse.

#include <atomic>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "collapse/arena.h"
#include "collapse/instance_table.h"
#include "collapse/surface_profiles.h"
#include "sfg/fragment_instance.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Those of surface fragments and those of lights, each by its name. All instances of a collapse have numbers
/// that count up from 1, also those that are made elsewhere.
class InstanceRegistry {
public:
  /// `arena` outlives the registry and its instances.
  explicit InstanceRegistry(Arena& arena)
      : surfaces_(arena), lights_(arena), context_(nextContext()), profiles_(surfaces_) {}
  InstanceRegistry(const InstanceRegistry&) = delete;
  InstanceRegistry& operator=(const InstanceRegistry&) = delete;

  /// The instance of that name; a new, uninitialised one when there is none.
  FragmentInstance& getSurface(const WString& name) { return admitSurface(surfaces_.get(name)); }
  /// The same for a text that lasts as long as the registry.
  FragmentInstance& getSurfaceByLastingName(const WString& name) {
    return admitSurface(surfaces_.getByLastingName(name));
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

  /// Makes room for that many surface instances in all.
  void reserveSurfaces(std::size_t count) { surfaces_.reserve(count); }
  /// In the order in which they were made.
  template <class Use>
  void forEachSurface(Use&& use) {
    for (std::size_t i = 0; i < surfaces_.size(); ++i) use(surfaces_[i].instance);
  }

  SurfaceProfiles& profiles() noexcept { return profiles_; }

private:
  FragmentInstance& admitSurface(FragmentInstance& instance) {
    if (instance.getNumber() == 0) instance.followProfiles(profiles_);
    admit(instance);
    return instance;
  }
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
