#include "tools/embedded_header.h"

#include <gtest/gtest.h>

#include "sfg/host/version.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

TEST(EmbeddedHeaderTest, HoldsBytesHashAndReflection) {
  EXPECT_EQ(writeEmbeddedHeader({"materials::brick", std::string("\0\x7f\xff", 3) + std::string(14, 'a'),
                                 "0a1b", "{\n  \"name\": \"a\\b\x01\xc3\xa9\"\n}\n"}),
            R"(#pragma once

// Written by sfg; do not edit.

#include <string_view>

namespace materials::brick {

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

}  // namespace materials::brick
)");
}

TEST(EmbeddedHeaderTest, CutsLongLinesOfTheReflection) {
  const std::string text = writeEmbeddedHeader({"a", "b", "c", std::string(100, 'x')});
  EXPECT_NE(text.find("    \"" + std::string(90, 'x') + "\"\n    \"" + std::string(10, 'x') + "\";\n"),
            text.npos)
      << text;
}

TEST(EmbeddedHeaderTest, KnowsNamesOfNamespaces) {
  for (const char* const name : {"a", "brick_2", "materials::brick", "_x", "a::b::c"}) {
    EXPECT_TRUE(isNamespaceName(name)) << name;
  }
  for (const char* const name : {"", "2a", "a:b", "a::", "::a", "a::::b", "a b", "a-b", "class", "a::new",
                                 "a__b", "_A", "linux", "std", "\xc3\xa9"}) {
    EXPECT_FALSE(isNamespaceName(name)) << name;
  }
}

TEST(EmbeddedHeaderTest, MakesANamespaceOfAnyFile) {
  EXPECT_EQ(namespaceFor("out/brick-wall.vert.spv"), "brick_wall");
  EXPECT_EQ(namespaceFor("2d.h"), "shader_2d");
  EXPECT_EQ(namespaceFor("new.h"), "shader_new");
  EXPECT_EQ(namespaceFor("a - b.h"), "a_b");
  EXPECT_EQ(namespaceFor("__A.h"), "shader_A");
  for (const char* const file : {"", ".h", "..", "_", "-A", "\xc3\xa9.h", "class"}) {
    EXPECT_TRUE(isNamespaceName(namespaceFor(file))) << file << ": " << namespaceFor(file);
  }
}

class EmbedTest : public CommandTest {
protected:
  EmbedTest() {
    writeLibrary();
    write("graph.json", R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
      "nodes": [ { "name": "a", "fragment": "tint" } ] })");
  }
};

TEST_F(EmbedTest, HoldsWhatTheOtherResultsHold) {
  if (!host::hasCompilers()) GTEST_SKIP() << "without shader compilers";
  const CommandRun result =
      run("compile graph.json -L lib --target glsl -o a.glsl --reflect a.json --embed a.h --embed-as of::a");
  ASSERT_EQ(result.status, 0) << result.err;
  std::string reflection = read("a.json");
  const std::size_t files = reflection.find("  \"files\": [") + std::string_view("  \"files\": [").size();
  reflection.erase(files, reflection.find(']', files) - files);
  const std::size_t hash = reflection.find("\"hash\": \"") + std::string_view("\"hash\": \"").size();
  EXPECT_EQ(read("a.h"),
            writeEmbeddedHeader({"of::a", read("a.glsl"), reflection.substr(hash, 40), reflection}));
}

TEST_F(EmbedTest, RefusesWhatIsNoNamespace) {
  const CommandRun result = run("compile graph.json -L lib -o a.spv --embed a.h --embed-as a-b");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "sfg: error: `--embed-as`: C++ has no namespace `a-b` [wrong-usage]\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
