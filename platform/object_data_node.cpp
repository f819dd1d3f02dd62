#include "tolmsdk/object_data_node.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "platform/json_value.h"
#include "platform/never_destroyed.h"
#include "platform/text_file.h"
#include "platform/utf.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/read_limits.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::json {

namespace {

const WString& emptyText() {
  static const NeverDestroyed<WString> text;
  return text.get();
}

/// The number that a text is as a whole.
std::optional<double> parseNumber(std::string_view text) {
  // Letters but the exponent's would make "nan" and "inf" numbers.
  if (text.find_first_not_of("0123456789.-+eE") != std::string_view::npos) return {};
  double number = 0.0;
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, number);
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

bool isEscaped(char32_t c) { return c < 0x20 || c == U'"' || c == U'\\'; }

void appendEscape(WString& out, wchar_t c) {
  switch (c) {
  case L'"': out += L"\\\""; return;
  case L'\\': out += L"\\\\"; return;
  case L'\b': out += L"\\b"; return;
  case L'\f': out += L"\\f"; return;
  case L'\n': out += L"\\n"; return;
  case L'\r': out += L"\\r"; return;
  case L'\t': out += L"\\t"; return;
  default:
    out += L"\\u00";
    out += L"0123456789abcdef"[c >> 4];
    out += L"0123456789abcdef"[c & 15];
  }
}

void append(WString& out, std::wstring_view text) { out += text; }
void append(WString& out, std::string_view utf8) { appendUtf8(out, utf8); }

template <class View>
void appendQuoted(WString& out, View text) {
  using Unit = std::make_unsigned_t<typename View::value_type>;
  out += L'"';
  while (!text.empty()) {
    const auto escaped = static_cast<std::size_t>(
        std::find_if(text.begin(), text.end(), [](auto c) { return isEscaped(static_cast<Unit>(c)); }) -
        text.begin());
    append(out, text.substr(0, escaped));
    if (escaped == text.size()) break;
    appendEscape(out, static_cast<wchar_t>(text[escaped]));
    text.remove_prefix(escaped + 1);
  }
  out += L'"';
}

}  // namespace

const WString* const* Value::memberNames() const noexcept {
  return reinterpret_cast<const WString* const*>(children + size);
}

const NamePlace* Value::memberPlaces() const noexcept {
  return reinterpret_cast<const NamePlace*>(memberNames() + size);
}

std::size_t Value::findMember(std::wstring_view name) const {
  if (kind != NodeKind::object) return kNotFound;
  const WString* const* const names = memberNames();
  if (size > kIndexedMembers) {
    const auto* const byName = reinterpret_cast<const std::uint32_t*>(memberPlaces() + size);
    const std::uint32_t* const end = byName + size;
    const std::uint32_t* const found =
        std::lower_bound(byName, end, name, [&](std::uint32_t index, std::wstring_view wanted) {
          return *names[index] < wanted;
        });
    return found != end && *names[*found] == name ? *found : kNotFound;
  }
  for (std::size_t index = 0; index < size; ++index) {
    if (*names[index] == name) return index;
  }
  return kNotFound;
}

const IObjectDataNode* ValueNode::elementOrNull(std::size_t index) const {
  return index < size() ? value_.children + index : nullptr;
}

const IObjectDataNode* ValueNode::element(std::size_t index) const {
  const IObjectDataNode* const node = elementOrNull(index);
  return node == nullptr || node->kind() == NodeKind::null ? nullptr : node;
}

const WString& ValueNode::memberName(std::size_t index) const {
  const bool hasName = value_.kind == NodeKind::object && index < value_.size;
  return hasName ? *value_.memberNames()[index] : emptyText();
}

const IObjectDataNode* ValueNode::member(std::wstring_view name) const {
  return element(value_.findMember(name));
}

const WString& ValueNode::asString() const {
  return value_.kind == NodeKind::string ? document_->wideText(value_.utf8()) : emptyText();
}

TextPosition ValueNode::memberPosition(std::size_t index) const {
  if (value_.kind != NodeKind::object || index >= value_.size) return {};
  const NamePlace& place = value_.memberPlaces()[index];
  return {place.line, place.column};
}

Array<RepeatedMember> ValueNode::repeatedMembers() const {
  return document_ != nullptr ? document_->repeatedMembers : Array<RepeatedMember>();
}

std::string_view ValueNode::asUtf8() const {
  return value_.kind == NodeKind::string ? value_.utf8() : std::string_view();
}

double ValueNode::asNumber() const {
  if (value_.kind == NodeKind::number) return asDouble(value_);
  return parseNumber(asUtf8()).value_or(0.0);
}

bool ValueNode::isNumeric() const {
  return value_.kind == NodeKind::number || parseNumber(asUtf8()).has_value();
}

bool ValueNode::asBool() const { return value_.kind == NodeKind::boolean && value_.boolean; }

WString ValueNode::toText() const {
  WString out;
  appendText(out);
  return out;
}

void ValueNode::appendText(WString& out) const {
  switch (value_.kind) {
  case NodeKind::null: out += L"null"; return;
  case NodeKind::boolean: out += value_.boolean ? L"true" : L"false"; return;
  case NodeKind::number: appendNumberText(out, value_); return;
  case NodeKind::string: appendQuoted(out, value_.utf8()); return;
  case NodeKind::array:
  case NodeKind::object: break;
  }
  const bool isObject = value_.kind == NodeKind::object;
  out += isObject ? L'{' : L'[';
  for (std::uint32_t index = 0; index < value_.size; ++index) {
    if (index != 0) out += L',';
    if (isObject) {
      appendQuoted(out, std::wstring_view(*value_.memberNames()[index]));
      out += L':';
    }
    // The depth of a document is limited, and so is this recursion.
    value_.children[index].appendText(out);
  }
  out += isObject ? L'}' : L']';
}

const WString& Document::wideText(std::string_view utf8) const {
  if (utf8.empty()) return emptyText();
  const std::lock_guard lock(widening_);
  const auto [found, isNew] = wideTexts_.try_emplace(utf8.data());
  if (isNew) assignFromUtf8(found->second, utf8);
  return found->second;
}

void Node::AddRef() const { document_->AddRef(); }

void Node::Release() const { document_->Release(); }

const WString& Node::getLoadError() const { return emptyText(); }

namespace {

/// How bytes say that they are in another encoding: by a byte-order mark, or by the zeros beside the first
/// character of a document. Null for all others.
const wchar_t* otherEncoding(std::string_view bytes) {
  using namespace std::string_view_literals;
  if (bytes.starts_with("\xFF\xFE\0\0"sv) || bytes.starts_with("\0\0\xFE\xFF"sv)) return L"UTF-32";
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("{\0"sv)) return L"UTF-16, low byte first";
  if (bytes.starts_with("\xFE\xFF") || bytes.starts_with("\0{"sv)) return L"UTF-16, high byte first";
  return nullptr;
}

/// The node that createJsonNode answers: it keeps the document that it has loaded.
class RootNode final : public RefCounted<ValueNode> {
public:
  bool loadFromFile(std::wstring_view path) override {
    std::string bytes;
    WString error;
    if (!readTextFile(path, bytes, error)) return fail(std::move(error));
    if (const wchar_t* const encoding = otherEncoding(bytes)) {
      return fail(
          formatted(L"line 1, column 1: expected text in UTF-8, found %s: save the file as UTF-8", encoding));
    }
    return load(std::move(bytes));
  }

  bool loadFromText(std::wstring_view text) override {
    std::string bytes = toUtf8(text);
    if (bytes.size() > readLimits().fileBytes) return fail(tooLargeMessage());
    bytes.erase(0, bytes.size() - withoutByteOrderMark(bytes).size());
    return load(std::move(bytes));
  }

  const WString& getLoadError() const override { return error_; }

private:
  bool load(std::string bytes) {
    WString error;
    RefPtr<Document> document = parseDocument(std::move(bytes), error);
    if (!document) return fail(std::move(error));
    keep(std::move(document));
    error_.clear();
    return true;
  }

  bool fail(WString error) {
    keep(nullptr);
    error_ = std::move(error);
    return false;
  }

  void keep(RefPtr<Document> document) {
    value_ = document ? document->root : Value();
    document_ = document.get();
    kept_ = std::move(document);
  }

  RefPtr<Document> kept_;
  WString error_;
};

}  // namespace

}  // namespace TolmSDK::json

namespace TolmSDK {

IObjectDataNode* createJsonNode() { return new json::RootNode(); }

}  // namespace TolmSDK
