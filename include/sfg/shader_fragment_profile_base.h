#pragma once

// What the three profile modes share: the profile's fields, the profile object of fragment files, predefines.

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "sfg/code_snippet.h"
#include "sfg/export.h"
#include "sfg/keyword_replace.h"
#include "sfg/shader_fragment_profile.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/text_parameter_list.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class AShaderCollapseContext;
class CodeKey;
class FragmentProfileInstance;
class KeptCode;

/// Base of the profile modes. Filled by load() or the setters, then only read: several collapses may use it
/// at the same time, and what is built lazily is built safely. Records that view the profile's texts
/// (built-in calls) keep those texts alive, also after clear() or a second setFunctionBody().
///
/// What its texts become in a collapse is kept for the next one, and dropped when the profile is changed. A
/// writable reference may change the profile at any time: after predefines(), getFunctionParameters() or
/// getFunctionBody() of a profile that is not const, nothing of the text that depends on it is kept any more.
/// Readers ask a const profile.
class SFG_API AShaderFragmentProfile : public RefCounted<IShaderFragmentProfile> {
public:
  AShaderFragmentProfile(const AShaderFragmentProfile&) = delete;
  AShaderFragmentProfile& operator=(const AShaderFragmentProfile&) = delete;
  ~AShaderFragmentProfile() override;

  /// Makes the mode class that the object's "mode" names ("inline", "metaSL", any case; else function) and
  /// loads it. An empty pointer when load() answers false; its exceptions pass through.
  static RefPtr<AShaderFragmentProfile> loadProfile(const IObjectDataNode* node);

  const WString& predefines() const override { return predefines_; }
  /// Changes do not reach the parse of predefines that were loaded.
  WString& predefines() override {
    if (predefinesLoaded_) predefineSnippet();
    openPredefines();
    return predefines_;
  }
  const Set<UString>& languages() const override { return languages_; }
  Set<UString>& languages() override { return languages_; }
  void setLOD(float lod) override;
  float getLOD() const override { return lod_; }
  const WString& getProfilename() const override { return profileName_; }
  const Set<UString>& stateVariables() const override { return stateVariables_; }
  Set<UString>& stateVariables() override { return stateVariables_; }
  const Set<WString>& customStateVariables() const override { return customStateVariables_; }
  Set<WString>& customStateVariables() override { return customStateVariables_; }
  const Set<WString>& includes() const override { return includes_; }
  Set<WString>& includes() override { return includes_; }
  const WString& getFunctionName() const override { return functionName_; }
  const WString& getFunctionBody() const override { return *functionBody_; }
  const ITextParameterList* getFunctionParameters() const override { return functionParameters_.get(); }
  ITextParameterList* getFunctionParameters() override {
    openDefinition();
    return functionParameters_.get();
  }
  EShaderFragmentProfileMode getMode() const override { return mode_; }
  void setProfilename(const WString& name) override { profileName_ = name; }
  /// Throws "sfgError : Function result type is not void!" or "sfgError : Incorrect function declaration!".
  bool setFunctionPrototype(const WString& prototype) override;
  void setFunctionName(const WString& name) override { functionName_ = name; }
  void setFunctionBody(const WString& body) override;

  /// Empties what load() fills, but the built-in calls and shader functions found so far.
  virtual void clear();
  /// Fills the profile from a profile object. False for a null node or an implementation that is missing.
  /// Throws "Profile doesn't specify the language version. " without "language", the exceptions of the
  /// prototype, and an Exception naming key and position for a value of a wrong kind. A failure leaves the
  /// profile partly filled.
  virtual bool load(const IObjectDataNode* node);
  /// Constructs `out` over the predefines with the instance's replacements; leaves it untouched when there
  /// are none.
  virtual bool writePredefines(CodeSnippetInstance& out, AShaderCollapseContext& context,
                               FragmentProfileInstance& instance) const;
  /// Constructs `out` over the definition; false when a state-variable parameter cannot be added.
  virtual bool writeDefinition(CodeSnippetInstance& out, AShaderCollapseContext& context,
                               FragmentProfileInstance& instance) const = 0;
  /// Appends one call with these values to `out`.
  virtual bool writeFunctionCall(WString& out, AShaderCollapseContext& context,
                                 FragmentProfileInstance& instance, const Array<WString>& inputValues,
                                 const Array<WString>& outputValues) const = 0;

  /// Writable body, for the collapse that appends to the result profile's. Nothing is parsed; views of the
  /// text as it was stay valid.
  WString& getFunctionBody();
  /// Constructs `out` over a snippet of this code, which it then owns; leaves it untouched when the code
  /// holds nothing.
  static void constructOwned(CodeSnippetInstance& out, const WString& code, const Array<WString>& renames);

  /// Built-in calls found in the predefines and in the body.
  const Array<BuiltinFunction>& getPredefineBuiltinFunctions() const noexcept {
    return predefineBuiltinFunctions_;
  }
  const Array<BuiltinFunction>& getBodyBuiltinFunctions() const noexcept { return bodyBuiltinFunctions_; }
  /// Whether the body, in braces, is one balanced block without any built-in call. A definition over such a
  /// body is one function, and need not be parsed.
  bool hasPlainBody() const noexcept { return hasPlainBody_; }
  /// The sfg_shader calls whose first argument is `name`; false when there are none, which leaves `out`
  /// alone.
  bool GetShaderFunctions(const WString& name, Array<BuiltinFunction>& out) const;
  /// Whether there are sfg_shader calls with a first argument, of any name.
  bool hasShaderFunctions() const noexcept { return !shaderFunctions_.empty(); }
  /// Whether GetShaderFunctions would find any.
  bool hasShaderFunctions(const WString& name) const { return shaderFunctions_.contains(name); }
  /// Rules that remove every sfg_shader call; built at the first call that finds any.
  const KeywordReplacePattern& GetDefaultShaderRepalcePattern() const;
  /// Whether definitions (predefines) of this profile are kept.
  bool keepsDefinitions() const noexcept { return !isDefinitionOpen_; }
  bool keepsPredefines() const noexcept { return !arePredefinesOpen_; }
  /// The code that was kept under that key; else null, and whether it is to be kept when it is made. Safe in
  /// several threads. For the writers: the types are not exported.
  std::pair<std::shared_ptr<const CodeSnippet>, bool> findKeptCode(const CodeKey& key) const;
  void keepCode(const CodeKey& key, const std::shared_ptr<const CodeSnippet>& snippet) const;
  /// Describes the profile on the standard wide output stream, each line behind `indent`.
  void debugDump(const wchar_t* indent) const;

protected:
  explicit AShaderFragmentProfile(EShaderFragmentProfileMode mode);

  /// Reads the "implementation" lines; null when there are none.
  virtual bool loadImplementation(const IObjectDataNode* lines) = 0;

  /// Replaces the body without parsing it; views of the former body stay valid.
  void replaceBodyText(const WString& body);
  /// The parse of the predefines, made at the first call that finds none; null as long as there are none.
  /// Safe in several threads.
  const std::shared_ptr<const CodeSnippet>& predefineSnippet() const;

public:
  // For the fragments, which keep levels of detail in order.

  /// From now on a change of the level is counted.
  void noteIndexedLevel() const noexcept { isLevelIndexed_.store(true, std::memory_order_relaxed); }
  /// Changes of such levels, of all profiles.
  static std::uint64_t countLevelChanges() noexcept;

private:
  void loadPredefines(const IObjectDataNode& lines);
  void registerShaderFunctions(const Array<BuiltinFunction>& uses);
  void forgetKeptCode() noexcept;
  void openDefinition() noexcept {
    isDefinitionOpen_ = true;
    if (hasKeptCode()) forgetKeptCode();
  }
  void openPredefines() noexcept {
    arePredefinesOpen_ = true;
    if (hasKeptCode()) forgetKeptCode();
  }
  bool hasKeptCode() const noexcept { return firstKeyHash_.load(std::memory_order_relaxed) != 0; }

  EShaderFragmentProfileMode mode_;
  WString predefines_;
  WString profileName_;
  Set<UString> stateVariables_;
  Set<WString> customStateVariables_;
  Set<UString> languages_;
  mutable std::atomic<bool> isLevelIndexed_{false};
  float lod_ = 100.0f;
  Set<WString> includes_;
  WString functionName_;
  std::shared_ptr<WString> functionBody_;
  bool hasPlainBody_ = false;
  Array<BuiltinFunction> predefineBuiltinFunctions_;
  Array<BuiltinFunction> bodyBuiltinFunctions_;
  Map<WString, Array<BuiltinFunction>> shaderFunctions_;
  RefPtr<ITextParameterList> functionParameters_;
  Array<std::shared_ptr<const WString>> viewedTexts_;  // texts that the built-in calls above view
  bool predefinesLoaded_ = false;
  bool isDefinitionOpen_ = false;  // a writable reference was given to what a definition depends on
  bool arePredefinesOpen_ = false;
  mutable std::shared_ptr<const CodeSnippet> predefineSnippet_;                 // null until asked for
  mutable std::unique_ptr<KeywordReplacePattern> defaultShaderReplacePattern_;  // null until asked for
  mutable std::mutex lazyMutex_;
  mutable std::atomic<bool> predefinesParsed_{false};
  mutable std::atomic<bool> defaultShaderPatternBuilt_{false};
  mutable std::atomic<std::size_t> firstKeyHash_{0};  // of the first code that was made; 0 before
  mutable std::atomic<KeptCode*> keptCode_{nullptr};  // null until code is made for the second time
  mutable std::unique_ptr<KeptCode> ownedCode_;
};

}  // namespace TolmSDK::Graphics::sfg
