#include "sfg/state_variable_manager.h"

#include "fragments/ports.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {

namespace {

bool isSamePort(const AParameter& a, const AParameter& b) {
  return a.getType() == b.getType() && a.getName() == b.getName() &&
         (a.getType() != TypeID_struct || a.getStructName() == b.getStructName());
}

}  // namespace

StateVariableManager::StateVariableManager() = default;
StateVariableManager::~StateVariableManager() = default;

bool StateVariableManager::addStateVariableParameters(ITextParameterList* list,
                                                      const IShaderFragmentProfile* profile) const {
  if (profile == nullptr) return false;
  return addStateVariableParameters(list, profile->stateVariables()) &&
         addCustomStateVariableParameters(list, profile->customStateVariables());
}

bool StateVariableManager::addStateVariableParameters(ITextParameterList* list,
                                                      const Set<UString>& stateVariables) const {
  if (list == nullptr) return false;
  bool hasMetaSLState = false;
  for (const UString& name : stateVariables) {
    if (isStateVariableUniform(name)) continue;
    if (name == StateVariable_currentLight) {
      list->addInput(currentLightType_, currentLightName_);
    } else if (isStateVariableMsl(name)) {
      // All of it travels in one structure.
      if (!hasMetaSLState) list->addInput(L"inout State", L"state");
      hasMetaSLState = true;
    } else {
      addVaryingParameter(*list, name);
    }
  }
  return true;
}

void StateVariableManager::addVaryingParameter(ITextParameterList& list, const UString& name) const {
  if (!language_ || language_->getStateVariableParameterName(name).empty()) {
    throw Exception(L"Invalid state variable: %s", name);
  }
  list.addInput(L"inout " + language_->getStateVariableTypeName(name),
                language_->getStateVariableParameterName(name));
}

bool StateVariableManager::addCustomStateVariableParameters(ITextParameterList* list,
                                                            const Set<WString>& names) const {
  if (list == nullptr) return false;
  for (const WString& name : names) {
    const auto found = customStateVariableTypes_.find(name);
    if (found != customStateVariableTypes_.end()) list->addInput(found->second, name);
  }
  return true;
}

void StateVariableManager::setCurrentLight(const WString& type, const WString& name) {
  currentLightType_ = type;
  currentLightName_ = name;
}

void StateVariableManager::registerCustomStateVariable(const WString& type, const WString& name) {
  customStateVariableTypes_.insert_or_assign(name, type);
}

void StateVariableManager::registerCustomStateVariables(const IShaderFragmentGraph* graph) {
  if (graph == nullptr || !language_) return;
  const AParameter* last = nullptr;
  for (std::size_t i = 0; i < graph->getNumFragments(); ++i) {
    const IShaderFragment* fragment = graph->getFragment(i);
    if (fragment == nullptr) continue;
    for (std::size_t output = 0; output < fragment->getNumOutputs(); ++output) {
      const AParameter* parameter = fragment->getOutput(output);
      if (parameter == nullptr || !parameter->getSemantic().empty()) continue;
      // Most fragments are uses of a few, or name their output alike.
      if (last != nullptr && isSamePort(*last, *parameter)) continue;
      last = parameter;
      registerCustomStateVariable(typeText(*language_, *parameter), parameter->getName());
    }
  }
}

}  // namespace TolmSDK::Graphics::sfg
