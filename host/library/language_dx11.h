#pragma once

// The shading language "dx11": HLSL of shader model 5.

#include "sfg/fragment_library.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg::host {

/// Names of types, texts of values and of state variables, and the fragments of one library. Immutable: any
/// number of threads may use one object while nobody fills its library.
class LanguageDx11 : public RefCounted<ILanguageTraits> {
public:
  /// `library` may be null (no fragment is found then) and must outlive this object.
  explicit LanguageDx11(const FragmentLibrary* library);
  ~LanguageDx11() override;

  static constexpr std::wstring_view kName = L"dx11";

  const UString& getLanguageString() const override { return name_; }
  const WString& getTypeName(const TypeID& type) const override { return type.toString(); }
  TypeID getTypeID(const WString& typeText) const override;
  WString getValueText(const AValue& value) const override { return toShaderText(value); }
  /// A varying state variable travels under its own name; the others have no parameter of their own.
  const WString& getStateVariableParameterName(const UString& stateVariable) const override;
  const WString& getStateVariableTypeName(const UString& stateVariable) const override;
  const IShaderFragment* findFragment(const WString& name) const override;

private:
  const FragmentLibrary* library_;
  UString name_;
  WString empty_;
};

}  // namespace TolmSDK::Graphics::sfg::host
