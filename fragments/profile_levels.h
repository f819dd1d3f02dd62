#pragma once

// Finding the profile of the nearest level of detail among many.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

#include "sfg/shader_fragment_profile.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Levels in order, as they were when this was made.
class LevelIndex {
public:
  explicit LevelIndex(const Array<float>& levels);

  /// The place of the first of those nearest to the level, which is finite.
  std::size_t findNearest(float level) const;

private:
  std::size_t firstPlace(std::size_t from, std::size_t to) const;

  Array<float> levels_;
  Array<std::size_t>
      least_;  // the least place of the levels from i on: a tree whose leaves are its second half
};

/// Indexes of long lists of profiles, made when a list is asked a second time and again when a level has
/// changed. Safe in several threads.
class ProfileLevels {
public:
  using Profiles = Array<IShaderFragmentProfile*>;

  /// The first of the profiles nearest to the level; null when only a look at each of them tells.
  const IShaderFragmentProfile* findBest(const Profiles& profiles, float level);

private:
  struct Index {
    std::uint64_t changes = UINT64_MAX;  // of levels, when the list was asked last
    std::size_t size = 0;                // of the list then
    std::unique_ptr<const LevelIndex> levels;
    bool isMade = false;
  };

  std::mutex mutex_;
  Map<const Profiles*, Index> indexes_;
};

}  // namespace TolmSDK::Graphics::sfg
