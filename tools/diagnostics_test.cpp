#include "tools/diagnostics.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace TolmSDK::Graphics::sfg::tools {
namespace {

const std::vector<host::Diagnostic> kEach = {
    {host::Severity::error, "a.json", 3, 4, "wrong"},
    {host::Severity::warning, "a.json", 0, 0, "odd"},
    {host::Severity::note, "", 0, 0, "so"},
    {host::Severity::message, "a.json", 1, 1, "sfgError : as it is!"}};

TEST(DiagnosticsTest, ShowsEachInALine) {
  std::ostringstream out;
  Diagnostics(out, false).show(kEach);
  EXPECT_EQ(out.str(),
            "a.json:3:4: error: wrong\na.json: warning: odd\nsfg: note: so\nsfgError : as it is!\n");
}

TEST(DiagnosticsTest, ColoursTheKindAlone) {
  std::ostringstream out;
  Diagnostics(out, true).show(kEach);
  EXPECT_EQ(out.str(), "a.json:3:4: \033[1;31merror:\033[0m wrong\na.json: \033[1;35mwarning:\033[0m odd\n"
                       "sfg: \033[1;36mnote:\033[0m so\nsfgError : as it is!\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
