#include "host/shader/buffer_layout.h"

#include "host/shader/number_shape.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::size_t alignmentOf(const TypeID& type) noexcept {
  const std::size_t components = componentCount(type);
  return components == 0 || components > 2 ? kRegister : components * kComponent;
}

}  // namespace

std::size_t bufferedSize(const TypeID& type) noexcept {
  return isMatrix(type) ? kRegister * type.word(1) : kComponent * componentCount(type);
}

void placeMembers(std::vector<BufferMember>& members) noexcept {
  std::size_t end = 0;
  for (BufferMember& member : members) {
    const std::size_t alignment = alignmentOf(member.port.type);
    member.offset = (end + alignment - 1) / alignment * alignment;
    member.size = bufferedSize(member.port.type);
    end = member.offset + member.size;
  }
}

std::vector<ConstantBuffer> makeBuffers(const WString& name, std::vector<BufferMember> members) {
  std::vector<ConstantBuffer> buffers;
  ConstantBuffer plain{name, 0, {}};
  plain.members.reserve(members.size());
  for (BufferMember& member : members) {
    if (member.port.type == TypeID_nil) {
      ConstantBuffer& buffer = buffers.emplace_back(ConstantBuffer{name + L"_" + member.port.name, 0, {}});
      buffer.members.push_back(std::move(member));
    } else {
      plain.members.push_back(std::move(member));
    }
  }
  if (!plain.members.empty()) buffers.push_back(std::move(plain));
  for (ConstantBuffer& buffer : buffers) placeMembers(buffer.members);
  return buffers;
}

WString packOffset(std::size_t offset) {
  WString text = L"c";
  appendDecimal(text, offset / kRegister);
  if (offset % kRegister != 0) (text += L'.') += L"xyzw"[offset % kRegister / kComponent];
  return text;
}

}  // namespace TolmSDK::Graphics::sfg::host
