#pragma once

// Graphs that make a compiler see every branch of one profile.

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/check/own_fragments.h"
#include "host/library/loaded_libraries.h"
#include "sfg/host/document.h"
#include "sfg/host/job.h"
#include "sfg/shader_fragment_profile_base.h"

namespace TolmSDK::Graphics::sfg::host {

/// One collapse that writes the code of a profile.
struct Probe {
  Graph graph;
  Environment environment;
  CollapseOptions options;
};

/// What a profile needs around it. Texts are UTF-8.
struct ProfilePlan {
  std::vector<Probe> probes;
  /// The probes are guesses at the types of an expression: the first that compiles counts.
  bool areGuesses = false;
  /// Why there are none: "another profile of this name and level of detail comes first".
  std::string whyNone;
  /// Without probes: a graph could use the profile all the same.
  bool mayBeUsed = false;
};

/// Which fragments of some libraries can be lights, and the sources that inputs of theirs need. Made before
/// the own fragments are added, then only read.
class ProbeMaker {
public:
  explicit ProbeMaker(const LoadedLibraries& libraries);

  /// To be added to the libraries as ownFragments().
  std::vector<SourceFragment> sources() const;

  /// Of profile `index` of a library fragment. `expressionPorts` are those that the fragment's object gives
  /// for its expression.
  ProfilePlan plan(const IShaderFragment& fragment, std::size_t index,
                   const std::optional<NodeInterface>& expressionPorts) const;

  /// A library fragment that is a light of the profile; empty without one.
  std::string lightOf(const std::string& profile) const;

private:
  struct PlanWriter;

  void addLights(const IShaderFragment& fragment);
  void addSources(const AShaderFragmentProfile& profile);

  const LoadedLibraries& libraries_;
  std::map<std::string, std::string> lights_;
  std::size_t sourceCount_ = 0;
  std::map<const IShaderFragmentProfile*, std::map<std::size_t, SourceFragment>> sources_;
};

/// The text with the names of inputs as the code spells them, where it names uniforms of the probe.
std::string sourceNames(std::string text, const Probe& probe);
/// Whether the code has blocks that are written once for every light.
bool hasLightBlocks(const IShaderFragmentProfile& profile);
/// Whether the code reads the light that shines.
bool isLit(const IShaderFragmentProfile& profile);

}  // namespace TolmSDK::Graphics::sfg::host
