#include "tools/watch/troubles.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::tools {
namespace {

using host::Diagnostic;
using host::Severity;
using Diagnostics = std::vector<Diagnostic>;
using Names = std::vector<std::string>;

Diagnostic told(Severity severity, const std::string& text) {
  return {severity, "a.json", 1, 2, text, "kind"};
}
const Diagnostic kError = told(Severity::error, "wrong");
const Diagnostic kOther = told(Severity::error, "wrong, too");
const Diagnostic kWarning = told(Severity::warning, "odd");
const Diagnostic kNote = told(Severity::note, "because");

TEST(TroublesTest, AreToldWhenTheyCome) {
  const TroubleNews news = compareTroubles({}, {{"a", {kError}}, {"b", {kWarning}}});
  EXPECT_EQ(news.come, (Diagnostics{kError, kWarning}));
  EXPECT_EQ(news.gone, Names());
}

TEST(TroublesTest, AreNotToldAgain) {
  const Troubles troubles = {{"a", {kError, kNote}}, {"b", {kWarning}}};
  const TroubleNews news = compareTroubles(troubles, troubles);
  EXPECT_EQ(news.come, Diagnostics());
  EXPECT_EQ(news.gone, Names());
}

TEST(TroublesTest, AreToldWithTheirNotesWhenOneIsNew) {
  EXPECT_EQ(compareTroubles({{"a", {kError, kNote}}}, {{"a", {kOther, kNote}}}).come,
            (Diagnostics{kOther, kNote}));
}

TEST(TroublesTest, AreToldToBeGone) {
  const Troubles before = {{"a", {kError}}, {"b", {kOther}}, {"c", {kWarning}}, {"d", {kError}}};
  const TroubleNews news = compareTroubles(before, {{"b", {kWarning}}, {"d", {kOther}}});
  EXPECT_EQ(news.come, (Diagnostics{kWarning, kOther}));
  EXPECT_EQ(news.gone, (Names{"a", "b"}));
}

TEST(TroublesTest, AreErrorsWhenTheGeneratorSpeaks) {
  EXPECT_TRUE(hasErrors({kWarning, told(Severity::message, "sfgError : ..")}));
  EXPECT_FALSE(hasErrors({kWarning, kNote}));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
