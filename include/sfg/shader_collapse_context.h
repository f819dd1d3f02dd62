#pragma once

// The state of one collapse.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "sfg/collapse_observer.h"
#include "sfg/export.h"
#include "sfg/fragment_instance.h"
#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile_function.h"
#include "sfg/state_variable_manager.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class Arena;
class FragmentWalk;
class InstanceRegistry;
class ResultWriter;
class VisitedFragments;

/// Owns the fragment being produced, one instance per fragment reached and per light, and the accumulator
/// through which all code reaches the result. Belongs to its tool; used by one thread. Write operations
/// append, and throw only when a text would pass the size limit of generated code.
class SFG_API AShaderCollapseContext : public StateVariableManager {
public:
  AShaderCollapseContext();
  ~AShaderCollapseContext() override;

  /// Takes the inputs and creates the instances of all fragments reachable from the graph's outputs, sources
  /// first, and of all lights. False for an empty graph and when an instance cannot be created.
  bool initialize(const RefPtr<ILanguageTraits const>& language,
                  const RefPtr<IShadingEnvironment const>& environment,
                  const RefPtr<AShaderFragmentGraph const>& graph,
                  const RefPtr<IShaderOptions const>& options);

  const AShaderFragmentGraph* getFragmentGraph() const noexcept { return graph_.get(); }
  const IShadingEnvironment* getShadingEnvironment() const noexcept { return environment_.get(); }
  AShaderFragment* getResult() const noexcept { return result_.get(); }
  AShaderFragmentProfile* getResultProfile() const noexcept { return resultProfile_.get(); }
  const UString& getLanguageString() const;
  float getSurfaceLOD() const;
  float getLightLOD() const;
  /// The constant's text for a parameter that is marked constant and for which the options have a value; else
  /// false.
  bool getConstValue(WString& value, const AParameter* parameter) const;

  /// The instance under the fragment's instance name; a new, uninitialised one when there is none.
  /// The fragment must not be null.
  FragmentInstance& getFragmentInstance(const IShaderFragment* fragment);
  FragmentInstance& getLightFragmentInstance(const IShaderFragment* fragment);

  /// Marks of what has been written once.
  bool getFragmentKeyExist(const WString& key) const;
  void setFragmentKeyExist(const WString& key);

  /// Appends a shader input of that type; it is named "state.shaderInput" and its index.
  void allocateNewShaderInput(const WString& type);
  const Array<WString>& getShaderInputTypes() const noexcept { return shaderInputTypes_; }

  std::size_t getActiveLightIndex() const noexcept { return activeLightIndex_; }
  void setActiveLightIndex(std::size_t index) noexcept;
  /// Whether any surface instance reads the current light.
  bool requiresCurrentLight() const;
  /// Gives every surface instance, in the order of their names, its best profile of that name; false at the
  /// first that fails or has none.
  bool setActiveSurfaceProfile(const WString& profileName);

  // The body of the result.
  bool writeCode(const wchar_t* text);
  bool writeCode(std::wstring_view text);
  /// The wide printf rules of appendFormatted, without a length limit.
  template <class... Arguments>
  bool writeCodef(std::wstring_view format, const Arguments&... arguments) {
    return writeCode(std::wstring_view(formatted(format, arguments...)));
  }
  bool writeDeclareVariable(const wchar_t* type, const wchar_t* name);

  // The predefines of the result.
  /// Text without a symbol (blanks and comments only) is dropped; preprocessor lines are kept.
  void writePredefine(const WString& text);
  void writePredefine(const CodeSnippetInstance& instance, const KeywordReplacePattern& pattern,
                      KeywordReplacePattern& localPattern);
  /// Also renames the profile instance's function to the name it was written under.
  void writeDefinition(const CodeSnippetInstance& instance, const KeywordReplacePattern& pattern,
                       FragmentProfileInstance& profileInstance);

  /// Is told of what is written from now on; null, as at first, for nobody.
  void setObserver(ICollapseObserver* observer);

  // For the collapse.

  ICollapseObserver* observer() const noexcept { return observer_; }
  /// What the last call of writePredefine() or writeDefinition() wrote, when there is an observer.
  std::span<const WrittenSymbol> writtenSymbols() const noexcept;
  /// What evaluates instances.
  FragmentWalk& walk() noexcept { return *walk_; }
  /// What lives as long as the context and is not part of the result.
  Arena& arena() noexcept { return *arena_; }
  /// False for an instance of another context. One that none has made or evaluated becomes this one's.
  bool admit(const FragmentInstance& instance);
  /// Gives the function the name under which another instance wrote it; false when none did.
  bool takeWrittenDefinition(FragmentProfileInstance& instance);
  /// Of the definition that was to be taken last.
  void rememberWrittenDefinition(const FragmentProfileInstance& instance);
  /// The result is kept long after the collapse: room in it that turned out to be far too much is given back.
  void giveBackRoom();

private:
  bool createSurfaceInstances();
  /// Gives the result room for what the instances will write.
  void reserveResult();
  bool createInstances(const IShaderFragment* fragment, VisitedFragments& visited);
  FragmentInstance* createInstance(const IShaderFragment* fragment);
  bool createLightInstance(const IShaderFragment* light);

  RefPtr<IShaderOptions const> options_;
  RefPtr<IShadingEnvironment const> environment_;
  RefPtr<AShaderFragmentGraph const> graph_;
  RefPtr<AShaderFragment> result_;
  RefPtr<AShaderFragmentProfile> resultProfile_;
  Set<WString> fragmentKeys_;
  std::unique_ptr<Arena> arena_;
  std::unique_ptr<InstanceRegistry> instances_;
  std::unique_ptr<ResultWriter> writer_;
  std::unique_ptr<FragmentWalk> walk_;
  ICollapseObserver* observer_ = nullptr;
  std::size_t activeLightIndex_ = 0;
  Array<WString> shaderInputTypes_;
};

}  // namespace TolmSDK::Graphics::sfg
