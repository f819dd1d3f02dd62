#include "host/library/language_dx11.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kInout = L"inout ";

const StateVariableInfo* findVarying(const UString& name) {
  const StateVariableInfo* info = findStateVariable(name);
  return info != nullptr && info->kind == StateVariableKind::varying ? info : nullptr;
}

}  // namespace

LanguageDx11::LanguageDx11(const FragmentLibrary* library) : library_(library), name_(kName) {}
LanguageDx11::~LanguageDx11() = default;

TypeID LanguageDx11::getTypeID(const WString& typeText) const {
  std::wstring_view text = typeText;
  if (text.starts_with(kInout)) text.remove_prefix(kInout.size());
  if (text == TypeID_struct.toString()) return TypeID_nil;
  for (const TypeID& type : allTypes()) {
    if (text == type.toString()) return type;
  }
  return TypeID_nil;
}

const WString& LanguageDx11::getStateVariableParameterName(const UString& stateVariable) const {
  const StateVariableInfo* info = findVarying(stateVariable);
  return info != nullptr ? info->name.str() : empty_;
}

const WString& LanguageDx11::getStateVariableTypeName(const UString& stateVariable) const {
  const StateVariableInfo* info = findVarying(stateVariable);
  return info != nullptr ? info->type.toString() : empty_;
}

const IShaderFragment* LanguageDx11::findFragment(const WString& name) const {
  return library_ != nullptr ? library_->acquireFragment(name.c_str()) : nullptr;
}

}  // namespace TolmSDK::Graphics::sfg::host
