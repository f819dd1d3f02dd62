#include "sfg/host/errors.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(ErrorsTest, PlacesNameAsMuchAsIsKnown) {
  EXPECT_EQ((Diagnostic{Severity::note, "a.json", 3, 14, "", ""}.place()), "a.json:3:14");
  EXPECT_EQ((Diagnostic{Severity::note, "generated", 3, 0, "", ""}.place()), "generated:3");
  EXPECT_EQ((Diagnostic{Severity::note, "a.json", 0, 0, "", ""}.place()), "a.json");
  EXPECT_EQ((Diagnostic{Severity::note, "", 3, 14, "", ""}.place()), "");
  EXPECT_EQ(InputError("a.json", {3, 14}, "why").place(), "a.json:3:14");
  EXPECT_EQ(InputError("why").place(), "");
}

TEST(ErrorsTest, HandOnWhatWasMeant) {
  InputError error("a.json", {3, 14}, "unknown node `tiels`; did you mean `tiles`?", "unknown-node");
  EXPECT_EQ(error.diagnostic().suggestion, "");
  error.setSuggestion("tiles");
  EXPECT_EQ(error.diagnostic().suggestion, "tiles");
}

TEST(ErrorsTest, KeepWhatTheyAreMadeOf) {
  const CollapseError refused(CollapseError::Reason::noResult, "why",
                              {{Severity::note, "a", 1, 2, "b", "c"}});
  const CollapseError copy = refused;
  EXPECT_STREQ(copy.what(), "why");
  EXPECT_EQ(copy.reason(), CollapseError::Reason::noResult);
  ASSERT_EQ(copy.diagnostics().size(), 1u);
  EXPECT_EQ(copy.diagnostics()[0].text, "b");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
