#include "host/shader/buffer_text.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

void writeMember(ShaderText& out, const BufferMember& member) {
  out.writef(L"    %s %s : packoffset(%s)", member.port.typeText, member.port.name,
             packOffset(member.offset));
  if (const WString value = toShaderText(member.value); !value.empty()) out.writef(L" = %s", value);
  out.write(L";\n");
}

}  // namespace

void writeConstantBuffer(ShaderText& out, const ConstantBuffer& buffer) {
  out.writef(L"\ncbuffer %s : register(b%Iu)\n{\n", buffer.name, buffer.number);
  for (const BufferMember& member : buffer.members) writeMember(out, member);
  out.write(L"};\n");
}

}  // namespace TolmSDK::Graphics::sfg::host
