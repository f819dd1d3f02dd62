#pragma once

// Reading the JSON documents of the host: every refusal names file, place and what was expected.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/documents/diagnostic_kinds.h"
#include "host/documents/fragment_names.h"
#include "host/documents/key_check.h"
#include "sfg/host/document.h"
#include "sfg/host/errors.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/parameter.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/value.h"

namespace TolmSDK::Graphics::sfg::host {

/// Reads a value of the type that `value` has, as a parameter object does: a boolean or number for one
/// component, an array for any number. False, and some components changed, when it does not fit.
bool readValue(const IObjectDataNode& node, AValue& value);
/// "an array of 3 numbers": what such a value is. Not for a type without components.
std::string expectedValueText(const TypeID& type);

/// Holds one document; nodes handed out live as long as it. Every operation that cannot read what it is asked
/// for throws InputError, with the problems() that were found before. A key whose value is null counts as
/// missing.
class DocumentReader {
public:
  /// Loads it; its top level must be an object.
  explicit DocumentReader(const Document& document);

  const std::string& file() const noexcept { return file_; }
  const IObjectDataNode& root() const noexcept { return *root_; }
  /// Where the node is; nowhere in a document without places.
  TextPosition positionOf(const IObjectDataNode& node) const {
    return hasPlaces_ ? node.position() : TextPosition();
  }

  /// Looks for keys that the root object, or one that it holds, does not know, and for repeated ones.
  void checkKeys(const KeyTable& table);
  /// Whether an unknown key of the object is near to this one.
  bool isMistyped(const IObjectDataNode& object, std::string_view key) const;
  /// Warnings of what was found.
  const std::vector<Diagnostic>& problems() const noexcept { return problems_; }

  /// Where a key is missing, a mistyped one that is near is refused in its stead. `suggestion`: what was
  /// meant in place of the text there.
  [[noreturn]] void refuse(Finding kind, const IObjectDataNode& at, const std::string& reason,
                           std::string_view suggestion = {}) const;

  /// A name of no fragment, behind what is the matter with the fragment.
  [[noreturn]] void refuse(const UnknownName& unknown, const IObjectDataNode& at) const;

  /// At the key of the member.
  [[noreturn]] void refuseMember(Finding kind, const IObjectDataNode& object, std::size_t index,
                                 const std::string& reason, std::string_view suggestion = {}) const;

  /// A non-empty string.
  WString requiredName(const IObjectDataNode& object, std::wstring_view key) const;
  std::optional<WString> optionalName(const IObjectDataNode& object, std::wstring_view key) const;
  /// The same as UTF-8, which lives as long as this. Empty without one.
  std::string_view optionalUtf8(const IObjectDataNode& object, std::wstring_view key) const;
  std::string_view requiredUtf8(const IObjectDataNode& object, std::wstring_view key) const;
  /// The array under `key`, or null.
  const IObjectDataNode* optionalArray(const IObjectDataNode& object, std::wstring_view key) const;
  /// The object under `key`, or null.
  const IObjectDataNode* optionalObject(const IObjectDataNode& object, std::wstring_view key) const;
  /// Element `index` of an array, which must be an object.
  const IObjectDataNode& objectAt(const IObjectDataNode& array, std::size_t index) const;
  /// Element `index` of an array, which must be a non-empty string.
  WString nameAt(const IObjectDataNode& array, std::size_t index) const;

  /// A parameter object. A constant must be of a type whose values have text.
  RefPtr<AParameter> parameter(const IObjectDataNode& object) const;
  /// The same for `what`, whose name can stand in code.
  RefPtr<AParameter> port(const IObjectDataNode& object, const std::string& what, bool isDotted) const;
  /// The value, which must fit the parameter's type; `what()` names it in the refusal.
  template <class Name>
  AValue value(const IObjectDataNode& node, const AParameter& parameter, Name&& what) const {
    AValue value(parameter.getType());
    if (!readValue(node, value)) refuseValue(node, parameter, what());
    return value;
  }

private:
  [[noreturn]] void refuseValue(const IObjectDataNode& node, const AParameter& parameter,
                                const std::string& what) const;

  Diagnostic placed(Diagnostic diagnostic) const;
  [[noreturn]] void fail(const Diagnostic& cause) const;
  void load(const std::optional<std::string>& text);

  std::string file_;
  bool hasPlaces_;
  RefPtr<IObjectDataNode> root_;
  std::vector<UnknownKey> unknownKeys_;
  std::vector<Diagnostic> problems_;
};

/// "`noise`": a name as diagnostics show it.
std::string inTicks(std::string_view utf8);
std::string inTicks(std::wstring_view name);
/// The type as a person writes it: the language's name, or the structure's.
std::string typeText(const AParameter& parameter);

}  // namespace TolmSDK::Graphics::sfg::host
