#include "host/documents/diagnostic_kinds.h"

#include <gtest/gtest.h>

#include <set>

#include "sfg/host/diagnostic.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(DiagnosticKindsTest, HaveOneIdentifierAndOneMeaningEach) {
  std::set<std::string_view> identifiers;
  std::set<std::string_view> meanings;
  for (const DiagnosticKind& kind : diagnosticKinds()) {
    EXPECT_TRUE(identifiers.insert(kind.identifier).second) << kind.identifier;
    EXPECT_TRUE(meanings.insert(kind.meaning).second) << kind.meaning;
    EXPECT_EQ(kind.identifier.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string_view::npos)
        << kind.identifier;
    EXPECT_FALSE(kind.meaning.empty() || kind.meaning.ends_with('.')) << kind.identifier;
  }
  EXPECT_EQ(identifiers.size(), static_cast<std::size_t>(Finding::count));
}

TEST(DiagnosticKindsTest, AreFoundByWhatTheyAreCalledInCode) {
  EXPECT_EQ(identifierOf(Finding::unreadableFile), "unreadable-file");
  EXPECT_EQ(identifierOf(Finding::wireType), "wire-type");
  EXPECT_EQ(identifierOf(Finding::failure), "failure");
}

TEST(DiagnosticKindsTest, AreThoseOfErrors) {
  EXPECT_EQ(InputError("wrong").identifier(), "wrong-usage");
  EXPECT_EQ(InputError("a", TextPosition{1, 2}, "wrong").identifier(), "failure");
  EXPECT_EQ(InputError("a", TextPosition{1, 2}, "wrong", "odd").diagnostic(),
            (Diagnostic{Severity::error, "a", 1, 2, "wrong", "odd"}));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
