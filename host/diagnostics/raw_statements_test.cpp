#include "host/diagnostics/raw_statements.h"

#include <gtest/gtest.h>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::optional<std::size_t> rawStatement(const WString& code) {
  CodeSnippet snippet;
  snippet.addCode(code);
  snippet.parse();
  return findRawStatement(snippet);
}

TEST(RawStatements, AreWhatIsNoSymbol) {
  EXPECT_EQ(rawStatement(L"static const float k = 1.0;"), 0u);
  EXPECT_EQ(rawStatement(L"float f() { return 1.0; }\n  static int n = 0;"), 28u);
}

TEST(RawStatements, AreNoFunctionsStructuresOrUniforms) {
  EXPECT_EQ(rawStatement(L""), std::nullopt);
  EXPECT_EQ(rawStatement(L"struct S { float a; };\nfloat f() { return 1.0; }\nuniform float u;"),
            std::nullopt);
}

TEST(RawStatements, AreNoCommentsAndPreprocessorLines) {
  EXPECT_EQ(rawStatement(L"#define A 1\n// static int n;\n/* b */\n#undef A\n"), std::nullopt);
  EXPECT_EQ(rawStatement(L"#define A 1\nstatic const int n = A;"), 12u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
