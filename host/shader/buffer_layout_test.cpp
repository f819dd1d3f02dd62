#include "host/shader/buffer_layout.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

BufferMember member(const TypeID& type, const WString& name) {
  return {{type, type.toString(), name}, ValueOrigin(), AValue(type)};
}

WString placed(const std::vector<BufferMember>& members) {
  WString text;
  for (const BufferMember& m : members) (text += packOffset(m.offset)) += L' ';
  return text;
}

TEST(BufferLayout, CrossesNoRegister) {
  std::vector<BufferMember> members = {member(TypeID_fvec3, L"a"), member(TypeID_fvec2, L"b"),
                                       member(TypeID_float, L"c"), member(TypeID_fvec2, L"d"),
                                       member(TypeID_fvec4, L"e")};
  placeMembers(members);
  EXPECT_EQ(placed(members), L"c0 c1 c1.z c2 c3 ");
}

TEST(BufferLayout, FillsTheEndOfARegister) {
  std::vector<BufferMember> members = {member(TypeID_fvec3, L"a"), member(TypeID_bool, L"b"),
                                       member(TypeID_int, L"c"), member(TypeID_uvec2, L"d")};
  placeMembers(members);
  EXPECT_EQ(placed(members), L"c0 c0.w c1 c1.z ");
}

TEST(BufferLayout, GivesEachColumnOfAMatrixARegister) {
  std::vector<BufferMember> members = {member(TypeID_fmat2, L"a"), member(TypeID_fmat3, L"b"),
                                       member(TypeID_fmat4, L"c"), member(TypeID_float, L"d")};
  placeMembers(members);
  EXPECT_EQ(placed(members), L"c0 c2 c5 c9 ");
  EXPECT_EQ(members[1].size, 48u);
}

TEST(BufferLayout, KeepsStructuresInBuffersOfTheirOwn) {
  BufferMember structure = member(TypeID_nil, L"lamp");
  structure.port.typeText = L"Lamp";
  const std::vector<ConstantBuffer> buffers =
      makeBuffers(L"all", {member(TypeID_float, L"a"), structure, member(TypeID_float, L"b")});
  ASSERT_EQ(buffers.size(), 2u);
  EXPECT_EQ(buffers[0].name, L"all_lamp");
  EXPECT_EQ(buffers[0].members.size(), 1u);
  EXPECT_EQ(buffers[1].name, L"all");
  EXPECT_EQ(placed(buffers[1].members), L"c0 c0.y ");
}

TEST(BufferLayout, MakesNoBufferWithoutMembers) { EXPECT_TRUE(makeBuffers(L"all", {}).empty()); }

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
