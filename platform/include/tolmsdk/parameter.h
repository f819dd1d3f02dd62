#pragma once

// Parameter records: ports of fragments and graphs, and uniforms.

#include <cstdint>
#include <memory>

#include "tolmsdk/export.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"
#include "tolmsdk/value.h"

namespace TolmSDK::Graphics {

/// One port or uniform: shared by reference between fragments, clones and graphs; filled once, then only
/// read.
class TOLMSDK_API AParameter : public RefCounted<IRefObject> {
public:
  /// Flag bit 0: the parameter has a constant value, which the host's options give.
  static constexpr std::uint32_t kConstantFlag = 1;

  AParameter();
  AParameter(const TypeID& type, const WString& name);
  ~AParameter() override;

  /// Fills the parameter from a JSON object: "name" (required, not empty), "type" (required, a name of either
  /// kind), "struct" (required with type struct), "value" (boolean, number, or array of as many numbers as
  /// the type has components), "constant" (boolean), "semantic" (string). Unknown keys are ignored. Answers
  /// false on anything malformed; getLoadError() then tells what, and the position where it is known.
  bool load(const IObjectDataNode* node);
  const WString& getLoadError() const noexcept;

  const WString& getName() const noexcept { return name_; }
  void setName(const WString& name) { name_ = name; }
  const TypeID& getType() const noexcept { return type_; }
  /// Also resets the default value to the type's.
  void setType(const TypeID& type);
  /// Name of the structure type; meaningful with TypeID_struct only.
  const WString& getStructName() const noexcept;
  void setStructName(const WString& name);

  std::uint32_t getFlags() const noexcept { return flags_; }
  void setFlags(std::uint32_t flags) noexcept { flags_ = flags; }
  bool isConstant() const noexcept { return (flags_ & kConstantFlag) != 0; }

  /// Valid until the parameter gets another type or default value.
  const AValue& getDefaultValue() const noexcept { return *defaultValue_; }
  void setDefaultValue(const AValue& value);

  /// What the host binds the parameter to. Empty: a pre-process output is declared by the collapse, and an
  /// output is registered as a custom state variable.
  const UString& getSemantic() const noexcept { return semantic_; }
  void setSemantic(const UString& semantic) { semantic_ = semantic; }

protected:
  /// A copy under another name.
  AParameter(const AParameter& other, WString name);

private:
  // A collapse makes a parameter for every uniform, so what most do not have, or have in common, is kept
  // apart.
  WString name_;
  std::unique_ptr<WString> structName_;
  std::unique_ptr<WString> loadError_;
  UString semantic_;
  TypeID type_;
  std::uint32_t flags_ = 0;
  std::shared_ptr<const AValue> defaultValue_;  // never null; shared by copies
};

/// A copy of a parameter under another name: a uniform whose name is unique in a shader.
class TOLMSDK_API OverrideNameParameter : public AParameter {
public:
  OverrideNameParameter(const AParameter& original, WString name);
  ~OverrideNameParameter() override;

  /// The parameter copied; kept alive by this one.
  const AParameter* getOriginal() const noexcept { return original_.get(); }

private:
  RefPtr<AParameter const> original_;
};

}  // namespace TolmSDK::Graphics
