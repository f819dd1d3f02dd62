#pragma once

// What the warnings ask of a job: found once, asked by all.

#include <cstddef>
#include <string_view>
#include <vector>

#include "host/job/collapse_job.h"
#include "host/job/evaluated_surface.h"

namespace TolmSDK::Graphics::sfg::host {

/// Of lights that MetaSL surfaces ask.
inline constexpr std::wstring_view kMslLightProfile = L"msl_light";

using Profile = const IShaderFragmentProfile*;
/// Each once, in the order in which they are chosen.
using Profiles = std::vector<Profile>;

bool readsCurrentLight(Profile profile);

/// A fragment with the profiles that its instances in this collapse take.
struct FragmentUse {
  const IShaderFragment* fragment = nullptr;
  std::size_t count = 0;  ///< instances times profiles of each
  Profiles profiles;
  Set<Profile> known;

  void add(Profile profile) {
    if (profile != nullptr && known.insert(profile).second) profiles.push_back(profile);
  }
};

/// What there is to know about a node's fragment.
struct NodeFragment {
  const IShaderFragment* fragment = nullptr;
  const SurfaceProfiles* profiles = nullptr;
  bool isLit = false;                    ///< a taken profile reads the current light
  std::vector<std::size_t> inoutInputs;  ///< of all taken profiles, each once
};

/// Facts about a job that has run. Refers to the job. Not copied or moved: facts point at each other.
class CollapseFacts {
public:
  explicit CollapseFacts(const CollapseJob& job);
  CollapseFacts(const CollapseFacts&) = delete;
  CollapseFacts& operator=(const CollapseFacts&) = delete;

  const CollapseJob& job() const noexcept { return job_; }
  const GraphDocument& document() const noexcept { return document_; }
  const Array<ShadingEnvironment::Light>& lights() const { return job_.environment().lights(); }
  const UString& language() const { return job_.options().getLanguage(); }
  bool isLightLoop() const { return job_.settings().tool == CollapseTool::lightLoop; }

  std::size_t nodeCount() const { return document_.getNumNodes(); }
  const NodeFragment& fragmentOf(std::size_t node) const { return *nodes_[node]; }
  /// Of the nodes that an output reaches: whether it reads the current light, is fed by one that does, feeds
  /// one that does, and is a lit one nearest to the outputs, which the light loop accumulates.
  bool isLit(std::size_t node) const { return lit_[node]; }
  bool isBelowLit(std::size_t node) const { return belowLit_[node]; }
  bool feedsLit(std::size_t node) const { return feedsLit_[node]; }
  bool isAccumulated(std::size_t node) const { return accumulated_[node]; }
  /// The fragments of the nodes that an output reaches.
  const Set<const NodeFragment*>& reached() const noexcept { return reached_; }
  /// By fragment name: of nodes, chains and lights.
  const Map<WString, FragmentUse>& uses() const noexcept { return uses_; }

private:
  Profile chosen(const IShaderFragment& fragment, const WString& name, float lod) const;
  void findFragments();
  void findLit();
  void findAccumulated();
  void findUses();
  FragmentUse& useOf(const IShaderFragment& fragment);
  void addUse(const IShaderFragment& fragment, const Profiles& profiles);

  const CollapseJob& job_;
  const GraphDocument& document_;
  EvaluatedSurface surface_;
  std::vector<std::size_t> order_;  ///< of the reachable nodes, sources first
  Map<const IShaderFragment*, NodeFragment> fragments_;
  std::vector<const NodeFragment*> nodes_;  ///< one per node
  Set<const NodeFragment*> reached_;
  std::vector<bool> lit_;
  std::vector<bool> belowLit_;
  std::vector<bool> feedsLit_;
  std::vector<bool> accumulated_;
  Map<WString, FragmentUse> uses_;
};

}  // namespace TolmSDK::Graphics::sfg::host
