#include "tolmsdk/parameter.h"

#include <mutex>
#include <utility>

#include "platform/never_destroyed.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics {

namespace {

/// What was wrong with a parameter object, and where.
struct LoadFailure {
  WString message;
};

[[noreturn]] void fail(const IObjectDataNode& place, WString message) {
  const TextPosition position = place.position();
  if (position.line == 0) throw LoadFailure{std::move(message)};
  throw LoadFailure{formatted(L"line %Iu, column %Iu: %s", position.line, position.column, message)};
}

/// The member of that name, also when its value is JSON's null; null when there is none.
const IObjectDataNode* findMember(const IObjectDataNode& object, std::wstring_view name) {
  for (std::size_t index = 0; index < object.size(); ++index) {
    if (object.memberName(index) == name) return object.elementOrNull(index);
  }
  return nullptr;
}

/// The text of an optional string member, null when it is missing.
const WString* readString(const IObjectDataNode& object, std::wstring_view name) {
  const IObjectDataNode* const member = findMember(object, name);
  if (member == nullptr) return nullptr;
  if (member->kind() != NodeKind::string) fail(*member, formatted(L"`%s` must be a string", name));
  return &member->asString();
}

/// The text of a string member that must be there and must not be empty.
const WString& readRequiredString(const IObjectDataNode& object, std::wstring_view name) {
  const IObjectDataNode* const member = findMember(object, name);
  if (member == nullptr) fail(object, formatted(L"`%s` is missing", name));
  if (member->kind() != NodeKind::string || member->asString().empty()) {
    fail(*member, formatted(L"`%s` must be a string that is not empty", name));
  }
  return member->asString();
}

TypeID readType(const IObjectDataNode& object) {
  const WString& text = readRequiredString(object, L"type");
  const TypeID type = ITypeTraits::findType(text);
  const bool isNil = text == ITypeTraits::getTypeName(TypeID_nil) || text == TypeID_nil.toString();
  if (type == TypeID_nil && !isNil) {
    fail(*findMember(object, L"type"), formatted(L"`type` names no type: `%s`", text));
  }
  return type;
}

void setComponent(AValue& value, std::size_t index, const IObjectDataNode& number) {
  if (number.kind() != NodeKind::number) fail(number, L"`value` must hold numbers only");
  if (!value.set(index, number.asNumber())) {
    fail(number,
         formatted(L"`value` does not fit the type `%s`: `%s`", value.type().toString(), number.toText()));
  }
}

/// The default value: a boolean or number for one component, an array for any number of them.
AValue readValue(const IObjectDataNode& object, const TypeID& type) {
  AValue value(type);
  const IObjectDataNode* const member = findMember(object, L"value");
  if (member == nullptr) return value;
  switch (member->kind()) {
  case NodeKind::boolean:
    if (type != TypeID_bool)
      fail(*member, formatted(L"`value` of the type `%s` must not be a boolean", type.toString()));
    value.set(0, member->asBool() ? 1.0 : 0.0);
    return value;
  case NodeKind::number:
    if (value.size() == 1) {
      setComponent(value, 0, *member);
      return value;
    }
    break;
  case NodeKind::array:
    if (member->size() != value.size()) break;
    for (std::size_t index = 0; index < value.size(); ++index) {
      setComponent(value, index, *member->elementOrNull(index));
    }
    return value;
  default: fail(*member, L"`value` must be a boolean, a number or an array of numbers");
  }
  if (value.size() == 0) fail(*member, formatted(L"the type `%s` has no `value`", type.toString()));
  fail(*member, formatted(L"`value` must hold as many numbers as the type `%s` has components: %Iu",
                          type.toString(), value.size()));
}

bool readConstant(const IObjectDataNode& object) {
  const IObjectDataNode* const member = findMember(object, L"constant");
  if (member == nullptr) return false;
  if (member->kind() != NodeKind::boolean) fail(*member, L"`constant` must be `true` or `false`");
  return member->asBool();
}

/// The default value of every type that a parameter was given. Values never move.
class DefaultValues {
public:
  DefaultValues() {
    values_.emplace(TypeID_nil, AValue());
    for (const TypeID& type : allTypes()) values_.emplace(type, type);
  }

  const AValue* find(const TypeID& type) const {
    const auto found = values_.find(type);
    return found != values_.end() ? &found->second : nullptr;
  }
  const AValue* findOrAdd(const TypeID& type) {
    const std::unique_lock lock(mutex_);
    return &others_.emplace(type, type).first->second;
  }

private:
  Map<TypeID, AValue> values_;  // of the constants; not changed
  std::mutex mutex_;
  Map<TypeID, AValue> others_;
};

/// One value for all parameters of a type, which lasts.
const AValue* defaultValueOf(const TypeID& type) {
  static NeverDestroyed<DefaultValues> values;
  const AValue* found = values.get().find(type);
  return found != nullptr ? found : values.get().findOrAdd(type);
}

}  // namespace

AParameter::AParameter() : AParameter(TypeID_nil, WString()) {}

AParameter::AParameter(const TypeID& type, const WString& name)
    : name_(name), typesDefault_(defaultValueOf(type)) {}

AParameter::AParameter(const AParameter& other, WString name)
    : flags_(other.flags_), name_(std::move(name)), typesDefault_(other.typesDefault_), rest_(other.rest_) {
  if (rest_ && !rest_->isShared.load(std::memory_order_relaxed))
    rest_->isShared.store(true, std::memory_order_relaxed);
}

AParameter::~AParameter() = default;

AParameter::Rest::Rest(const Rest& other)
    : ARefObject(other), semantic(other.semantic), structName(other.structName), loadError(other.loadError),
      defaultValue(other.defaultValue ? std::make_unique<const AValue>(*other.defaultValue) : nullptr) {}

const AParameter::Rest& AParameter::rest() const noexcept {
  static const NeverDestroyed<Rest> none;
  return rest_ ? *rest_ : none.get();
}

AParameter::Rest& AParameter::makeRestOwn() {
  if (!rest_) {
    rest_ = makeRef<Rest>();
  } else if (rest_->isShared.load(std::memory_order_relaxed)) {
    rest_ = makeRef<Rest>(*rest_);
  }
  return *rest_;
}

const WString& AParameter::getLoadError() const noexcept { return rest().loadError; }

const WString& AParameter::getStructName() const noexcept { return rest().structName; }

void AParameter::setStructName(const WString& name) {
  if (name != getStructName()) makeRestOwn().structName = name;
}

const UString& AParameter::getSemantic() const noexcept { return rest().semantic; }

void AParameter::setSemantic(const UString& semantic) {
  if (semantic != getSemantic()) makeRestOwn().semantic = semantic;
}

void AParameter::setType(const TypeID& type) {
  typesDefault_ = defaultValueOf(type);
  if (rest().defaultValue) makeRestOwn().defaultValue = nullptr;
}

const AValue& AParameter::getDefaultValue() const noexcept {
  const AValue* own = rest().defaultValue.get();
  return own != nullptr ? *own : *typesDefault_;
}

void AParameter::setDefaultValue(const AValue& value) {
  makeRestOwn().defaultValue = std::make_unique<const AValue>(value);
}

bool AParameter::load(const IObjectDataNode* node) try {
  if (node == nullptr) throw LoadFailure{L"the parameter is missing"};
  if (node->kind() != NodeKind::object) fail(*node, L"a parameter must be an object");

  // Everything is read before anything is changed.
  const WString& name = readRequiredString(*node, L"name");
  const TypeID type = readType(*node);
  WString structName;
  if (type == TypeID_struct) {
    structName = readRequiredString(*node, L"struct");
  } else {
    readString(*node, L"struct");
  }
  const AValue value = readValue(*node, type);
  const bool isConstant = readConstant(*node);
  const WString* const semantic = readString(*node, L"semantic");

  name_ = name;
  setStructName(structName);
  setType(type);
  if (findMember(*node, L"value") != nullptr) setDefaultValue(value);
  flags_ = isConstant ? kConstantFlag : 0;
  setSemantic(semantic == nullptr ? UString() : UString(*semantic));
  if (!getLoadError().empty()) makeRestOwn().loadError.clear();
  return true;
} catch (const LoadFailure& failure) {
  makeRestOwn().loadError = failure.message;
  return false;
}

OverrideNameParameter::OverrideNameParameter(const AParameter& original, WString name)
    : AParameter(original, std::move(name)), original_(&original) {}

OverrideNameParameter::~OverrideNameParameter() = default;

}  // namespace TolmSDK::Graphics
