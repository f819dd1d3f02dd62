#include "profiles/object_reader.h"

#include <cmath>
#include <limits>

#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

const wchar_t* kindName(NodeKind kind) {
  switch (kind) {
  case NodeKind::null: return L"null";
  case NodeKind::boolean: return L"a boolean";
  case NodeKind::number: return L"a number";
  case NodeKind::string: return L"a string";
  case NodeKind::array: return L"an array";
  case NodeKind::object: return L"an object";
  }
  return L"";
}

}  // namespace

void throwWrongKind(std::wstring_view key, std::wstring_view expected, const IObjectDataNode& found) {
  const TextPosition place = found.position();
  throw Exception(L"sfgError : \"%s\" must be %s, not %s (line %Iu, column %Iu)!", key, expected,
                  kindName(found.kind()), place.line, place.column);
}

void requireKind(NodeKind kind, std::wstring_view key, std::wstring_view expected,
                 const IObjectDataNode& node) {
  if (node.kind() != kind) throwWrongKind(key, expected, node);
}

const WString& readString(std::wstring_view key, const IObjectDataNode& node) {
  requireKind(NodeKind::string, key, L"a string", node);
  return node.asString();
}

float readFloat(std::wstring_view key, const IObjectDataNode& node) {
  constexpr std::wstring_view kExpected = L"a number";
  if (!node.isNumeric()) throwWrongKind(key, kExpected, node);
  const double number = node.asNumber();
  if (std::abs(number) <= static_cast<double>(std::numeric_limits<float>::max()))
    return static_cast<float>(number);
  const TextPosition place = node.position();
  throw Exception(L"sfgError : \"%s\" is out of range (line %Iu, column %Iu)!", key, place.line,
                  place.column);
}

}  // namespace TolmSDK::Graphics::sfg
