#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

using ReferenceCommandTest = CommandTest;

TEST_F(ReferenceCommandTest, WritesEachTopic) {
  for (const auto& [topic, start] :
       {std::pair("library", "### A fragment\n"), std::pair("graph", "### A graph\n"),
        std::pair("environment", "### An environment\n"), std::pair("types", "| type | "),
        std::pair("state", "| name | ")}) {
    const CommandRun told = run(std::string("reference ") + topic);
    EXPECT_EQ(told.status, 0) << topic;
    EXPECT_EQ(told.err, "") << topic;
    EXPECT_EQ(told.out.find(start), 0u) << told.out;
  }
}

TEST_F(ReferenceCommandTest, RefusesOtherTopics) {
  const CommandRun refused = run("reference grpah");
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.err.find("did you mean `graph`?"), std::string::npos) << refused.err;
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
