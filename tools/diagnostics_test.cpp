#include "tools/diagnostics.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

const std::vector<host::Diagnostic> kEach = {
    {host::Severity::error, "a.json", 3, 4, "wrong", "wrong-kind"},
    {host::Severity::warning, "a.json", 0, 0, "odd", "unknown-key"},
    {host::Severity::note, "", 0, 0, "so", "loop"},
    {host::Severity::message, "a.json", 1, 1, "sfgError : as it is!", "generator"}};

TEST(DiagnosticsTest, ShowsEachInALine) {
  std::ostringstream out;
  Diagnostics(out, false).show(kEach);
  EXPECT_EQ(out.str(), "a.json:3:4: error: wrong [wrong-kind]\na.json: warning: odd [unknown-key]\nsfg: "
                       "note: so [loop]\nsfgError : as it is!\n");
}

TEST(DiagnosticsTest, ColoursTheKindAlone) {
  std::ostringstream out;
  Diagnostics(out, true).show(kEach);
  EXPECT_EQ(out.str(), "a.json:3:4: \033[1;31merror:\033[0m wrong [wrong-kind]\na.json: "
                       "\033[1;35mwarning:\033[0m odd [unknown-key]\n"
                       "sfg: \033[1;36mnote:\033[0m so [loop]\nsfgError : as it is!\n");
}

TEST(DiagnosticsTest, ShowsNothingTwice) {
  std::ostringstream out;
  Diagnostics diagnostics(out, false);
  diagnostics.show(std::span(kEach).first(1));
  diagnostics.show(std::span(kEach).first(2));
  EXPECT_EQ(out.str(), "a.json:3:4: error: wrong [wrong-kind]\na.json: warning: odd [unknown-key]\n");
}

TEST(DiagnosticsTest, ShowsWhatIsHeldInFrontOfWhatFollows) {
  std::ostringstream out;
  {
    Diagnostics diagnostics(out, false);
    diagnostics.hold(std::span(kEach).first(2));
    EXPECT_EQ(out.str(), "");
    // The first is told again, beside what follows from it.
    diagnostics.show(std::vector{kEach[0], kEach[2]});
    diagnostics.hold(std::span(kEach).last(1));
  }
  EXPECT_EQ(out.str(), "a.json: warning: odd [unknown-key]\na.json:3:4: error: wrong [wrong-kind]\n"
                       "sfg: note: so [loop]\nsfgError : as it is!\n");
}

class DetailTest : public CommandTest {};

TEST_F(DetailTest, ShowsTheSourceInFullOrOnATerminal) {
  write("a.json", "{\n  \"b\": 1\n}\n");
  const host::Diagnostic wrong{host::Severity::error, path("a.json"), 2, 3, "wrong", "wrong-kind"};
  const std::string line = path("a.json") + ":2:3: error: wrong [wrong-kind]\n";
  const std::string source = "    2 |   \"b\": 1\n      |   ^\n";
  const auto shown = [&](bool isTerminal, Detail detail) {
    std::ostringstream out;
    Diagnostics diagnostics(out, false, isTerminal);
    diagnostics.setDetail(detail);
    diagnostics.show(wrong);
    return out.str();
  };
  EXPECT_EQ(shown(false, Detail::standard), line);
  EXPECT_EQ(shown(true, Detail::standard), line + source);
  EXPECT_EQ(shown(false, Detail::full), line + source);
  EXPECT_EQ(shown(true, Detail::brief), line);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
