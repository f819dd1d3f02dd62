#pragma once

// The tree behind JSON nodes: plain values in one arena that a counted document owns.

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "tolmsdk/object_data_node.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/types.h"

namespace TolmSDK::json {

class Node;
class Document;

/// Where a member's name stands.
struct NamePlace {
  std::uint32_t line = 0;
  std::uint32_t column = 0;
};

enum class NumberForm : std::uint8_t { integer, natural, real };

/// One value of a document. Trivially copyable; what it points to belongs to the document.
struct Value {
  std::uint32_t line = 0;
  std::uint32_t column = 0;
  std::uint32_t size = 0;  ///< bytes of a string, elements of an array, members of an object
  NodeKind kind : 8 = NodeKind::null;
  NumberForm form = NumberForm::integer;
  union {
    bool boolean;
    std::int64_t integer;
    std::uint64_t natural;
    double real = 0.0;
    const char* bytes;
    const Node* children;  ///< side by side; those of an object have names and their places behind them
  };

  std::string_view utf8() const noexcept { return {bytes, size}; }

  bool hasChildren() const noexcept { return kind == NodeKind::array || kind == NodeKind::object; }
  /// Names of an object's members. Behind them stand their places, and behind those of more than
  /// kIndexedMembers their indexes, ordered by name.
  const WString* const* memberNames() const noexcept;
  const NamePlace* memberPlaces() const noexcept;
  /// Index of the member of that name, kNotFound without one.
  std::size_t findMember(std::wstring_view name) const;
};

/// An object of more members has an index of their names.
inline constexpr std::size_t kIndexedMembers = 16;

/// What all nodes answer, be they a root or a child: everything but counting and loading.
class ValueNode : public IObjectDataNode {
public:
  NodeKind kind() const override { return value_.kind; }
  TextPosition position() const override { return {value_.line, value_.column}; }
  std::size_t size() const override { return value_.hasChildren() ? value_.size : 0; }
  const IObjectDataNode* element(std::size_t index) const override;
  const IObjectDataNode* elementOrNull(std::size_t index) const override;
  const WString& memberName(std::size_t index) const override;
  const IObjectDataNode* member(std::wstring_view name) const override;
  const WString& asString() const override;
  double asNumber() const override;
  bool isNumeric() const override;
  bool asBool() const override;
  WString toText() const override;
  std::string_view asUtf8() const override;
  TextPosition memberPosition(std::size_t index) const override;
  Array<RepeatedMember> repeatedMembers() const override;

protected:
  ValueNode() = default;
  ValueNode(const Document* document, const Value& value) noexcept : document_(document), value_(value) {}

  void appendText(WString& out) const;

  const Document* document_ = nullptr;  ///< null for a root without one
  Value value_;
};

/// A child. Its references are references on the document; it is never destroyed by itself.
class Node final : public ValueNode {
public:
  Node(const Document& document, const Value& value) noexcept : ValueNode(&document, value) {}

  void AddRef() const override;
  void Release() const override;
  IRefObject* QueryInterface(Interface_ID id) override { return id == kObjectInterfaceId ? this : nullptr; }

  /// Only a root loads.
  bool loadFromFile(std::wstring_view) override { return false; }
  bool loadFromText(std::wstring_view) override { return false; }
  const WString& getLoadError() const override;
};

/// Owns the text of one document, which its strings are views into, and the nodes read from it.
class Document final : public ARefObject {
public:
  explicit Document(std::string text) : text_(std::move(text)) {}

  const std::string& text() const noexcept { return text_; }

  /// Arena memory, aligned for any value; freed with the document, without destructors.
  void* allocate(std::size_t bytes) { return arena_.allocate(bytes); }
  /// The wide text of a string or name of this document, made when it is first asked for. Safe in several
  /// threads.
  const WString& wideText(std::string_view utf8) const;

  Value root;
  Array<RepeatedMember> repeatedMembers;  ///< in the order of the text

private:
  std::string text_;
  mutable std::pmr::monotonic_buffer_resource arena_;
  mutable std::mutex widening_;
  mutable std::pmr::unordered_map<const char*, WString> wideTexts_{&arena_};  // by where the UTF-8 stands
};

/// Parses UTF-8 without byte-order mark. Null on failure; `error` then tells line, column and what was
/// expected.
RefPtr<Document> parseDocument(std::string bytes, WString& error);

}  // namespace TolmSDK::json
