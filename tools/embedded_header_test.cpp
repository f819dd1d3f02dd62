#include "tools/embedded_header.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::tools {
namespace {

TEST(EmbeddedHeaderTest, HoldsBytesHashAndReflection) {
  EXPECT_EQ(writeEmbeddedHeader("materials",
                                {"walls/brick.spv", std::string("\0\x7f\xff", 3) + std::string(14, 'a'),
                                 "0a1b", "{\n  \"name\": \"a\\b\x01\xc3\xa9\"\n}\n"}),
            R"(#pragma once

// Written by sfg; do not edit.

#include <string_view>

namespace materials::walls_brick_spv {

/// Equal shader text, interface and options, equal hash.
inline constexpr std::string_view hash = "0a1b";

alignas(4) inline constexpr unsigned char bytes[] = {
    0x00,0x7f,0xff,0x61,0x61,0x61,0x61,0x61,0x61,0x61,0x61,0x61,0x61,0x61,0x61,0x61,
    0x61,
};

/// What the shader takes and gives, as JSON.
inline constexpr std::string_view reflection =
    "{\n"
    "  \"name\": \"a\\b\001\303\251\"\n"
    "}\n";

}  // namespace materials::walls_brick_spv
)");
}

TEST(EmbeddedHeaderTest, CutsLongLinesOfTheReflection) {
  const std::string text = writeEmbeddedHeader("a", {"a.spv", "b", "c", std::string(100, 'x')});
  EXPECT_NE(text.find("    \"" + std::string(90, 'x') + "\"\n    \"" + std::string(10, 'x') + "\";\n"),
            text.npos)
      << text;
}

TEST(EmbeddedHeaderTest, CollectsShaders) {
  EXPECT_EQ(writeCollectingHeader("materials", {"brick.spv", "walls/2\"d.spv"}), R"(#pragma once

// Written by sfg; do not edit.

#include <array>
#include <span>
#include <string_view>

#include "materials/brick.spv.h"
#include "materials/walls/2"d.spv.h"

namespace materials {

struct Shader {
  std::string_view file;
  std::span<const unsigned char> bytes;
  std::string_view hash;
  std::string_view reflection;  ///< JSON
};

inline constexpr std::array<Shader, 2> all = {{
    {"brick.spv", brick_spv::bytes, brick_spv::hash, brick_spv::reflection},
    {"walls/2\"d.spv", walls_2_d_spv::bytes, walls_2_d_spv::hash, walls_2_d_spv::reflection},
}};

}  // namespace materials
)");
}

TEST(EmbeddedHeaderTest, KnowsNamesOfNamespaces) {
  for (const char* const name : {"a", "brick_2", "_x"}) EXPECT_TRUE(isNamespaceName(name)) << name;
  for (const char* const name :
       {"", "2a", "a:b", "a::b", "a b", "a-b", "class", "a__b", "_A", "linux", "std", "\xc3\xa9"}) {
    EXPECT_FALSE(isNamespaceName(name)) << name;
  }
}

TEST(EmbeddedHeaderTest, MakesANamespaceOfAnyFile) {
  EXPECT_EQ(namespaceFor("out/brick-wall.vert.spv"), "out_brick_wall_vert_spv");
  EXPECT_EQ(namespaceFor("2d.spv"), "shader_2d_spv");
  EXPECT_EQ(namespaceFor("new"), "shader_new");
  EXPECT_EQ(namespaceFor("a - b"), "a_b");
  EXPECT_EQ(namespaceFor("__A"), "shader_A");
  for (const char* const file : {"", ".h", "..", "_", "-A", "\xc3\xa9.h", "class"}) {
    EXPECT_TRUE(isNamespaceName(namespaceFor(file))) << file << ": " << namespaceFor(file);
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
