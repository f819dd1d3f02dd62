#include "tools/lsp/rpc.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

/// "ID METHOD PARAMS", or the code of the refusal.
std::string parsed(const std::string& text) {
  try {
    const Message message = parseMessage(text);
    return (message.id ? message.id->dump() : "-") + " " + message.method + " " + message.params.dump();
  } catch (const RequestError& error) {
    return std::to_string(static_cast<int>(error.code()));
  }
}

TEST(RpcTest, TellsRequestsNotificationsAndAnswersApart) {
  EXPECT_EQ(parsed(R"({"id":1,"method":"a","params":[2]})"), "1 a [2]");
  EXPECT_EQ(parsed(R"({"id":"x","method":"a"})"), "\"x\" a null");
  EXPECT_EQ(parsed(R"({"method":"a","params":{}})"), "- a {}");
  EXPECT_EQ(parsed(R"({"id":7,"result":null})"), "7  null");
}

TEST(RpcTest, RefusesWhatIsNoMessage) {
  EXPECT_EQ(parsed("{"), "-32700");
  EXPECT_EQ(parsed(""), "-32700");
  EXPECT_EQ(parsed("{\"method\":\"\xFF\"}"), "-32700");
  EXPECT_EQ(parsed("[]"), "-32600");
  EXPECT_EQ(parsed("{}"), "-32600");
  EXPECT_EQ(parsed(R"({"method":1})"), "-32600");
  EXPECT_EQ(parsed(R"({"id":{},"method":"a"})"), "-32600");
  EXPECT_EQ(parsed(std::string(2000000, '[')), "-32700");
  EXPECT_EQ(parsed(std::string(1000000, '[') + std::string(1000000, ']')), "-32600");
}

TEST(RpcTest, ReadsMembersOfAnything) {
  const Json object = {{"a", {{"b", true}}}, {"c", "x"}};
  EXPECT_EQ(memberOf(object, "a", "b"), true);
  EXPECT_TRUE(memberOf(object, "c", "b").is_null());
  EXPECT_TRUE(flagOf(memberOf(object, "a"), "b"));
  EXPECT_EQ(stringOf(object, "a", "none"), "none");
  EXPECT_EQ(elementsOf(object).size(), 0u);
  EXPECT_THROW(requiredString(object, "a"), RequestError);
}

TEST(RpcTest, WritesMessages) {
  EXPECT_EQ(textOf(makeResponse(1, nullptr)), R"({"id":1,"jsonrpc":"2.0","result":null})");
  EXPECT_EQ(textOf(makeError(nullptr, ErrorCode::parseError, "no")),
            R"({"error":{"code":-32700,"message":"no"},"id":null,"jsonrpc":"2.0"})");
  EXPECT_EQ(textOf(makeNotification("m", Json::array({1}))),
            R"({"jsonrpc":"2.0","method":"m","params":[1]})");
  EXPECT_EQ(textOf(Json("a\xFF")), "\"a\xEF\xBF\xBD\"");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
