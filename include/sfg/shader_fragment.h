#pragma once

// Fragments: named pieces of shader code with typed ports, uniforms and profiles.

#include <atomic>
#include <cstddef>
#include <memory>
#include <string_view>

#include "sfg/export.h"
#include "sfg/shader_fragment_profile.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/parameter.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg {

class IShaderFragment;
class IShaderFragmentGraph;
class ProfileLevels;
class ShaderIncludes;

/// Where a fragment input or a graph output takes its value from. No reference is held.
struct ShaderFragmentConnection {
  IShaderFragment* fragment = nullptr;  ///< null: unconnected, or (with an index) an input of the owner graph
  std::size_t index = kNotFound;        ///< output of `fragment`, or input of the owner graph

  bool isConnected() const noexcept { return index != kNotFound; }
  friend bool operator==(const ShaderFragmentConnection&, const ShaderFragmentConnection&) = default;
};

/// A fragment as hosts, graphs and collapse tools see it. The slot order is fixed. Ports are told apart by
/// their parameter's name. Parameters and profiles are shared, never copied. Indexes of element accessors are
/// not checked; look-ups answer null or the not-found value; no operation throws. Built and wired by one
/// thread; then read by any number.
class IShaderFragment : public IRefObject {
public:
  /// A copy under an instance name, with a reference count of zero: same key, hash string, profiles, ports,
  /// uniforms and connections (to the very same source fragments), no owner graph.
  virtual IShaderFragment* clone(const WString& instanceName) const = 0;
  /// The name under which the fragment stands in its library.
  virtual const WString& key() const = 0;
  /// Tells definitions apart: digest of the fragment's object and of the include files it uses.
  virtual const WString& getHashString() const = 0;
  virtual const WString& instanceName() const = 0;
  /// Not owned; null for a library fragment.
  virtual IShaderFragmentGraph* getOwnerGraph() const = 0;
  virtual void setOwnerGraph(IShaderFragmentGraph* graph) = 0;

  virtual std::size_t getNumProfiles() const = 0;
  virtual const IShaderFragmentProfile* getProfile(std::size_t index) const = 0;
  /// The first registered profile that serves the language, or null.
  virtual const IShaderFragmentProfile* findFirstProfile(const UString& language) const = 0;
  /// Of the profiles of exactly that name and language the one nearest in level of detail, the first
  /// registered of equals; null when there is none.
  virtual const IShaderFragmentProfile* findBestProfile(const WString& profileName, const UString& language,
                                                        float lod) const = 0;
  /// Registers under every language of the profile. Null and a profile without languages are ignored.
  virtual void registerProfile(IShaderFragmentProfile* profile) = 0;

  virtual std::size_t getNumInputs() const = 0;
  /// The structure's name for a structure, else the language's name of the type.
  virtual const WString& getInputType(const ILanguageTraits* traits, std::size_t index) const = 0;
  virtual const WString& getInputName(std::size_t index) const = 0;
  virtual const AParameter* getInput(std::size_t index) const = 0;
  virtual std::size_t getNumOutputs() const = 0;
  virtual const WString& getOutputType(const ILanguageTraits* traits, std::size_t index) const = 0;
  virtual const WString& getOutputName(std::size_t index) const = 0;
  virtual const AParameter* getOutput(std::size_t index) const = 0;
  virtual void addInput(const AParameter* parameter) = 0;
  virtual void addInput(const TypeID& type, const WString& name) = 0;
  virtual void addInput(const WString& structName, const WString& name) = 0;
  virtual void addOutput(const AParameter* parameter) = 0;
  virtual void addOutput(const TypeID& type, const WString& name) = 0;
  virtual void addOutput(const WString& structName, const WString& name) = 0;
  virtual std::size_t findInputIndex(const wchar_t* name) const = 0;
  virtual std::size_t findOutputIndex(const wchar_t* name) const = 0;

  /// One entry per input.
  virtual const Array<ShaderFragmentConnection>& getInputConnections() const = 0;
  // Each answers false and changes nothing when source, owner graph or an index does not fit. Types are not
  // compared.
  virtual bool setInputConnection(const wchar_t* input, const wchar_t* graphInput) = 0;
  virtual bool setInputConnection(const wchar_t* input, IShaderFragment* source, const wchar_t* output) = 0;
  virtual bool setInputConnection(std::size_t input, std::size_t graphInput) = 0;
  virtual bool setInputConnection(std::size_t input, IShaderFragment* source, std::size_t output) = 0;
  virtual void clearInputConnect(const wchar_t* input) = 0;
  virtual void clearInputConnect(std::size_t input) = 0;

  virtual std::size_t getNumUniforms() const = 0;
  virtual const AParameter* getUniform(std::size_t index) const = 0;
  virtual void addUniform(const AParameter* parameter) = 0;

  /// Whether `candidate` feeds this fragment, directly or through others. Takes time in proportion to
  /// fragments plus connections, no stack, and ends on cycles.
  virtual bool hasAncestor(IShaderFragment* candidate) const = 0;
  /// Describes the fragment on the standard wide output stream.
  virtual void debugDump() = 0;
  /// Type names of the extra shader inputs of a collapse's result.
  virtual const Array<WString>& getShaderInputTypes() const = 0;
};

/// The one implementation of IShaderFragment.
class SFG_API AShaderFragment : public RefCounted<IShaderFragment> {
public:
  AShaderFragment();
  explicit AShaderFragment(const WString& instanceName);
  ~AShaderFragment() override;
  AShaderFragment(const AShaderFragment&) = delete;
  AShaderFragment& operator=(const AShaderFragment&) = delete;

  IShaderFragment* clone(const WString& instanceName) const override;
  const WString& key() const override { return key_; }
  const WString& getHashString() const override { return *hashString_; }
  const WString& instanceName() const override { return instanceName_; }
  IShaderFragmentGraph* getOwnerGraph() const override { return ownerGraph_; }
  void setOwnerGraph(IShaderFragmentGraph* graph) override;
  std::size_t getNumProfiles() const override { return profiles_->list.size(); }
  const IShaderFragmentProfile* getProfile(std::size_t index) const override {
    return profiles_->list[index];
  }
  const IShaderFragmentProfile* findFirstProfile(const UString& language) const override;
  const IShaderFragmentProfile* findBestProfile(const WString& profileName, const UString& language,
                                                float lod) const override;
  void registerProfile(IShaderFragmentProfile* profile) override;
  std::size_t getNumInputs() const override { return inputs_.size(); }
  const WString& getInputType(const ILanguageTraits* traits, std::size_t index) const override;
  const WString& getInputName(std::size_t index) const override { return inputs_[index]->getName(); }
  const AParameter* getInput(std::size_t index) const override { return inputs_[index].get(); }
  std::size_t getNumOutputs() const override { return outputs_.size(); }
  const WString& getOutputType(const ILanguageTraits* traits, std::size_t index) const override;
  const WString& getOutputName(std::size_t index) const override { return outputs_[index]->getName(); }
  const AParameter* getOutput(std::size_t index) const override { return outputs_[index].get(); }
  void addInput(const AParameter* parameter) override;
  void addInput(const TypeID& type, const WString& name) override;
  void addInput(const WString& structName, const WString& name) override;
  void addOutput(const AParameter* parameter) override;
  void addOutput(const TypeID& type, const WString& name) override;
  void addOutput(const WString& structName, const WString& name) override;
  std::size_t findInputIndex(const wchar_t* name) const override;
  std::size_t findOutputIndex(const wchar_t* name) const override;
  const Array<ShaderFragmentConnection>& getInputConnections() const override { return inputConnections_; }
  bool setInputConnection(const wchar_t* input, const wchar_t* graphInput) override;
  bool setInputConnection(const wchar_t* input, IShaderFragment* source, const wchar_t* output) override;
  bool setInputConnection(std::size_t input, std::size_t graphInput) override;
  bool setInputConnection(std::size_t input, IShaderFragment* source, std::size_t output) override;
  void clearInputConnect(const wchar_t* input) override;
  void clearInputConnect(std::size_t input) override;
  std::size_t getNumUniforms() const override { return uniforms_.size(); }
  const AParameter* getUniform(std::size_t index) const override { return uniforms_[index].get(); }
  void addUniform(const AParameter* parameter) override;
  bool hasAncestor(IShaderFragment* candidate) const override;
  void debugDump() override;
  const Array<WString>& getShaderInputTypes() const override { return shaderInputTypes_; }
  /// Writable, for whoever registers the fragment.
  virtual WString& key() { return key_; }

  // For the collapse that fills a result fragment.
  Array<WString>& getShaderInputTypes() { return shaderInputTypes_; }
  void reserveUniforms(std::size_t count) { uniforms_.reserve(count); }

  /// Fills the fragment from a fragment object: its "profiles" (the object itself is the one profile when
  /// there are none) and its "uniforms", and forms the hash string. False for a null node. Throws Exception
  /// "sfgError : Failed to load profile %d!" or "sfgError : Failed to load uniform %i!" with the position;
  /// what was read before stays, and the fragment must not be used.
  bool load(const IObjectDataNode* node);
  /// The same; the hash string takes the include files of `includes` instead of the process's registry.
  bool load(const IObjectDataNode* node, ShaderIncludes& includes);
  /// What a load that threw was reading, and why it could not, with the place where it is known.
  const WString& getLoadError() const noexcept { return loadError_; }
  /// Empties key, instance name, profiles, connections, ports and uniforms.
  void clear();
  /// Replaces the ports by the parameters of the first registered profile's function; a type text that the
  /// language does not know is a structure's name. Without profiles the ports are just emptied.
  void generateAutoInputsOutputs(const ILanguageTraits* traits);
  /// Makes every graph that takes this fragment in from now on non-consolidatable. Never undone.
  void SetNonConsolidatable() { consolidatable_ = false; }
  /// The place of a profile's first registration, or the not-found value.
  std::size_t findProfileIndex(const IShaderFragmentProfile* profile) const;
  /// Equal for fragments that share their profiles, as clones do, as long as none of them registers another.
  const void* getProfileTable() const noexcept { return profiles_.operator->(); }
  /// Appends what findBestProfile() can find: each profile name with a language behind it.
  void appendProfileKeys(Array<std::wstring_view>& keys) const;
  bool isConsolidatable() const noexcept { return consolidatable_; }

private:
  /// A profile's key in parts: its name with the language behind it.
  struct ProfileKeyView {
    std::wstring_view name;
    std::wstring_view language;
  };
  struct ProfileKeyLess {
    using is_transparent = void;
    bool operator()(std::wstring_view a, std::wstring_view b) const { return a < b; }
    bool operator()(std::wstring_view a, const ProfileKeyView& b) const { return compare(a, b) < 0; }
    bool operator()(const ProfileKeyView& a, std::wstring_view b) const { return compare(b, a) > 0; }
    static int compare(std::wstring_view a, const ProfileKeyView& b) {
      const int names = a.substr(0, b.name.size()).compare(b.name);
      return names != 0 ? names : a.substr(b.name.size()).compare(b.language);
    }
  };
  /// Does not hold the profiles: every fragment that uses the table does, by one reference for each place.
  struct ProfileTable {
    ProfileTable();
    ~ProfileTable();
    Map<WString, Array<IShaderFragmentProfile*>, ProfileKeyLess> byNameAndLanguage;
    Array<IShaderFragmentProfile*> list;
    Map<const IShaderFragmentProfile*, std::size_t> indices;  ///< in a long list, of the first use of each
    std::unique_ptr<ProfileLevels> levels;                    ///< of a long list
    std::atomic<bool> isShared{false};                        ///< by a clone, once: it is never changed again
  };
  /// A fragment's profiles. A copy shares the table and holds the profiles too.
  class Profiles {
  public:
    Profiles();
    Profiles(const Profiles& other);
    Profiles& operator=(const Profiles&) = delete;
    ~Profiles();

    const ProfileTable* operator->() const noexcept { return table_.get(); }
    void add(IShaderFragmentProfile& profile);
    void clear();

  private:
    template <class Operation>
    void forEachPlace(Operation&& operation) const;
    void makeTableOwn();
    void noteIndices();
    static void addTo(Array<IShaderFragmentProfile*>& places, IShaderFragmentProfile& profile);

    std::shared_ptr<ProfileTable> table_;  // whoever registers another profile makes its own
  };

  AShaderFragment(const AShaderFragment& original, const WString& instanceName);

  void loadProfiles(const IObjectDataNode& node);
  void loadUniforms(const IObjectDataNode& node);
  void buildHash(const IObjectDataNode& node, ShaderIncludes& includes);

  // First what a collapse reads of every fragment.
  Profiles profiles_;
  IShaderFragmentGraph* ownerGraph_ = nullptr;
  Array<ShaderFragmentConnection> inputConnections_;
  WString instanceName_;
  Array<RefPtr<AParameter const>> inputs_;
  Array<RefPtr<AParameter const>> outputs_;
  Array<RefPtr<AParameter const>> uniforms_;
  WString key_;
  std::shared_ptr<const WString> hashString_;  // shared with clones
  bool consolidatable_ = true;
  Array<WString> shaderInputTypes_;
  WString loadError_;
};

/// Whether `to` can take all outputs of `from` as its inputs, position by position; false when either is
/// null.
SFG_API bool canConnect(const IShaderFragment* from, const IShaderFragment* to);
/// Whether the fragment takes exactly the graph's outputs. Neither may be null.
SFG_API bool canConnect(const IShaderFragmentGraph* graph, const IShaderFragment* fragment);

}  // namespace TolmSDK::Graphics::sfg
