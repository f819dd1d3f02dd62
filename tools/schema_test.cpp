#include <gtest/gtest.h>

#include "sfg/host/reflect.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

class SchemaTest : public CommandTest {};

TEST_F(SchemaTest, PrintsTheSchemaOfReflections) {
  const CommandRun result = run("schema reflection");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, host::interfaceSchemaJson());
}

TEST_F(SchemaTest, RefusesUnknownDocuments) {
  const CommandRun result = run("schema graph");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "sfg: error: DOCUMENT: `graph` is none of `reflection`\n"
                        "try `sfg --help`, or `sfg COMMAND --help`\n");
  EXPECT_EQ(run("schema").status, 2);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
