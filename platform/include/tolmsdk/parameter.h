#pragma once

// Parameter records: ports of fragments and graphs, and uniforms.

#include <atomic>
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
/// read. References to its texts and its value stay valid until a setter or a load changes it; that to its
/// name as long as the parameter.
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
  const TypeID& getType() const noexcept { return typesDefault_->type(); }
  /// Also resets the default value to the type's.
  void setType(const TypeID& type);
  /// Name of the structure type; meaningful with TypeID_struct only.
  const WString& getStructName() const noexcept;
  void setStructName(const WString& name);

  std::uint32_t getFlags() const noexcept { return flags_; }
  void setFlags(std::uint32_t flags) noexcept { flags_ = flags; }
  bool isConstant() const noexcept { return (flags_ & kConstantFlag) != 0; }

  /// Valid until the parameter gets another type or default value.
  const AValue& getDefaultValue() const noexcept;
  void setDefaultValue(const AValue& value);

  /// What the host binds the parameter to. Empty: a pre-process output is declared by the collapse, and an
  /// output is registered as a custom state variable.
  const UString& getSemantic() const noexcept;
  void setSemantic(const UString& semantic);

protected:
  /// A copy under another name.
  AParameter(const AParameter& other, WString name);

private:
  /// What most parameters do without. Copies share it, and then it never changes again.
  struct Rest : public ARefObject {
    Rest() = default;
    Rest(const Rest& other);

    UString semantic;
    WString structName;
    WString loadError;
    std::unique_ptr<const AValue> defaultValue;  // null: the type's
    std::atomic<bool> isShared{false};
  };

  const Rest& rest() const noexcept;
  Rest& makeRestOwn();

  // A collapse makes a parameter for every uniform, so they are small.
  std::uint32_t flags_ = 0;
  WString name_;
  const AValue* typesDefault_;  // of the parameter's type
  RefPtr<Rest> rest_;           // null as long as nothing of it is set
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
