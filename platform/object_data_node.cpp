#include "tolmsdk/object_data_node.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "platform/json_value.h"
#include "platform/never_destroyed.h"
#include "platform/text_file.h"
#include "platform/utf.h"
#include "tolmsdk/files.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::json {

namespace {

const WString& emptyText() {
  static const NeverDestroyed<WString> text;
  return text.get();
}

/// The number that a text is as a whole.
std::optional<double> parseNumber(std::wstring_view text) {
  std::string digits;
  digits.reserve(text.size());
  for (const wchar_t c : text) {
    // Letters but the exponent's would make "nan" and "inf" numbers.
    const bool isAllowed =
        (c >= L'0' && c <= L'9') || c == L'.' || c == L'-' || c == L'+' || c == L'e' || c == L'E';
    if (!isAllowed) return {};
    digits += static_cast<char>(c);
  }
  double number = 0.0;
  const char* const end = digits.data() + digits.size();
  const std::from_chars_result result = std::from_chars(digits.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) return {};
  return number;
}

double asDouble(const Value& number) {
  switch (number.form) {
  case NumberForm::integer: return static_cast<double>(number.integer);
  case NumberForm::natural: return static_cast<double>(number.natural);
  case NumberForm::real: break;
  }
  return number.real;
}

template <class Number>
void appendNumber(WString& out, Number number) {
  char digits[32];
  const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, number);
  out.append(digits, end.ptr);
}

/// Numbers that are integers of 64 bits are written as integers, however they were spelled.
void appendReal(WString& out, double number) {
  const bool isInteger = std::trunc(number) == number;
  if (isInteger && number >= -0x1p63 && number < 0x1p63) {
    appendNumber(out, static_cast<std::int64_t>(number));
  } else if (isInteger && number > 0.0 && number < 0x1p64) {
    appendNumber(out, static_cast<std::uint64_t>(number));
  } else {
    appendNumber(out, number);
  }
}

void appendNumberText(WString& out, const Value& number) {
  switch (number.form) {
  case NumberForm::integer: appendNumber(out, number.integer); return;
  case NumberForm::natural: appendNumber(out, number.natural); return;
  case NumberForm::real: appendReal(out, number.real); return;
  }
}

void appendQuoted(WString& out, std::wstring_view text) {
  out += L'"';
  for (const wchar_t c : text) {
    switch (c) {
    case L'"': out += L"\\\""; break;
    case L'\\': out += L"\\\\"; break;
    case L'\b': out += L"\\b"; break;
    case L'\f': out += L"\\f"; break;
    case L'\n': out += L"\\n"; break;
    case L'\r': out += L"\\r"; break;
    case L'\t': out += L"\\t"; break;
    default:
      if (static_cast<char32_t>(c) < 0x20) {
        out += L"\\u00";
        out += L"0123456789abcdef"[c >> 4];
        out += L"0123456789abcdef"[c & 15];
      } else {
        out += c;
      }
    }
  }
  out += L'"';
}

void appendChildren(WString& out, const Children& children) {
  for (std::uint32_t index = 0; index < children.count; ++index) {
    if (index != 0) out += L',';
    if (children.names != nullptr) {
      appendQuoted(out, *children.names[index]);
      out += L':';
    }
    appendText(out, children.nodes[index].value());
  }
}

}  // namespace

std::size_t Children::find(std::wstring_view name) const {
  if (names == nullptr) return kNotFound;
  if (byName != nullptr) {
    const std::uint32_t* const end = byName + count;
    const std::uint32_t* const found =
        std::lower_bound(byName, end, name, [&](std::uint32_t index, std::wstring_view wanted) {
          return *names[index] < wanted;
        });
    return found != end && *names[*found] == name ? *found : kNotFound;
  }
  const auto* const found =
      std::find_if(names, names + count, [&](const WString* each) { return *each == name; });
  return found == names + count ? kNotFound : static_cast<std::size_t>(found - names);
}

void appendText(WString& out, const Value& value) {
  switch (value.kind) {
  case NodeKind::null: out += L"null"; return;
  case NodeKind::boolean: out += value.boolean ? L"true" : L"false"; return;
  case NodeKind::number: appendNumberText(out, value); return;
  case NodeKind::string: appendQuoted(out, *value.text); return;
  // The depth of a document is limited, and so is this recursion.
  case NodeKind::array:
  case NodeKind::object:
    out += value.kind == NodeKind::array ? L'[' : L'{';
    appendChildren(out, *value.children);
    out += value.kind == NodeKind::array ? L']' : L'}';
    return;
  }
}

std::size_t ValueNode::size() const {
  const Children* const children = value_.childrenOrNull();
  return children == nullptr ? 0 : children->count;
}

const IObjectDataNode* ValueNode::elementOrNull(std::size_t index) const {
  const Children* const children = value_.childrenOrNull();
  return children == nullptr || index >= children->count ? nullptr : children->nodes + index;
}

const IObjectDataNode* ValueNode::element(std::size_t index) const {
  const IObjectDataNode* const node = elementOrNull(index);
  return node == nullptr || node->kind() == NodeKind::null ? nullptr : node;
}

const WString& ValueNode::memberName(std::size_t index) const {
  const Children* const children = value_.childrenOrNull();
  const bool hasName = children != nullptr && children->names != nullptr && index < children->count;
  return hasName ? *children->names[index] : emptyText();
}

const IObjectDataNode* ValueNode::member(std::wstring_view name) const {
  const Children* const children = value_.childrenOrNull();
  return children == nullptr ? nullptr : element(children->find(name));
}

const WString& ValueNode::asString() const {
  return value_.kind == NodeKind::string ? *value_.text : emptyText();
}

double ValueNode::asNumber() const {
  if (value_.kind == NodeKind::number) return asDouble(value_);
  if (value_.kind == NodeKind::string) return parseNumber(*value_.text).value_or(0.0);
  return 0.0;
}

bool ValueNode::isNumeric() const {
  if (value_.kind == NodeKind::string) return parseNumber(*value_.text).has_value();
  return value_.kind == NodeKind::number;
}

bool ValueNode::asBool() const { return value_.kind == NodeKind::boolean && value_.boolean; }

WString ValueNode::toText() const {
  WString out;
  appendText(out, value_);
  return out;
}

void Node::AddRef() const { document_->AddRef(); }

void Node::Release() const { document_->Release(); }

const WString& Node::getLoadError() const { return emptyText(); }

namespace {

/// The node that createJsonNode answers: it keeps the document that it has loaded.
class RootNode final : public RefCounted<ValueNode> {
public:
  bool loadFromFile(std::wstring_view path) override {
    std::string bytes;
    WString error;
    if (!readTextFile(path, bytes, error)) return fail(std::move(error));
    return load(bytes);
  }

  bool loadFromText(std::wstring_view text) override {
    const std::string bytes = toUtf8(text);
    if (bytes.size() > kMaximumTextFileSize) return fail(tooLargeMessage());
    return load(withoutByteOrderMark(bytes));
  }

  const WString& getLoadError() const override { return error_; }

private:
  bool load(std::string_view bytes) {
    WString error;
    RefPtr<Document> document = parseDocument(bytes, error);
    if (!document) return fail(std::move(error));
    value_ = document->root;
    document_ = std::move(document);
    error_.clear();
    return true;
  }

  bool fail(WString error) {
    value_ = Value();
    document_.reset();
    error_ = std::move(error);
    return false;
  }

  RefPtr<Document> document_;
  WString error_;
};

}  // namespace

}  // namespace TolmSDK::json

namespace TolmSDK {

IObjectDataNode* createJsonNode() { return new json::RootNode(); }

}  // namespace TolmSDK
