#pragma once

// JSON documents as trees of counted nodes.

#include <cstddef>
#include <string_view>

#include "tolmsdk/export.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/types.h"

namespace TolmSDK {

/// A place in a document, both counted from 1, columns in code points; zero when unknown.
struct TextPosition {
  std::size_t line = 0;
  std::size_t column = 0;
};

/// A member name that stands more than once in one object.
struct RepeatedMember {
  WString name;
  TextPosition before;    ///< where the name stood last
  TextPosition again;     ///< where it stands once more
  std::size_t depth = 0;  ///< of the object: 1 for the document's root
};

enum class NodeKind { null, boolean, number, string, array, object };

/// One value of a JSON document. Members of objects keep file order; of members with equal names the last one
/// counts, at the place of the first. Children belong to their document: a child pointer is valid as long as
/// somebody holds the root; a child may also be held by a reference of its own, which keeps the whole
/// document alive. A loaded document is only read and may be read by several threads.
class IObjectDataNode : public IRefObject {
public:
  /// Deepest nesting of arrays and objects that loads.
  static constexpr std::size_t kMaximumDepth = 256;

  /// Replaces this root by the document of a file or of a text. On failure answers false, becomes a null
  /// node, and getLoadError() tells what was wrong: for malformed text the line, the column and what was
  /// expected.
  virtual bool loadFromFile(std::wstring_view path) = 0;
  virtual bool loadFromText(std::wstring_view text) = 0;
  virtual const WString& getLoadError() const = 0;

  virtual NodeKind kind() const = 0;
  /// Where the value starts in its document.
  virtual TextPosition position() const = 0;

  /// Number of elements of an array or members of an object; 0 for anything else.
  virtual std::size_t size() const = 0;
  /// Element or member value at `index`; null beyond size() and where the value is JSON's null.
  virtual const IObjectDataNode* element(std::size_t index) const = 0;
  /// Like element(), but JSON's null is answered as a node of that kind (for its position).
  virtual const IObjectDataNode* elementOrNull(std::size_t index) const = 0;
  /// Name of the member at `index` of an object; empty beyond size() and for arrays.
  virtual const WString& memberName(std::size_t index) const = 0;
  /// The member's value; null when this is no object, has no such member, or the value is JSON's null.
  virtual const IObjectDataNode* member(std::wstring_view name) const = 0;

  /// The text of a string; empty for anything else.
  virtual const WString& asString() const = 0;
  /// The value of a number, or of a string that is a number as a whole; 0 for anything else.
  virtual double asNumber() const = 0;
  /// True for a number and for a string that is a number as a whole.
  virtual bool isNumeric() const = 0;
  /// The value of a boolean; false for anything else.
  virtual bool asBool() const = 0;

  /// Compact JSON: no blanks, members in file order, numbers and strings in one form for equal values. Stable
  /// for equal documents.
  virtual WString toText() const = 0;

  /// The UTF-8 of a string's text, valid as long as the document; empty for anything else. For who looks the
  /// text up and need not keep it: asString() makes a wide text that stays with the document.
  virtual std::string_view asUtf8() const = 0;

  /// Where the name of the member at `index` stands: that of the value that counts. Nowhere beyond size() and
  /// for arrays.
  virtual TextPosition memberPosition(std::size_t index) const = 0;
  /// The repeated member names of the whole document that this value belongs to, in the order of the text.
  virtual Array<RepeatedMember> repeatedMembers() const = 0;
};

/// An empty root (a null node) with a reference count of zero.
TOLMSDK_API IObjectDataNode* createJsonNode();

}  // namespace TolmSDK
