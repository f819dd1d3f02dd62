#include "host/lints/lint_list.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(LintList, IsInTheOrderOfFilesAndTheirText) {
  LintList lints;
  lints.at(Finding::unreadInput, "b", {2, 1}, "third");
  lints.at(Finding::unreadInput, "a", {1, 1}, "last");
  lints.at(Finding::unusedUniform, "b", {1, 9}, "second");
  lints.at(Finding::unusedUniform, "b", {1, 2}, "first");
  const std::vector<Diagnostic> all = lints.take();
  std::string texts;
  for (const Diagnostic& lint : all) texts += lint.text + " ";
  EXPECT_EQ(texts, "first second third last ");
  EXPECT_EQ(all[0], (Diagnostic{Severity::warning, "b", 1, 2, "first", "unused-uniform"}));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
