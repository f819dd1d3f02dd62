#include "host/documents/document_reader.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "host/documents/diagnose.h"
#include "host/documents/load_error.h"
#include "host/documents/near_name.h"
#include "host/documents/shader_names.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

const char* expectedValue(const TypeID& type) {
  if (type == TypeID_bool) return "`true` or `false`";
  if (type == TypeID_int) return "an integer";
  if (type == TypeID_uint) return "an integer that is not negative";
  if (type == TypeID_float) return "a number";
  return nullptr;
}

/// The order by objects, each of which is asked for its own keys.
bool isOfEarlierObject(const UnknownKey& a, const UnknownKey& b) { return std::less<>()(a.object, b.object); }

bool holds(const IObjectDataNode& object, const IObjectDataNode& member) {
  for (std::size_t i = 0; i < object.size(); ++i) {
    if (object.elementOrNull(i) == &member) return true;
  }
  return false;
}

}  // namespace

DocumentReader::DocumentReader(const Document& document)
    : file_(document.name()), hasPlaces_(document.hasPlaces()), root_(createJsonNode()) {
  load(document.text());
  if (root_->kind() != NodeKind::object)
    refuse(Finding::wrongKind, *root_, "expected an object at the top level");
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
  if (isLoaded) return;
  const LoadError error = documentError(toUtf8(root_->getLoadError()));
  throw inputError(error.kind, file_, error.position, error.text);
}

void DocumentReader::checkKeys(const KeyTable& table) {
  unknownKeys_ = findUnknownKeys(*root_, table);
  problems_.clear();
  for (const UnknownKey& found : unknownKeys_) {
    problems_.push_back(placed(describe(found, Severity::warning, file_)));
  }
  std::stable_sort(unknownKeys_.begin(), unknownKeys_.end(), isOfEarlierObject);
  for (const RepeatedMember& repeated : root_->repeatedMembers()) {
    if (!isCommentKey(repeated.name)) problems_.push_back(placed(describe(repeated, file_)));
  }
  std::stable_sort(problems_.begin(), problems_.end(), [](const Diagnostic& a, const Diagnostic& b) {
    return std::pair(a.line, a.column) < std::pair(b.line, b.column);
  });
}

Diagnostic DocumentReader::placed(Diagnostic diagnostic) const {
  if (!hasPlaces_) diagnostic.line = diagnostic.column = 0;
  return diagnostic;
}

void DocumentReader::refuse(Finding kind, const IObjectDataNode& at, const std::string& reason,
                            std::string_view suggestion) const {
  // What is missing may stand there under a mistyped key, which then is the cause.
  const auto isCause = [&](const UnknownKey& found) {
    if (found.object == root_.get()) {
      if (kind == Finding::unknownNode) return found.meant == "nodes";
      if (kind == Finding::unknownGraphInput) return found.meant == "inputs";
    }
    if (kind == Finding::outputWithoutNode) return found.meant == "node" && holds(*found.object, at);
    return found.object == &at && !found.meant.empty() && at.member(fromUtf8(found.meant)) == nullptr;
  };
  const bool lacksKey = kind == Finding::missingKey || kind == Finding::oneSource ||
                        kind == Finding::unknownNode || kind == Finding::unknownGraphInput ||
                        kind == Finding::outputWithoutNode;
  const auto cause =
      lacksKey ? std::find_if(unknownKeys_.begin(), unknownKeys_.end(), isCause) : unknownKeys_.end();
  if (cause == unknownKeys_.end())
    fail(diagnose(kind, Severity::error, file_, positionOf(at), reason, std::string(suggestion)));
  fail(placed(describe(*cause, Severity::error, file_)));
}

bool DocumentReader::isMistyped(const IObjectDataNode& object, std::string_view key) const {
  UnknownKey wanted;
  wanted.object = &object;
  const auto [begin, end] =
      std::equal_range(unknownKeys_.begin(), unknownKeys_.end(), wanted, isOfEarlierObject);
  return std::any_of(begin, end, [&](const UnknownKey& found) { return found.meant == key; });
}

void DocumentReader::refuse(const UnknownName& unknown, const IObjectDataNode& at) const {
  const Diagnostic told =
      diagnose(unknown.kind, Severity::error, file_, positionOf(at), unknown.text + unknown.hint);
  InputError error(told.file, positionOf(at), told.text, told.identifier);
  error.setSuggestion(unknown.meant);
  std::vector<Diagnostic> before = problems_;
  if (unknown.cause) before.push_back(*unknown.cause);
  error.setRelated(std::move(before));
  throw error;
}

void DocumentReader::refuseMember(Finding kind, const IObjectDataNode& object, std::size_t index,
                                  const std::string& reason, std::string_view suggestion) const {
  fail(placed(
      diagnose(kind, Severity::error, file_, object.memberPosition(index), reason, std::string(suggestion))));
}

/// With the problems that were found before; the cause is no longer one of them.
void DocumentReader::fail(const Diagnostic& cause) const {
  std::vector<Diagnostic> others;
  for (const Diagnostic& problem : problems_) {
    const bool isCause = problem.identifier == cause.identifier && problem.line == cause.line &&
                         problem.column == cause.column && problem.text == cause.text;
    if (!isCause) others.push_back(problem);
  }
  InputError error(cause.file, TextPosition{cause.line, cause.column}, cause.text, cause.identifier);
  error.setRelated(std::move(others));
  error.setSuggestion(cause.suggestion);
  throw error;
}

WString DocumentReader::requiredName(const IObjectDataNode& object, std::wstring_view key) const {
  return fromUtf8(requiredUtf8(object, key));
}

std::string_view DocumentReader::requiredUtf8(const IObjectDataNode& object, std::wstring_view key) const {
  const std::string_view name = optionalUtf8(object, key);
  if (name.empty()) refuse(Finding::missingKey, object, inTicks(key) + " is missing");
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
    refuse(Finding::wrongKind, *value, inTicks(key) + " must be a string that is not empty");
  }
  return value != nullptr ? value->asUtf8() : std::string_view();
}

const IObjectDataNode* DocumentReader::optionalArray(const IObjectDataNode& object,
                                                     std::wstring_view key) const {
  const IObjectDataNode* const value = object.member(key);
  if (value != nullptr && value->kind() != NodeKind::array)
    refuse(Finding::wrongKind, *value, inTicks(key) + " must be an array");
  return value;
}

const IObjectDataNode* DocumentReader::optionalObject(const IObjectDataNode& object,
                                                      std::wstring_view key) const {
  const IObjectDataNode* const value = object.member(key);
  if (value != nullptr && value->kind() != NodeKind::object)
    refuse(Finding::wrongKind, *value, inTicks(key) + " must be an object");
  return value;
}

const IObjectDataNode& DocumentReader::objectAt(const IObjectDataNode& array, std::size_t index) const {
  const IObjectDataNode& value = *array.elementOrNull(index);
  if (value.kind() != NodeKind::object) refuse(Finding::wrongKind, value, "expected an object");
  return value;
}

WString DocumentReader::nameAt(const IObjectDataNode& array, std::size_t index) const {
  const IObjectDataNode& value = *array.elementOrNull(index);
  if (value.kind() != NodeKind::string || value.asString().empty()) {
    refuse(Finding::wrongKind, value, "expected a string that is not empty");
  }
  return value.asString();
}

RefPtr<AParameter> DocumentReader::parameter(const IObjectDataNode& object) const {
  RefPtr<AParameter> parameter = makeRef<AParameter>();
  if (!parameter->load(&object)) {
    const LoadError error = parameterError(toUtf8(parameter->getLoadError()));
    if (error.kind == Finding::missingKey || error.position.line == 0) refuse(error.kind, object, error.text);
    fail(placed(diagnose(error.kind, Severity::error, file_, error.position, error.text, error.suggestion)));
  }
  if (parameter->isConstant() && componentCount(parameter->getType()) == 0) {
    refuse(Finding::wrongValue, object,
           inTicks(parameter->getName()) + " cannot be constant: a value of type " + typeText(*parameter) +
               " has no text");
  }
  return parameter;
}

RefPtr<AParameter> DocumentReader::port(const IObjectDataNode& object, const std::string& what,
                                        bool isDotted) const {
  RefPtr<AParameter> port = parameter(object);
  const IObjectDataNode& name = *object.member(L"name");
  const std::string fault = nameFault(name.asUtf8(), isDotted);
  if (!fault.empty())
    refuse(Finding::badName, name, "the name of " + what + " cannot stand in code: " + fault);
  return port;
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
    refuse(Finding::wrongValue, node,
           what + " cannot be given: a value of type " + typeText(parameter) + " has no text");
  }
  refuse(Finding::wrongValue, node,
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
