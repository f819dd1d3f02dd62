#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "sfg/host/reflect.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

InterfaceMember member(const std::string& name, const std::string& type, std::size_t offset,
                       std::vector<double> value = {}) {
  InterfaceMember made;
  made.name = "shade_" + name;
  made.type = type;
  made.offset = offset;
  made.value = std::move(value);
  made.origin = {"node", "shade", "f", name};
  return made;
}

InterfaceBuffer buffer() {
  InterfaceBuffer made;
  made.name = "sfg_Uniforms";
  made.size = 128;
  made.members = {member("tint", "float3", 0, {1, 0.5, 0}), member("on", "bool", 12, {1}),
                  member("count", "int", 16, {-2}), member("mask", "uint2", 24)};
  InterfaceMember matrix = member("turn", "float2x3", 32);
  matrix.matrixStride = 16;
  InterfaceMember list = member("list", "float2", 80);
  list.arrayLength = 2;
  list.arrayStride = 16;
  InterfaceMember structure = member("lamp", "Lamp", 112);
  structure.members = {member("power", "float", 4)};
  structure.members[0].name = "power";
  structure.members[0].origin = {};
  made.members.insert(made.members.end(), {matrix, list, structure});
  return made;
}

float floatAt(const std::vector<std::uint8_t>& bytes, std::size_t offset) {
  float value = 0.0f;
  std::memcpy(&value, bytes.data() + offset, sizeof(value));
  return value;
}
std::int32_t wholeAt(const std::vector<std::uint8_t>& bytes, std::size_t offset) {
  std::int32_t value = 0;
  std::memcpy(&value, bytes.data() + offset, sizeof(value));
  return value;
}

std::string refusal(const std::vector<ValueSetting>& settings) {
  try {
    packBuffer(buffer(), settings);
  } catch (const PackError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(BufferPacking, StartsWithTheDefaults) {
  const std::vector<std::uint8_t> bytes = packBuffer(buffer(), {});
  ASSERT_EQ(bytes.size(), 128u);
  EXPECT_EQ(floatAt(bytes, 0), 1.0f);
  EXPECT_EQ(floatAt(bytes, 4), 0.5f);
  EXPECT_EQ(wholeAt(bytes, 12), 1);
  EXPECT_EQ(wholeAt(bytes, 16), -2);
  EXPECT_EQ(wholeAt(bytes, 24), 0);
}

TEST(BufferPacking, SetsValuesUnderEitherName) {
  const std::vector<std::uint8_t> bytes =
      packBuffer(buffer(), {{"shade.tint", {7, 8, 9}}, {"shade_mask", {4294967295.0, 5}}, {"shade.on", {0}}});
  EXPECT_EQ(floatAt(bytes, 8), 9.0f);
  EXPECT_EQ(wholeAt(bytes, 24), -1);
  EXPECT_EQ(wholeAt(bytes, 28), 5);
  EXPECT_EQ(wholeAt(bytes, 12), 0);
}

TEST(BufferPacking, LaysOutColumnsElementsAndParts) {
  const std::vector<std::uint8_t> bytes = packBuffer(
      buffer(),
      {{"shade.turn", {1, 2, 3, 4, 5, 6}}, {"shade.list", {7, 8, 9, 10}}, {"shade.lamp.power", {11}}});
  EXPECT_EQ(floatAt(bytes, 32), 1.0f);
  EXPECT_EQ(floatAt(bytes, 36), 4.0f);
  EXPECT_EQ(floatAt(bytes, 48), 2.0f);
  EXPECT_EQ(floatAt(bytes, 68), 6.0f);
  EXPECT_EQ(floatAt(bytes, 80), 7.0f);
  EXPECT_EQ(floatAt(bytes, 100), 10.0f);
  EXPECT_EQ(floatAt(bytes, 116), 11.0f);
}

TEST(BufferPacking, LaterSettingsWin) {
  EXPECT_EQ(wholeAt(packBuffer(buffer(), {{"shade.count", {1}}, {"shade.count", {2}}}), 16), 2);
}

TEST(BufferPacking, RefusesWhatDoesNotFit) {
  EXPECT_EQ(refusal({{"shade.tint", {1, 2}}}), "`shade.tint` is of type `float3`: 3 numbers, not 2");
  EXPECT_EQ(refusal({{"shade.list", {1, 2}}}), "`shade.list` is of type `float2[2]`: 4 numbers, not 2");
  EXPECT_EQ(refusal({{"shade.count", {0.5}}}), "a number of `shade.count` is not an integer of 32 bits");
  EXPECT_EQ(refusal({{"shade.count", {2147483648.0}}}),
            "a number of `shade.count` is not an integer of 32 bits");
  EXPECT_EQ(refusal({{"shade.mask", {-1, 0}}}),
            "a number of `shade.mask` is not an integer of 32 bits without a sign");
  EXPECT_EQ(refusal({{"shade.on", {2}}}), "a number of `shade.on` is not `true`, `false`, 1 or 0");
  EXPECT_EQ(refusal({{"shade.tint", {1e39, 0, 0}}}), "a number of `shade.tint` is not a 32-bit float");
}

TEST(BufferPacking, NamesWhatIsKnown) {
  EXPECT_EQ(refusal({{"shade.tnt", {1}}}),
            "no value is called `shade.tnt`; did you mean `shade.tint`? Known are `shade.tint`, `shade.on`, "
            "`shade.count`, `shade.mask`, `shade.turn`, `shade.list`, `shade.lamp.power`");
  EXPECT_EQ(refusal({{"nothing like it", {1}}}),
            "no value is called `nothing like it`; known are `shade.tint`, `shade.on`, "
            "`shade.count`, `shade.mask`, `shade.turn`, `shade.list`, `shade.lamp.power`");
}

TEST(BufferPacking, RefusesANameOfTwoValues) {
  InterfaceBuffer two = buffer();
  two.members[1].origin = two.members[0].origin;
  try {
    packBuffer(two, {{"shade.tint", {1, 2, 3}}});
    FAIL();
  } catch (const PackError& error) {
    EXPECT_STREQ(error.what(), "`shade.tint` is two values: `shade_tint` and `shade_on`");
  }
  EXPECT_EQ(wholeAt(packBuffer(two, {{"shade_on", {0}}}), 12), 0);
}

TEST(BufferPacking, RefusesBuffersThatHostsDoNotFill) {
  InterfaceBuffer elements = buffer();
  elements.kind = InterfaceBuffer::Kind::output;
  EXPECT_THROW(packBuffer(elements, {}), PackError);
  InterfaceBuffer incomplete = buffer();
  incomplete.isComplete = false;
  EXPECT_THROW(packBuffer(incomplete, {}), PackError);
  InterfaceBuffer small = buffer();
  small.size = 16;
  EXPECT_THROW(packBuffer(small, {}), PackError);
}

/// Interfaces are plain data: whatever they say, nothing is written outside the buffer.
TEST(BufferPacking, RefusesPlacesAndLengthsThatWrapAround) {
  InterfaceBuffer far = buffer();
  far.members = {member("far", "float", std::numeric_limits<std::size_t>::max() - 1, {1})};
  EXPECT_THROW(packBuffer(far, {}), PackError);
  InterfaceBuffer tiny = buffer();
  tiny.members = {member("tiny", "float", 0, {1})};
  tiny.size = 2;
  EXPECT_THROW(packBuffer(tiny, {}), PackError);
  InterfaceBuffer longest = buffer();
  longest.members = {member("longest", "float4", 0, {})};
  longest.members[0].arrayLength = std::numeric_limits<std::size_t>::max() / 4 + 1;
  longest.members[0].arrayStride = 0;
  EXPECT_THROW(packBuffer(longest, {{"shade.longest", {}}}), PackError);
}

TEST(BufferPacking, FindsBuffersByTheirNames) {
  ShaderInterface shader;
  shader.buffers = {InterfaceBuffer(), buffer()};
  shader.buffers[0].name = "sfg_StateUniforms";
  EXPECT_EQ(&findBuffer(shader, "sfg_Uniforms"), &shader.buffers[1]);
  try {
    findBuffer(shader, "sfg_Uniform");
    FAIL();
  } catch (const PackError& error) {
    EXPECT_STREQ(error.what(),
                 "the shader has no buffer `sfg_Uniform`; did you mean `sfg_Uniforms`? Known are "
                 "`sfg_StateUniforms`, `sfg_Uniforms`");
  }
}

TEST(BufferPacking, ReadsSettings) {
  const ValueSetting setting = parseSetting("a=b.c=1,-2.5e1,true,false");
  EXPECT_EQ(setting.name, "a=b.c");
  EXPECT_EQ(setting.numbers, (std::vector<double>{1, -25, 1, 0}));
  for (const char* text :
       {"", "a", "=1", "a=", "a=1,", "a=x", "a=1 2", "a=inf", "a=nan", "a=1e999", "a=,1"}) {
    EXPECT_THROW(parseSetting(text), PackError) << text;
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
