// Whole conversations over streams.

#include "tools/lsp/server.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tools/lsp/framing.h"
#include "tools/lsp/rpc.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

std::string framed(const std::string& text) {
  std::ostringstream out;
  writeFrame(out, text);
  return out.str();
}

struct Conversation {
  int status = -1;
  std::vector<std::string> answers;
};

Conversation talk(const std::string& bytes) {
  std::istringstream in(bytes);
  std::ostringstream out;
  Conversation conversation;
  Settings settings;
  settings.withoutStandard = true;
  conversation.status = serve(in, out, settings);
  std::istringstream written(out.str());
  FrameReader reader(written);
  while (reader.read() == FrameReader::Outcome::message) conversation.answers.push_back(reader.text());
  return conversation;
}

const std::string kInitialize = framed(R"({"id":0,"method":"initialize","params":{}})");

TEST(ServerTest, EndsWithExitBehindShutdown) {
  const Conversation told =
      talk(kInitialize + framed(R"({"method":"initialized"})") + framed(R"({"id":1,"method":"shutdown"})") +
           framed(R"({"method":"exit"})") + framed(R"({"id":2,"method":"late"})"));
  EXPECT_EQ(told.status, 0);
  ASSERT_EQ(told.answers.size(), 2u);
  EXPECT_EQ(told.answers[1], R"({"id":1,"jsonrpc":"2.0","result":null})");
}

TEST(ServerTest, EndsWithTheInput) {
  EXPECT_EQ(talk("").status, 1);
  EXPECT_EQ(talk(kInitialize + "Content-Length: 100\r\n\r\n{").status, 1);
  EXPECT_EQ(talk(kInitialize + framed(R"({"method":"exit"})")).status, 1);
}

TEST(ServerTest, AnswersWhatIsMalformed) {
  const Conversation told =
      talk("nonsense\r\n\r\n" + framed("{") + framed("[1]") + "Content-Length: 99999999999\r\n\r\n");
  const auto error = [](int code, const std::string& why) {
    return R"({"error":{"code":)" + std::to_string(code) + R"(,"message":")" + why +
           R"("},"id":null,"jsonrpc":"2.0"})";
  };
  EXPECT_EQ(told.answers,
            (std::vector<std::string>{
                error(-32700, "a message has no `Content-Length`"), error(-32700, "the message is no JSON"),
                error(-32600, "a message is an object"),
                error(-32700, "a message of 99999999999 bytes; at most 67108864 are read")}));
}

TEST(ServerTest, TakesNoStackForDepth) {
  const std::string deep = std::string(200000, '[') + std::string(200000, ']');
  std::string bytes;
  for (
      const std::string& message :
      {R"({"id":1,"method":"initialize","params":{"workspaceFolders":)" + deep +
           R"(,"capabilities":{"general":{"positionEncodings":)" + deep + R"(}},"initializationOptions":)" +
           deep + "}}",
       R"({"method":"$/cancelRequest","params":{"id":)" + deep + "}}",
       R"({"method":"textDocument/didOpen","params":{"textDocument":{"uri":"file:///a.json","text":")" +
           deep + R"("}}})",
       std::string(
           R"({"id":2,"method":"textDocument/hover","params":{"textDocument":{"uri":"file:///a.json"},"position":)"
           R"({"line":0,"character":200000}}})")})
    bytes += framed(message);
  EXPECT_EQ(talk(bytes).answers.size(), 2u);
}

TEST(ServerTest, ClosesWhileADocumentWaitsForItsCheck) {
  const Json text = {{"uri", "file:///nowhere/graph.json"},
                     {"languageId", "json"},
                     {"version", 1},
                     {"text", R"({ "nodes": [ {)"}};
  const Json open = {{"method", "textDocument/didOpen"}, {"params", {{"textDocument", text}}}};
  const Conversation told = talk(kInitialize + framed(textOf(open)) +
                                 framed(R"({"id":1,"method":"shutdown"})") + framed(R"({"method":"exit"})"));
  EXPECT_EQ(told.status, 0);
  EXPECT_EQ(told.answers.size(), 2u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
