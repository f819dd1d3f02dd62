#include "host/documents/load_error.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

void expectError(const LoadError& error, Finding kind, std::size_t line, std::size_t column,
                 const std::string& text) {
  EXPECT_EQ(error.kind, kind) << text;
  EXPECT_EQ(error.position.line, line) << text;
  EXPECT_EQ(error.position.column, column) << text;
  EXPECT_EQ(error.text, text);
}

TEST(LoadErrorTest, TakesThePlaceFromTheMessageOfADocument) {
  expectError(documentError("line 3, column 14: expected a value"), Finding::malformedJson, 3, 14,
              "expected a value");
}

TEST(LoadErrorTest, KeepsMessagesWithoutAPlace) {
  for (const char* const message : {"permission denied", "line 3", "line x, column 2: y", "line 3, column 2",
                                    "line 3, column 99999999999999999999: y", ""}) {
    expectError(documentError(message), Finding::unreadableFile, 0, 0, message);
  }
}

TEST(LoadErrorTest, TellsWhatKindOfFaultAParameterHas) {
  expectError(parameterError("line 1, column 2: `name` is missing"), Finding::missingKey, 1, 2,
              "`name` is missing");
  expectError(parameterError("line 4, column 7: `type` must be a string"), Finding::wrongKind, 4, 7,
              "`type` must be a string");
  expectError(parameterError("line 5, column 1: `value` has 2 numbers for 3 components"), Finding::wrongValue,
              5, 1, "`value` has 2 numbers for 3 components");
}

TEST(LoadErrorTest, NamesTheTypesBesideOneThatIsNone) {
  const LoadError error = parameterError("line 1, column 9: `type` names no type: `flaot3`");
  EXPECT_EQ(error.kind, Finding::unknownType);
  EXPECT_TRUE(error.text.starts_with("`type` names no type: `flaot3`; did you mean `float3`?")) << error.text;
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
