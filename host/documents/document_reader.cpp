#include "host/documents/document_reader.h"

#include <charconv>

#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Takes `prefix` and the number behind it from the front of `text`; nothing when they do not stand there.
std::optional<std::size_t> takeNumber(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return std::nullopt;
  std::size_t number = 0;
  const char* const start = text.data() + prefix.size();
  const auto [end, error] = std::from_chars(start, text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

/// A load error of the platform says its place in words; diagnostics show it behind the file's name.
InputError withPlace(const std::string& file, const WString& loadError) {
  const std::string message = toUtf8(loadError);
  std::string_view text = message;
  const std::optional<std::size_t> line = takeNumber(text, "line ");
  const std::optional<std::size_t> column = line ? takeNumber(text, ", column ") : std::nullopt;
  if (!column || !text.starts_with(": ")) return InputError(file, TextPosition(), message);
  return InputError(file, TextPosition{*line, *column}, std::string(text.substr(2)));
}

const char* expectedValue(const TypeID& type) {
  if (type == TypeID_bool) return "`true` or `false`";
  if (type == TypeID_int) return "an integer";
  if (type == TypeID_uint) return "an integer that is not negative";
  if (type == TypeID_float) return "a number";
  return nullptr;
}

}  // namespace

DocumentReader::DocumentReader(const Document& document)
    : file_(document.name()), hasPlaces_(document.hasPlaces()), root_(createJsonNode()) {
  load(document.text());
  if (root_->kind() != NodeKind::object) refuse(*root_, "expected an object at the top level");
}

void DocumentReader::load(const std::optional<std::string>& text) {
  constexpr std::wstring_view kByteOrderMark = L"\uFEFF";
  bool isLoaded = false;
  if (text) {
    const WString wide = fromUtf8(*text);
    std::wstring_view json = wide;
    if (json.starts_with(kByteOrderMark)) json.remove_prefix(kByteOrderMark.size());
    isLoaded = root_->loadFromText(json);
  } else {
    isLoaded = root_->loadFromFile(fromUtf8(file_));
  }
  if (!isLoaded) throw withPlace(file_, root_->getLoadError());
}

void DocumentReader::refuse(const IObjectDataNode& at, const std::string& reason) const {
  throw InputError(file_, positionOf(at), reason);
}

WString DocumentReader::requiredName(const IObjectDataNode& object, std::wstring_view key) const {
  return fromUtf8(requiredUtf8(object, key));
}

std::string_view DocumentReader::requiredUtf8(const IObjectDataNode& object, std::wstring_view key) const {
  const std::string_view name = optionalUtf8(object, key);
  if (name.empty()) refuse(object, inTicks(key) + " is missing");
  return name;
}

std::optional<WString> DocumentReader::optionalName(const IObjectDataNode& object,
                                                    std::wstring_view key) const {
  const std::string_view name = optionalUtf8(object, key);
  if (name.empty()) return std::nullopt;
  return fromUtf8(name);
}

std::string_view DocumentReader::optionalUtf8(const IObjectDataNode& object, std::wstring_view key) const {
  const IObjectDataNode* const value = object.member(key);
  if (value != nullptr && value->asUtf8().empty()) {
    refuse(*value, inTicks(key) + " must be a string that is not empty");
  }
  return value != nullptr ? value->asUtf8() : std::string_view();
}

const IObjectDataNode* DocumentReader::optionalArray(const IObjectDataNode& object,
                                                     std::wstring_view key) const {
  const IObjectDataNode* const value = object.member(key);
  if (value != nullptr && value->kind() != NodeKind::array)
    refuse(*value, inTicks(key) + " must be an array");
  return value;
}

const IObjectDataNode* DocumentReader::optionalObject(const IObjectDataNode& object,
                                                      std::wstring_view key) const {
  const IObjectDataNode* const value = object.member(key);
  if (value != nullptr && value->kind() != NodeKind::object)
    refuse(*value, inTicks(key) + " must be an object");
  return value;
}

const IObjectDataNode& DocumentReader::objectAt(const IObjectDataNode& array, std::size_t index) const {
  const IObjectDataNode& value = *array.elementOrNull(index);
  if (value.kind() != NodeKind::object) refuse(value, "expected an object");
  return value;
}

WString DocumentReader::nameAt(const IObjectDataNode& array, std::size_t index) const {
  const IObjectDataNode& value = *array.elementOrNull(index);
  if (value.kind() != NodeKind::string || value.asString().empty()) {
    refuse(value, "expected a string that is not empty");
  }
  return value.asString();
}

RefPtr<AParameter> DocumentReader::parameter(const IObjectDataNode& object) const {
  RefPtr<AParameter> parameter = makeRef<AParameter>();
  if (!parameter->load(&object)) {
    const InputError error = withPlace(file_, parameter->getLoadError());
    const bool isPlaced = hasPlaces_ && error.position().line != 0;
    throw isPlaced ? error : InputError(file_, positionOf(object), error.what());
  }
  if (parameter->isConstant() && componentCount(parameter->getType()) == 0) {
    refuse(object, inTicks(parameter->getName()) + " cannot be constant: a value of type " +
                       typeText(*parameter) + " has no text");
  }
  return parameter;
}

bool readValue(const IObjectDataNode& node, AValue& value) {
  const auto setNumber = [&](std::size_t index, const IObjectDataNode& number) {
    return number.kind() == NodeKind::number && value.set(index, number.asNumber());
  };
  if (value.size() == 0) return false;
  if (node.kind() == NodeKind::boolean)
    return value.type() == TypeID_bool && value.set(0, node.asBool() ? 1.0 : 0.0);
  if (node.kind() == NodeKind::number) return value.size() == 1 && setNumber(0, node);
  if (node.kind() != NodeKind::array || node.size() != value.size()) return false;
  for (std::size_t index = 0; index < value.size(); ++index)
    if (!setNumber(index, *node.elementOrNull(index))) return false;
  return true;
}

void DocumentReader::refuseValue(const IObjectDataNode& node, const AParameter& parameter,
                                 const std::string& what) const {
  const TypeID& type = parameter.getType();
  if (componentCount(type) == 0) {
    refuse(node, what + " cannot be given: a value of type " + typeText(parameter) + " has no text");
  }
  refuse(node,
         what + " does not fit the type " + typeText(parameter) + ": expected " + expectedValueText(type));
}

std::string expectedValueText(const TypeID& type) {
  if (const char* scalar = expectedValue(type)) return scalar;
  const bool integers = type.word(0) == TypeID_ivec2.word(0) || type.word(0) == TypeID_uvec2.word(0);
  return "an array of " + std::to_string(componentCount(type)) + (integers ? " integers" : " numbers");
}

std::string inTicks(std::string_view utf8) { return "`" + std::string(utf8) + "`"; }
std::string inTicks(std::wstring_view name) { return inTicks(toUtf8(name)); }

std::string typeText(const AParameter& parameter) {
  return inTicks(parameter.getType() == TypeID_struct ? parameter.getStructName()
                                                      : parameter.getType().toString());
}

}  // namespace TolmSDK::Graphics::sfg::host
