#pragma once

// What the parsers have in common: from their events to a document.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/json_value.h"
#include "tolmsdk/read_limits.h"

namespace TolmSDK::json {

/// Walks the text behind a parser and counts lines and columns: from 1, in code points.
class PositionCounter {
public:
  explicit PositionCounter(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {}

  const char* at() const noexcept { return at_; }
  const char* end() const noexcept { return end_; }
  std::string_view rest() const noexcept { return {at_, static_cast<std::size_t>(end_ - at_)}; }
  std::uint32_t line() const noexcept { return line_; }
  std::uint32_t column() const noexcept { return column_; }

  /// Moves over blanks and the separators between two tokens to the start of the next one.
  void skipToToken() noexcept;
  void moveTo(const char* position) noexcept;
  /// As moveTo, for a token that holds no line feed.
  void moveWithinLine(const char* position) noexcept;

private:
  void step() noexcept;

  const char* at_;
  const char* end_;
  std::uint32_t line_ = 1;
  std::uint32_t column_ = 1;
};

/// A member name of the document: one text however often it is used.
struct Name {
  std::string_view utf8;
  const WString* text = nullptr;
  Name* next = nullptr;          ///< the name that followed it last time
  std::uint64_t lastObject = 0;  ///< the object in which it was met last
  std::uint32_t lastIndex = 0;   ///< at this index
};

class NamePool {
public:
  explicit NamePool(const Document& document) : document_(document) {}

  /// The name; `utf8` must live as long as the document. Objects tend to repeat the names of those before
  /// them in the same order, so the name that followed the last one is tried first.
  Name* intern(std::string_view utf8);

private:
  Name* find(std::string_view utf8);

  const Document& document_;
  std::unordered_map<std::string_view, Name> names_;
  Name first_;
  Name* last_ = &first_;
};

/// Builds the document bottom-up: finished values wait on a stack until the array or object that holds them
/// ends. Each event says what the text holds next and answers false where the document ends in an error.
class Builder {
public:
  explicit Builder(Document& document) : document_(document), counter_(document.text()), names_(document) {
    document_.repeatedMembers.clear();
  }

  bool null();
  bool boolean(bool value);
  /// The number is read from the text.
  bool number();
  /// False without an error for a text that is no UTF-8, as that of a lone surrogate.
  bool string(std::string_view decoded);
  bool key(std::string_view decoded);
  bool open(NodeKind kind);
  bool endObject();
  bool endArray();
  /// The text must have ended.
  bool end();

  /// Where the text is read: behind the last event's token.
  PositionCounter& counter() noexcept { return counter_; }
  /// Whether an array or object has begun and holds nothing yet.
  bool isFirst() const noexcept { return !frames_.empty() && values_.size() == frames_.back().firstValue; }
  bool isInArray() const noexcept { return !frames_.empty() && frames_.back().value.kind == NodeKind::array; }

  /// Fails at the counter's position, where something else stands; `advice` ends the message.
  bool failExpecting(std::wstring_view what, std::wstring_view advice = {});
  /// Fails at the counter's position.
  bool failHere(const WString& message);
  const WString& error() const noexcept { return error_; }

private:
  /// An array or object that has begun: where it stands, and where its values and names begin on their
  /// stacks.
  struct Frame {
    Value value;
    std::size_t firstValue = 0;
    std::size_t firstName = 0;
  };

  /// A member's name and where it stands.
  struct Member {
    Name* name = nullptr;
    NamePlace place;
  };

  bool admitValue();
  Value valueHere(NodeKind kind) noexcept;
  bool passString(std::string_view decoded, std::string_view& kept);
  Frame close() noexcept;
  std::size_t dropRepeatedMembers(const Frame& frame);
  Node* makeNodes(const Frame& frame, std::size_t count, std::size_t bytesBehind);
  void finish(const Frame& frame, const Node* children, std::size_t count);

  Document& document_;
  PositionCounter counter_;
  NamePool names_;
  std::vector<Value> values_;
  std::vector<Member> members_;
  std::vector<Frame> frames_;
  std::uint64_t objects_ = 0;
  std::size_t valuesLeft_ = readLimits().documentValues;
  WString error_;
};

}  // namespace TolmSDK::json
