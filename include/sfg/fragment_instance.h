#pragma once

// One fragment of the graph as used in one collapse.

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <span>

#include "sfg/export.h"
#include "sfg/fragment_profile_instance.h"
#include "sfg/keyword_replace.h"
#include "sfg/shader_fragment.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class AShaderCollapseContext;
class SurfaceProfiles;
class VisitedFragments;

/// Gives the fragment's uniforms and unconnected inputs unique names, activates one of its profiles, and
/// evaluates it: first the fragments that feed it, then its requirements, definition and call. Evaluation
/// takes time in proportion to fragments plus connections plus text written and no stack in proportion to
/// depth; it answers false when it cannot be done (a cycle, a port that does not fit), which the caller
/// reports. Belongs to its context; the one that evaluates it first is the only one that may, and the one
/// that creates it outlives it.
class SFG_API FragmentInstance {
public:
  FragmentInstance();
  virtual ~FragmentInstance();
  FragmentInstance(const FragmentInstance&) = delete;
  FragmentInstance& operator=(const FragmentInstance&) = delete;

  /// createNoInputUniform(), then a uniform or constant for every unconnected input.
  bool create(AShaderCollapseContext& context, const ILanguageTraits* language,
              const AShaderFragment* fragment);
  /// False for a null argument and for a second call. Throws "Invalid fragment (input connection count not
  /// equal to input parameter count): %s".
  bool createNoInputUniform(const ILanguageTraits* language, const AShaderFragment* fragment);
  /// Activates the best profile of that name, else of the name "default". Throws "The fragment %s doesn't
  /// have a default profile".
  bool setActiveProfile(AShaderCollapseContext& context, const WString& profileName, float lod);
  /// As setActiveProfile(), but answers false where that throws.
  bool trySetActiveProfile(AShaderCollapseContext& context, const WString& profileName, float lod);
  /// Null without one.
  FragmentProfileInstance* getActiveProfileInstance() const;

  bool isInitialized() const noexcept { return initialized_; }
  const IShaderFragment* getShaderFragment() const noexcept { return fragment_.get(); }
  const AShaderFragment* getFragment() const noexcept { return fragment_.get(); }
  bool requiresCurrentLight() const;
  void setOverrideFunctionName(const WString& name);
  /// The accumulator of output `index` when the instance accumulates, else the active profile's output name;
  /// empty for an index beyond them.
  const WString& getActiveProfileOutput(std::size_t index) const;
  bool hasActiveProfileOutput(std::size_t index) const;
  /// Appends what getActiveProfileOutput() answers, without making a text of its own for it. False for an
  /// index beyond them.
  bool appendActiveProfileOutput(WString& out, std::size_t index) const;

  /// Evaluates once, unless the instance accumulates: then true without doing anything.
  bool safeEvaluate(AShaderCollapseContext& context);
  /// Evaluates and adds every output to its accumulator.
  bool accmulateEvaluate(AShaderCollapseContext& context);
  /// Evaluates into the given output values; an empty one gets a declared variable.
  bool evaluate(AShaderCollapseContext& context, Array<WString>& outputValues);
  /// Evaluates this fragment as the function that `uses` call; sets the replacement of each use in the
  /// caller's pattern. Two of them declare the same variables: only a caller whose inputs the collapse
  /// evaluates (buildUserInputValues() and what evaluates it) has them numbered.
  bool evaluateShader(AShaderCollapseContext& context, const Array<BuiltinFunction>& uses,
                      KeywordReplacePattern& callerShaderPattern);
  /// Declares one accumulator per output.
  bool declareAccumulateOutputs(AShaderCollapseContext& context);

  /// Appends one value per input, evaluating the fragments that feed them.
  bool buildUserInputValues(AShaderCollapseContext& context, Array<WString>& inputValues) const;
  bool writeRequirements(AShaderCollapseContext& context);
  bool writeDefinition(AShaderCollapseContext& context);
  bool writeFunctionCall(WString& out, AShaderCollapseContext& context, const Array<WString>& inputValues,
                         const Array<WString>& outputValues);

  // For the collapse: what was found out about an input when the instance was made.

  /// The expression used when no fragment feeds the input; null when the instance has no such input.
  const WString* findInputValue(std::size_t input) const;
  /// The uniform that stands for the input; null without one.
  const AParameter* findInputUniform(std::size_t input) const noexcept {
    return input < numInputs_ ? firstInput_[input].uniform.get() : nullptr;
  }
  /// Makes what stands for a connected input that only the active profile uses as a shader function.
  void createLateInputUniform(AShaderCollapseContext& context, std::size_t input) const;
  /// The instance of the fragment that feeds the input, if that is noted.
  FragmentInstance* findSource(std::size_t input, const IShaderFragment* fragment) const;
  /// Notes the instances of the fragments that feed the inputs.
  void setSources(const VisitedFragments& visited);

  // For the collapse: the context to which the instance belongs.

  /// Makes it the context's, with the next number, unless it is some context's; false for another one's.
  bool joinContext(std::uint64_t context, std::uint32_t& lastNumber) const;
  /// In its context, from 1; 0 before it has one.
  std::uint32_t getNumber() const noexcept { return number_; }
  /// From now on the instance has the profile that is chosen there, once another choice is made.
  void followProfiles(SurfaceProfiles& profiles);
  /// Makes that profile the active one, whatever its name.
  void activate(const IShaderFragmentProfile* profile) const;

private:
  /// What was found out about an input when the instance was made.
  struct Input {
    RefPtr<AParameter const> uniform;
    FragmentInstance* source = nullptr;  // of the fragment that fed it then; null without one
  };

  /// What many instances do without.
  struct Extras {
    std::list<FragmentProfileInstance, StlAllocator<FragmentProfileInstance>> otherProfileInstances;
    Map<const AShaderFragmentProfile*, FragmentProfileInstance*> byProfile;  // of those, when they are many
    Array<RefPtr<AParameter const>> uniforms;                                // its own
    Array<WString> inputValues;  // of inputs whose value is not the uniform's name; or empty
    Array<WString> accumulateOutputs;
  };

  FragmentProfileInstance* findProfileInstance(const AShaderFragmentProfile* profile) const;
  FragmentProfileInstance& makeProfileInstance() const;
  void indexProfileInstance(FragmentProfileInstance& made) const;
  void makeUniformsUnique();
  void createInputUniform(const AShaderCollapseContext& context, std::size_t input) const;
  bool hasInputValue(std::size_t input) const {
    return extras_ && input < extras_->inputValues.size() && !extras_->inputValues[input].empty();
  }
  void setInputValue(std::size_t input, WString value) const;
  const WString& inputValue(std::size_t input) const;
  Extras& extras() const;
  std::span<Input> inputs() const noexcept { return {firstInput_, numInputs_}; }
  bool accumulates() const noexcept { return extras_ && !extras_->accumulateOutputs.empty(); }

  RefPtr<ILanguageTraits const> language_;
  RefPtr<AShaderFragment const> fragment_;
  mutable FragmentProfileInstance firstProfileInstance_;
  mutable std::unique_ptr<Extras> extras_;
  Input* firstInput_ = nullptr;  // in the memory of the context that created the instance
  std::uint32_t numInputs_ = 0;
  bool initialized_ = false;
  bool uniformsWritten_ = false;
  mutable bool usesSamplers_ = false;

  // The active profile is taken from the choice that it follows when it is asked for.
  mutable FragmentProfileInstance* activeProfileInstance_ = nullptr;
  SurfaceProfiles* followed_ = nullptr;
  mutable std::uint32_t choice_ = 0;  // the number of the one taken last

  // Kept by the context that made the instance or was the first to evaluate it: the instance's number (those
  // that it made count up), and its own.
  mutable std::uint32_t number_ = 0;
  mutable std::uint64_t context_ = 0;
};

}  // namespace TolmSDK::Graphics::sfg
