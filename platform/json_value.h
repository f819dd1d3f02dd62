#pragma once

// The tree behind JSON nodes: plain values in one arena that a counted document owns.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory_resource>
#include <string_view>

#include "tolmsdk/object_data_node.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/types.h"

namespace TolmSDK::json {

class Node;
class Document;

/// Elements of an array or members of an object, side by side.
struct Children {
  Node* nodes = nullptr;
  const WString* const* names = nullptr;  ///< objects only
  const std::uint32_t* byName =
      nullptr;  ///< indexes ordered by name; objects of more than a few members only
  std::uint32_t count = 0;

  /// Index of the member of that name, kNotFound without one.
  std::size_t find(std::wstring_view name) const;
};

enum class NumberForm : std::uint8_t { integer, natural, real };

/// One value of a document. Trivially copyable; what it points to belongs to the document.
struct Value {
  std::uint32_t line = 0;
  std::uint32_t column = 0;
  NodeKind kind = NodeKind::null;
  NumberForm form = NumberForm::integer;
  union {
    bool boolean;
    std::int64_t integer;
    std::uint64_t natural;
    double real = 0.0;
    const WString* text;
    const Children* children;
  };

  const Children* childrenOrNull() const noexcept {
    return kind == NodeKind::array || kind == NodeKind::object ? children : nullptr;
  }
};

/// What all nodes answer, be they a root or a child: everything but counting and loading.
class ValueNode : public IObjectDataNode {
public:
  ValueNode() = default;
  explicit ValueNode(const Value& value) noexcept : value_(value) {}

  NodeKind kind() const override { return value_.kind; }
  TextPosition position() const override { return {value_.line, value_.column}; }
  std::size_t size() const override;
  const IObjectDataNode* element(std::size_t index) const override;
  const IObjectDataNode* elementOrNull(std::size_t index) const override;
  const WString& memberName(std::size_t index) const override;
  const IObjectDataNode* member(std::wstring_view name) const override;
  const WString& asString() const override;
  double asNumber() const override;
  bool isNumeric() const override;
  bool asBool() const override;
  WString toText() const override;

  const Value& value() const noexcept { return value_; }

protected:
  Value value_;
};

/// A child. Its references are references on the document; it is never destroyed by itself.
class Node final : public ValueNode {
public:
  Node(const Document& document, const Value& value) noexcept : ValueNode(value), document_(&document) {}

  void AddRef() const override;
  void Release() const override;
  IRefObject* QueryInterface(Interface_ID id) override { return id == kObjectInterfaceId ? this : nullptr; }

  /// Only a root loads.
  bool loadFromFile(std::wstring_view) override { return false; }
  bool loadFromText(std::wstring_view) override { return false; }
  const WString& getLoadError() const override;

private:
  const Document* document_;
};

/// Owns the texts and children of one document.
class Document final : public ARefObject {
public:
  /// Arena memory; freed with the document, without destructors.
  template <class T>
  T* allocate(std::size_t count) {
    return static_cast<T*>(arena_.allocate(count * sizeof(T), alignof(T)));
  }
  /// A new empty text that stays where it is.
  WString& addText() { return texts_.emplace_back(); }

  Value root;

private:
  std::pmr::monotonic_buffer_resource arena_;
  std::deque<WString> texts_;
};

/// Parses UTF-8 without byte-order mark. Null on failure; `error` then tells line, column and what was
/// expected.
RefPtr<Document> parseDocument(std::string_view bytes, WString& error);

/// Compact JSON of a value.
void appendText(WString& out, const Value& value);

}  // namespace TolmSDK::json
