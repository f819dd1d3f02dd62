#include "tools/lsp/inbox.h"

#include <gtest/gtest.h>

#include <thread>

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

Message messageOf(const std::string& text) { return parseMessage(text); }

TEST(InboxTest, GivesWhatWasPutInBeforeItSaysThatItIsClosed) {
  Inbox inbox;
  inbox.put(messageOf(R"({"method":"a"})"));
  inbox.put(Refused{ErrorCode::parseError, "b"});
  inbox.close();
  Inbox::Event event;
  ASSERT_EQ(inbox.take(event, std::nullopt), Inbox::State::event);
  EXPECT_EQ(std::get<Message>(event).method, "a");
  ASSERT_EQ(inbox.take(event, std::nullopt), Inbox::State::event);
  EXPECT_EQ(std::get<Refused>(event).why, "b");
  EXPECT_EQ(inbox.take(event, std::nullopt), Inbox::State::closed);
}

TEST(InboxTest, MarksTheRequestThatIsCancelled) {
  Inbox inbox;
  inbox.put(messageOf(R"({"id":1,"method":"a"})"));
  inbox.put(messageOf(R"({"id":"1","method":"b"})"));
  inbox.put(messageOf(R"({"method":"$/cancelRequest","params":{"id":"1"}})"));
  inbox.put(messageOf(R"({"method":"$/cancelRequest","params":{"id":99}})"));
  inbox.put(messageOf(R"({"method":"$/cancelRequest"})"));
  inbox.close();
  Inbox::Event event;
  ASSERT_EQ(inbox.take(event, std::nullopt), Inbox::State::event);
  EXPECT_FALSE(std::get<Message>(event).isCancelled);
  ASSERT_EQ(inbox.take(event, std::nullopt), Inbox::State::event);
  EXPECT_TRUE(std::get<Message>(event).isCancelled);
  EXPECT_EQ(inbox.take(event, std::nullopt), Inbox::State::closed);
}

TEST(InboxTest, WaitsUntilATime) {
  Inbox inbox;
  Inbox::Event event;
  EXPECT_EQ(inbox.take(event, Inbox::Clock::now()), Inbox::State::nothing);
}

TEST(InboxTest, WakesWhoWaits) {
  Inbox inbox;
  std::thread other([&] { inbox.put(CheckResult{"u", 3, {}, {}}); });
  Inbox::Event event;
  EXPECT_EQ(inbox.take(event, std::nullopt), Inbox::State::event);
  EXPECT_EQ(std::get<CheckResult>(event).version, 3);
  other.join();
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
