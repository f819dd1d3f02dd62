#include "fragments/profile_levels.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <typeinfo>

#include "sfg/shader_fragment_profile_function.h"
#include "sfg/shader_fragment_profile_inline.h"
#include "sfg/shader_fragment_profile_metasl.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// One of a host's own class may answer another level each time.
bool isOurs(const IShaderFragmentProfile& profile) {
  const std::type_info& type = typeid(profile);
  return type == typeid(AShaderFragmentProfileFunction) || type == typeid(AShaderFragmentProfileInline) ||
         type == typeid(AShaderFragmentProfileMetaSL);
}

/// Null when the levels cannot be ordered once for all.
std::unique_ptr<const LevelIndex> makeIndex(const ProfileLevels::Profiles& profiles) {
  Array<float> levels;
  for (const IShaderFragmentProfile* profile : profiles) {
    if (!isOurs(*profile)) return nullptr;
    static_cast<const AShaderFragmentProfile*>(profile)->noteIndexedLevel();
    levels.push_back(profile->getLOD());
    if (!std::isfinite(levels.back())) return nullptr;
  }
  return std::make_unique<LevelIndex>(levels);
}

}  // namespace

LevelIndex::LevelIndex(const Array<float>& levels) : least_(2 * levels.size()) {
  const auto places = least_.begin() + static_cast<std::ptrdiff_t>(levels.size());
  std::iota(places, least_.end(), std::size_t{0});
  std::sort(places, least_.end(), [&](std::size_t a, std::size_t b) { return levels[a] < levels[b]; });
  std::transform(places, least_.end(), std::back_inserter(levels_),
                 [&](std::size_t place) { return levels[place]; });
  for (std::size_t i = levels.size(); i-- > 1;) least_[i] = std::min(least_[2 * i], least_[2 * i + 1]);
}

std::size_t LevelIndex::findNearest(float level) const {
  const auto distance = [&](float other) { return std::abs(other - level); };
  const auto above = std::lower_bound(levels_.begin(), levels_.end(), level);
  float nearest = above != levels_.end() ? distance(*above) : distance(levels_.back());
  if (above != levels_.begin()) nearest = std::min(nearest, distance(above[-1]));
  // Different levels may have the same distance, by rounding too.
  const auto isFarther = [&](float other) { return distance(other) > nearest; };
  const auto first = std::partition_point(levels_.begin(), above, isFarther);
  const auto last =
      std::partition_point(above, levels_.end(), [&](float other) { return !isFarther(other); });
  return firstPlace(static_cast<std::size_t>(first - levels_.begin()),
                    static_cast<std::size_t>(last - levels_.begin()));
}

std::size_t LevelIndex::firstPlace(std::size_t from, std::size_t to) const {
  std::size_t least = kNotFound;
  for (from += levels_.size(), to += levels_.size(); from < to; from /= 2, to /= 2) {
    if (from % 2 != 0) least = std::min(least, least_[from++]);
    if (to % 2 != 0) least = std::min(least, least_[--to]);
  }
  return least;
}

const IShaderFragmentProfile* ProfileLevels::findBest(const Profiles& profiles, float level) {
  if (!std::isfinite(level)) return nullptr;
  const std::lock_guard lock(mutex_);
  Index& index = indexes_[&profiles];
  const std::uint64_t changes = AShaderFragmentProfile::countLevelChanges();
  if (index.changes != changes || index.size != profiles.size()) {
    index = {changes, profiles.size(), nullptr, false};
    return nullptr;
  }
  if (!index.isMade) {
    index.levels = makeIndex(profiles);
    index.isMade = true;
  }
  return index.levels ? profiles[index.levels->findNearest(level)] : nullptr;
}

}  // namespace TolmSDK::Graphics::sfg
