#pragma once

// One profile of one fragment as used in one collapse.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "sfg/code_snippet.h"
#include "sfg/export.h"
#include "sfg/keyword_replace.h"
#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class AShaderCollapseContext;
class ShaderTemporaries;
struct ShaderCallText;

/// Names, replacements and built-in values that differ between two uses of a profile, and the flags that make
/// every writer write only as often as it must: writers answer true without writing again. Belongs to its
/// fragment instance, which keeps language and fragment (and so the profile) alive: this one does not.
class SFG_API FragmentProfileInstance {
public:
  FragmentProfileInstance();
  virtual ~FragmentProfileInstance();
  FragmentProfileInstance(const FragmentProfileInstance&) = delete;
  FragmentProfileInstance& operator=(const FragmentProfileInstance&) = delete;

  /// Takes its names: function name and output variables end in `shortname` (the profile's name when that is
  /// empty). They are spelled when they are asked for, so fragment and profile stay as they are until the
  /// collapse is done. False for a null argument. A second call throws "Cannot initialize fragment (%s)
  /// profile twice!".
  bool create(const ILanguageTraits* language, const AShaderFragment* fragment,
              const AShaderFragmentProfile* profile, const WString& shortname);

  bool isInitialized() const noexcept { return initialized_; }
  /// The profile is an inline expression: it has a value, no function.
  bool isInlineProfile() const noexcept { return isInlineProfile_; }
  /// The profile's code reads the current light: its call is written once per light.
  bool requiresCurrentLight() const noexcept { return requiresCurrentLight_; }
  /// A function that reads the current light. An expression has no call.
  bool writesForEveryLight() const noexcept { return requiresCurrentLight_ && !isInlineProfile_; }
  /// Whether a call was written, and whether it was for that light.
  bool isCallWritten() const noexcept { return callWritten_; }
  bool isCallWritten(std::size_t light) const;
  bool isDefinitionWritten() const noexcept { return definitionWritten_; }
  const ILanguageTraits* getLanguage() const noexcept { return language_; }
  const AShaderFragmentProfile* getProfile() const noexcept { return profile_; }
  const AShaderFragment* getFragment() const noexcept { return fragment_; }

  const WString& getFunctionName() const;
  void setFunctionName(const WString& name);
  /// Appends what getFunctionName() answers, without making a text of its own for it.
  void appendFunctionName(WString& out) const;
  const WString& getProfilename() const;
  const WString& getProfileShortname() const noexcept;

  // Outputs: a type text (empty for an inline expression), a variable name (or the expression), and both as a
  // key.
  std::size_t getNumOutputs() const noexcept { return numOutputs_; }
  const WString& getOutputType(std::size_t index) const;
  const WString& getOutputName(std::size_t index) const { return getOutputNames()[index]; }
  /// Appends what getOutputName() answers, without making a text of its own for it.
  void appendOutputName(WString& out, std::size_t index) const;
  const WString& getOutputKey(std::size_t index) const;
  const Array<WString>& getOutputNames() const;
  /// The outputs kept stay as they are; those added have neither type nor name nor key until they are set.
  void setNumOutputs(std::size_t count);
  void setOutput(std::size_t index, WString type, WString name);
  /// Appends a declaration of every typed output, once.
  bool declareOutputs(WString& out);
  /// Appends, once, a declaration of every output that has no value yet and gives it its name as value. False
  /// at the first output without a type.
  bool declareUnspecifiedOutputs(WString& out, Array<WString>& outputValues);

  // Patterns, which live as long as the instance.

  /// Renames of the profile's own symbols, made while its requirements are written.
  KeywordReplacePattern& getKeywordReplacePattern() { return patterns().keyword; }
  /// From the uniforms' names in code to their unique ones; filled at the first call that finds any.
  KeywordReplacePattern& getUniformReplacePattern();
  /// From sfg_shader calls to what replaces them; at first the profile's default, which removes them.
  KeywordReplacePattern& getShaderReplacePattern();
  /// Puts a call in place of an sfg_shader use: sets the rule of the use's text in that pattern, and keeps
  /// which variables the call declares. For the collapse only: the type of the call is not exported.
  void replaceShaderUse(const WString& use, ShaderCallText call);
  /// Adds the rules of the latter two patterns to those of a replacer, in that order. No pattern is made for
  /// it: the replacer refers to what the instance and its profile hold.
  void addReplacements(KeywordReplacer& replacer) const;
  /// The first of the three patterns when it was ever asked for, else null.
  KeywordReplacePattern* findKeywordReplacePattern() noexcept {
    return patterns_ ? &patterns_->keyword : nullptr;
  }
  /// What replaceShaderUse() keeps; null when no call declares a variable.
  const ShaderTemporaries* findShaderTemporaries() const;
  /// Whether either of these two holds a rule; neither is made to be asked.
  bool hasReplacements() const;
  Array<WString>& getUniformOriginal() { return extras().uniformOriginal; }
  Array<WString>& getUniformNew() { return extras().uniformNew; }

  /// Index of the input (output) of exactly that name in the profile's parameter list, or the not-found
  /// value.
  std::size_t GetInputTextParameterIndex(const WString& name) const;
  std::size_t GetOutputTextParameterIndex(const WString& name) const;
  /// The sfg_shader calls whose first argument names the input; false without any.
  bool GetShaderFunctions(std::size_t inputIndex, Array<BuiltinFunction>& out) const;
  bool IsShaderInput(std::size_t inputIndex) const;

  /// One value per built-in call of the profile's predefines and of its body.
  const Array<WString>& getBuiltinFunctionValueInPredefine() const noexcept {
    return extras_ ? extras_->builtinFunctionValuesInPredefine : none();
  }
  const Array<WString>& getBuiltinFunctionValueInBody() const noexcept {
    return extras_ ? extras_->builtinFunctionValuesInBody : none();
  }

  void beginShaderFunctionCall() noexcept { inShaderFunctionCall_ = true; }
  void endShaderFunctionCall() noexcept { inShaderFunctionCall_ = false; }

  /// Writes the profile's predefines through the context and merges its includes and state variables into
  /// `target`.
  bool writeRequirements(AShaderFragmentProfile* target, AShaderCollapseContext& context);
  bool writeDefinition(AShaderCollapseContext& context);
  /// A function's call once per run (once per active light when it reads the current light), an inline
  /// expression at every use, anything at every use inside a shader-function call.
  bool writeFunctionCall(WString& out, AShaderCollapseContext& context, const Array<WString>& inputValues,
                         const Array<WString>& outputValues);

  /// Appends what the text of its definition depends on besides the profile. For the collapse only.
  void appendDefinitionKey(WString& key) const;

private:
  /// Made when one of them is asked for.
  struct Patterns {
    Patterns();
    ~Patterns();

    KeywordReplacePattern keyword;
    KeywordReplacePattern shader;
    KeywordReplacePattern uniform;
    std::unique_ptr<ShaderTemporaries> temporaries;
  };

  /// What many instances do without.
  struct Extras {
    WString profileShortname;    // when it is kept nowhere else
    WString functionName;        // instead of the one that follows from profile and short name
    Array<WString> outputNames;  // texts for the names that follow from fragment and short name, or others
    Array<WString> outputTypes;  // empty as long as they are those of the profile
    Array<WString> outputKeys;   // made when asked for
    Array<bool> outputIsUnset;   // empty as long as none was added
    Array<WString> uniformOriginal;
    Array<WString> uniformNew;
    Map<std::size_t, std::uint64_t> callWrittenForLights;  // bits of 64 lights by the first one's number / 64
    Array<WString> builtinFunctionValuesInPredefine;
    Array<WString> builtinFunctionValuesInBody;
  };

  Patterns& patterns();
  Extras& extras() const;
  Array<WString>& outputNames() const;
  static const Array<WString>& none() noexcept;
  bool hasUniforms() const noexcept { return extras_ && !extras_->uniformOriginal.empty(); }
  bool isOutputUnset(std::size_t index) const noexcept {
    return extras_ && index < extras_->outputIsUnset.size() && extras_->outputIsUnset[index];
  }
  bool mustWriteCall(const AShaderCollapseContext& context);
  bool hasSharedDefinition() const;

  // A collapse makes one for every fragment, so they are small.
  std::unique_ptr<Patterns> patterns_;
  mutable std::unique_ptr<Extras> extras_;
  const ILanguageTraits* language_ = nullptr;
  const AShaderFragment* fragment_ = nullptr;
  const AShaderFragmentProfile* profile_ = nullptr;
  const WString* profileShortname_ = nullptr;  // lasts as long as the profile or the extras
  std::uint32_t numOutputs_ = 0;
  bool initialized_ : 1 = false;
  bool requirementsWritten_ : 1 = false;
  bool definitionWritten_ : 1 = false;
  bool callWritten_ : 1 = false;
  bool inShaderFunctionCall_ : 1 = false;
  bool outputsDeclared_ : 1 = false;
  bool requiresCurrentLight_ : 1 = false;
  bool isInlineProfile_ : 1 = false;
  mutable bool hasFunctionName_ : 1 = false;  // both of them among the extras
  mutable bool hasOutputNames_ : 1 = false;
};

}  // namespace TolmSDK::Graphics::sfg
