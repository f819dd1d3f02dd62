#include "host/shader/structure_layout.h"

#include <algorithm>

#include "host/shader/identifiers.h"
#include "host/shader/number_shape.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::size_t kDeepest = 32;
constexpr std::size_t kLongestArray = 65536;
constexpr std::size_t kMostMembers = 1024;

std::size_t roundedUp(std::size_t value, std::size_t step) { return (value + step - 1) / step * step; }

/// Words, numbers and single characters of shader text; comments are passed over.
class Tokens {
public:
  explicit Tokens(std::wstring_view text) : text_(text) {}

  std::size_t position() const noexcept { return pos_; }

  /// Empty at the end.
  std::wstring_view next() {
    skipBlanks();
    const std::size_t start = pos_;
    while (pos_ < text_.size() && isIdentifierPart(text_[pos_])) ++pos_;
    if (pos_ == start && pos_ < text_.size()) ++pos_;
    return text_.substr(start, pos_ - start);
  }

private:
  void skipBlanks() {
    constexpr std::wstring_view kBlanks = L" \t\r\n";
    while (pos_ < text_.size()) {
      if (kBlanks.find(text_[pos_]) != kBlanks.npos) {
        ++pos_;
      } else if (text_.substr(pos_, 2) == L"//") {
        pos_ = std::min(text_.find(L'\n', pos_), text_.size());
      } else if (text_.substr(pos_, 2) == L"/*") {
        const std::size_t end = text_.find(L"*/", pos_ + 2);
        pos_ = end == text_.npos ? text_.size() : end + 2;
      } else {
        return;
      }
    }
  }

  std::wstring_view text_;
  std::size_t pos_ = 0;
};

struct Declaration {
  std::wstring_view type;
  std::wstring_view name;
  std::size_t arrayLength = 0;
};

class LayoutMaker {
public:
  using Bodies = Map<std::wstring_view, std::size_t>;

  LayoutMaker(std::wstring_view text, const Bodies& bodies) : text_(text), bodies_(bodies) {}

  std::optional<StructureLayout> make(std::wstring_view name, std::size_t depth) {
    const std::optional<std::vector<Declaration>> declarations = declarationsOf(name);
    if (!declarations || declarations->empty() || depth == kDeepest) return std::nullopt;
    StructureLayout layout;
    for (const Declaration& declaration : *declarations) {
      std::optional<InterfaceMember> member = place(declaration, layout.size, depth);
      if (!member) return std::nullopt;
      layout.size = member->offset + member->size;
      // What stands behind an array or a structure starts a register.
      if (member->arrayLength != 0 || !member->members.empty())
        layout.size = roundedUp(layout.size, kRegister);
      layout.members.push_back(std::move(*member));
    }
    layout.size = roundedUp(layout.size, kRegister);
    return layout;
  }

private:
  std::optional<InterfaceMember> place(const Declaration& declaration, std::size_t end, std::size_t depth) {
    if (++members_ > kMostMembers) return std::nullopt;
    InterfaceMember member;
    member.name = toUtf8(declaration.name);
    member.type = toUtf8(declaration.type);
    member.arrayLength = declaration.arrayLength;
    std::size_t alignment = kRegister;
    if (const std::optional<NumberShape> shape = numberShapeOf(member.type)) {
      member.matrixStride = shape->isMatrix ? kRegister : 0;
      member.size = shape->isMatrix ? shape->columns * kRegister : shape->columns * kComponent;
      const bool isShort = !shape->isMatrix && shape->columns < 3 && declaration.arrayLength == 0;
      if (isShort) alignment = member.size;
    } else {
      std::optional<StructureLayout> nested = make(declaration.type, depth + 1);
      if (!nested) return std::nullopt;
      member.size = nested->size;
      member.members = std::move(nested->members);
    }
    if (declaration.arrayLength != 0) {
      member.arrayStride = roundedUp(member.size, kRegister);
      member.size = member.arrayStride * declaration.arrayLength;
    }
    member.offset = roundedUp(end, alignment);
    return member;
  }

  std::optional<std::vector<Declaration>> declarationsOf(std::wstring_view name) const {
    const auto body = bodies_.find(name);
    if (body == bodies_.end()) return std::nullopt;
    Tokens tokens(text_.substr(body->second));
    return readMembers(tokens);
  }

  static std::optional<std::vector<Declaration>> readMembers(Tokens& tokens) {
    std::vector<Declaration> members;
    for (std::wstring_view token = tokens.next(); token != L"}"; token = tokens.next()) {
      if (members.size() > kMostMembers) return std::nullopt;
      Declaration member{token, tokens.next()};
      token = tokens.next();
      while (token == L",") {  // one type, many names
        if (members.size() > kMostMembers) return std::nullopt;
        members.push_back(member);
        member.name = tokens.next();
        token = tokens.next();
      }
      if (token == L"[") {
        const std::optional<std::size_t> length = readLength(tokens.next());
        if (!length || tokens.next() != L"]") return std::nullopt;
        member.arrayLength = *length;
        token = tokens.next();
      }
      if (token != L";" || !isName(member.type) || !isName(member.name)) return std::nullopt;
      members.push_back(member);
    }
    return members;
  }

  static bool isName(std::wstring_view token) { return !token.empty() && isIdentifierStart(token[0]); }

  static std::optional<std::size_t> readLength(std::wstring_view token) {
    std::size_t length = 0;
    for (const wchar_t c : token) {
      if (c < L'0' || c > L'9' || length > kLongestArray) return std::nullopt;
      length = length * 10 + static_cast<std::size_t>(c - L'0');
    }
    return length == 0 || length > kLongestArray ? std::nullopt : std::optional(length);
  }

  std::wstring_view text_;
  const Bodies& bodies_;
  std::size_t members_ = 0;  ///< placed so far, at all depths
};

}  // namespace

StructureLayouts::StructureLayouts(std::wstring_view text) : text_(text) {
  Tokens tokens(text);
  for (std::wstring_view token = tokens.next(); !token.empty(); token = tokens.next()) {
    if (token != L"struct") continue;
    const std::wstring_view name = tokens.next();
    if (tokens.next() == L"{") bodies_.emplace(name, tokens.position());
  }
}

std::optional<StructureLayout> StructureLayouts::find(std::wstring_view name) const {
  return LayoutMaker(text_, bodies_).make(name, 0);
}

}  // namespace TolmSDK::Graphics::sfg::host
