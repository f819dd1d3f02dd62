#include "host/check/finding_list.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

Diagnostic at(const char* file, std::size_t line, std::size_t column, const char* text,
              const char* identifier = "unknown-key", Severity severity = Severity::warning) {
  return {severity, file, line, column, text, identifier};
}
Diagnostic note(const char* text) { return at("z", 9, 9, text, "code-origin", Severity::note); }

std::string textsOf(const std::vector<Diagnostic>& diagnostics) {
  std::string texts;
  for (const Diagnostic& diagnostic : diagnostics) texts += diagnostic.text + " ";
  return texts;
}

TEST(FindingListTest, SortsByFileLineAndColumnAndKeepsNotesBehind) {
  const std::vector<Diagnostic> given = {at("b", 1, 1, "b1"),   note("of b1"),   at("a", 10, 1, "a10"),
                                         at("a", 2, 5, "a2.5"), note("of a2.5"), at("a", 2, 4, "a2.4")};
  EXPECT_EQ(textsOf(sortedFindings(groupsOf(given))), "a2.4 a2.5 of a2.5 a10 b1 of b1 ");
}

TEST(FindingListTest, NoteInFrontOfAllStandsAlone) {
  const std::vector<FindingGroup> groups = groupsOf(std::vector{note("first"), at("a", 1, 1, "x")});
  ASSERT_EQ(groups.size(), 2u);
  EXPECT_EQ(groups[0].finding.text, "first");
}

TEST(FindingListTest, TellsTheSameOnceWithItsFirstNotes) {
  const std::vector<Diagnostic> given = {at("a", 1, 1, "x"), note("first"),  at("a", 1, 1, "y"),
                                         at("a", 1, 1, "x"), note("second"), at("a", 1, 2, "x")};
  EXPECT_EQ(textsOf(sortedFindings(groupsOf(given))), "x first y x ");
}

TEST(FindingListTest, OfCompileErrorsAtOnePlaceTheFirst) {
  const std::vector<Diagnostic> given = {at("a", 1, 1, "cause", "compile-error", Severity::error),
                                         at("a", 1, 1, "cascade", "compile-error", Severity::error),
                                         at("a", 2, 1, "other", "compile-error", Severity::error)};
  EXPECT_EQ(textsOf(sortedFindings(groupsOf(given))), "cause other ");
}

TEST(FindingListTest, ErrorCountsWhereTheSameIsAWarningToo) {
  const std::vector<Diagnostic> given = {at("a", 1, 1, "x"),
                                         at("a", 1, 1, "x", "unknown-key", Severity::error)};
  const std::vector<Diagnostic> sorted = sortedFindings(groupsOf(given));
  ASSERT_EQ(sorted.size(), 1u);
  EXPECT_EQ(sorted[0].severity, Severity::error);
}

TEST(FindingListTest, RaisesUnknownKeysOnly) {
  std::vector<FindingGroup> groups =
      groupsOf(std::vector{at("a", 1, 1, "x"), at("a", 1, 2, "y", "repeated-key")});
  raiseForCheck(groups);
  EXPECT_EQ(groups[0].finding.severity, Severity::error);
  EXPECT_EQ(groups[1].finding.severity, Severity::warning);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
