// JSON nodes: whatever the bytes, a load ends in a tree that can be walked and written back, or in a message
// that says where the text is wrong.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tolmsdk/object_data_node.h"
#include "tolmsdk/parameter.h"
#include "tolmsdk/unicode.h"

namespace {

using namespace TolmSDK;

void require(bool holds) {
  if (!holds) std::abort();
}

/// Everything a node answers is consistent with its kind.
void walk(const IObjectDataNode& node) {
  require(node.position().line > 0 && node.position().column > 0);
  require(node.size() == 0 || node.kind() == NodeKind::array || node.kind() == NodeKind::object);
  require(!node.isNumeric() || node.kind() == NodeKind::number || node.kind() == NodeKind::string);
  require(node.asNumber() == 0.0 || node.isNumeric());
  for (std::size_t index = 0; index < node.size(); ++index) {
    const IObjectDataNode* const child = node.elementOrNull(index);
    if (child == nullptr) std::abort();
    require(child->position().line >= node.position().line);
    if (node.kind() == NodeKind::object) require(node.member(node.memberName(index)) == node.element(index));
    walk(*child);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const RefPtr<IObjectDataNode> node = createJsonNode();
  if (!node->loadFromText(fromUtf8(bytes))) {
    require(node->getLoadError().starts_with(L"line "));
    require(node->kind() == NodeKind::null && node->toText() == L"null");
    return 0;
  }
  walk(*node);

  // The written text loads again and is written the same.
  const WString text = node->toText();
  const RefPtr<IObjectDataNode> again = createJsonNode();
  require(again->loadFromText(text));
  require(again->toText() == text);

  const RefPtr<Graphics::AParameter> parameter = makeRef<Graphics::AParameter>();
  require(parameter->load(node.get()) == parameter->getLoadError().empty());
  return 0;
}
