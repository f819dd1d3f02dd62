#pragma once

// What a collapse evaluates of the graph: which nodes, and under which profiles.

#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// The names under which `findBestProfile` finds a profile of the fragment for the language.
Set<WString> offeredProfileNames(const IShaderFragment& fragment, const UString& language);

/// The profiles that nodes of one fragment take under the names of the surface.
struct SurfaceProfiles {
  /// By those of the names that the fragment offers.
  Map<WString, const IShaderFragmentProfile*> named;
  /// Under every other name; may be null.
  const IShaderFragmentProfile* other = nullptr;
  /// Those that are taken, each once, in the order of the names.
  std::vector<const IShaderFragmentProfile*> taken;
};

/// The profiles of the surface, for each fragment found once. Refers to the job.
class EvaluatedSurface {
public:
  explicit EvaluatedSurface(const CollapseJob& job);

  /// The profile names under which the nodes are evaluated: those that the lights of a light loop ask for;
  /// "default" for the default tool and without lights.
  const Set<WString>& profileNames() const noexcept { return names_; }
  /// Stays where it is.
  const SurfaceProfiles& profilesOf(const IShaderFragment& fragment);

private:
  SurfaceProfiles find(const IShaderFragment& fragment) const;

  const CollapseJob& job_;
  Set<WString> names_;
  Map<const IShaderFragment*, SurfaceProfiles> profiles_;
};

/// Indexes of the nodes that feed a graph output, sources before the nodes they feed. Ends on a loop, too.
std::vector<std::size_t> reachableNodes(const GraphDocument& document);

}  // namespace TolmSDK::Graphics::sfg::host
