#pragma once

// The interface through which fragments, graphs and the collapse see one implementation of a fragment.

#include <cstdint>

#include "sfg/export.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/text_parameter_list.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg {

enum class EShaderFragmentProfileMode : std::uint32_t { Function = 0, Inline = 1, MetaSL = 2 };

/// One implementation of a fragment for a set of languages, under a profile name, at a level of detail. The
/// slot order is fixed. Built by one thread; then read by any number.
class IShaderFragmentProfile : public IRefObject {
public:
  /// Code the implementation needs in front of it: helpers, structures.
  virtual const WString& predefines() const = 0;
  virtual WString& predefines() = 0;
  /// The languages served ("dx11"). A fragment does not register a profile without any.
  virtual const Set<UString>& languages() const = 0;
  virtual Set<UString>& languages() = 0;
  virtual void setLOD(float lod) = 0;
  virtual float getLOD() const = 0;
  virtual const WString& getProfilename() const = 0;
  /// State variables that the code uses.
  virtual const Set<UString>& stateVariables() const = 0;
  virtual Set<UString>& stateVariables() = 0;
  /// State variables that the profile's file lists.
  virtual const Set<WString>& customStateVariables() const = 0;
  virtual Set<WString>& customStateVariables() = 0;
  /// Names of include files.
  virtual const Set<WString>& includes() const = 0;
  virtual Set<WString>& includes() = 0;
  virtual const WString& getFunctionName() const = 0;
  virtual const WString& getFunctionBody() const = 0;
  /// Inputs and outputs of the function prototype.
  virtual const ITextParameterList* getFunctionParameters() const = 0;
  virtual ITextParameterList* getFunctionParameters() = 0;
  virtual EShaderFragmentProfileMode getMode() const = 0;
  virtual void setProfilename(const WString& name) = 0;
  /// Takes name and parameters from `void name(parameters)`; throws Exception for anything else.
  virtual bool setFunctionPrototype(const WString& prototype) = 0;
  virtual void setFunctionName(const WString& name) = 0;
  /// Takes the body and finds the state variables and built-in calls in it.
  virtual void setFunctionBody(const WString& body) = 0;
};

}  // namespace TolmSDK::Graphics::sfg
