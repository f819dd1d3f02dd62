#pragma once

// Turns the state variables that a profile's code uses into parameters of its function.

#include "sfg/export.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/text_parameter_list.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg {

/// Knows the language, the current light and the custom state variables of one collapse. Used by one thread.
class SFG_API StateVariableManager {
public:
  StateVariableManager();
  virtual ~StateVariableManager();
  StateVariableManager(const StateVariableManager&) = delete;
  StateVariableManager& operator=(const StateVariableManager&) = delete;

  const ILanguageTraits* getLanguage() const noexcept { return language_.get(); }
  void setLanguage(const ILanguageTraits* language) { language_ = language; }

  /// Appends input parameters for the profile's state variables, then for its custom ones that are
  /// registered. Uniform state adds none, all MetaSL state together one `inout State state`. False for a null
  /// list or profile. Throws "Invalid state variable: %s" for one that the language does not know.
  bool addStateVariableParameters(ITextParameterList* list, const IShaderFragmentProfile* profile) const;

  /// Type and name of the parameter that StateVariable_currentLight becomes.
  void setCurrentLight(const WString& type, const WString& name);
  const WString& getCurrentLightType() const noexcept { return currentLightType_; }
  const WString& getCurrentLightName() const noexcept { return currentLightName_; }

  /// Registers or replaces the type of a custom state variable.
  void registerCustomStateVariable(const WString& type, const WString& name);
  /// Registers the outputs without a semantic of all fragments of the graph; null registers nothing.
  void registerCustomStateVariables(const IShaderFragmentGraph* graph);

protected:
  bool addStateVariableParameters(ITextParameterList* list, const Set<UString>& stateVariables) const;
  bool addCustomStateVariableParameters(ITextParameterList* list, const Set<WString>& names) const;

private:
  void addVaryingParameter(ITextParameterList& list, const UString& name) const;

  RefPtr<ILanguageTraits const> language_;
  Map<WString, WString> customStateVariableTypes_;
  WString currentLightType_;
  WString currentLightName_;
};

}  // namespace TolmSDK::Graphics::sfg
