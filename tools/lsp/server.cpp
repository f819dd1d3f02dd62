#include "tools/lsp/server.h"

#include <thread>

#include "tools/lsp/framing.h"
#include "tools/lsp/inbox.h"
#include "tools/lsp/session.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

/// Puts in what comes until the conversation is over.
void readAll(std::istream& in, Inbox& inbox) {
  FrameReader reader(in);
  for (bool isOver = false; !isOver;) {
    switch (reader.read()) {
    case FrameReader::Outcome::ended: isOver = true; break;
    case FrameReader::Outcome::malformed: inbox.put(Refused{ErrorCode::parseError, reader.text()}); break;
    case FrameReader::Outcome::message:
      try {
        Message message = parseMessage(reader.text());
        isOver = message.method == "exit" && !message.isRequest();
        inbox.put(std::move(message));
      } catch (const RequestError& error) {
        inbox.put(Refused{error.code(), error.what()});
      }
      break;
    }
  }
  inbox.close();
}

void handle(Session& session, const Inbox::Event& event) {
  if (const auto* const message = std::get_if<Message>(&event)) {
    session.handle(*message);
  } else if (const auto* const refused = std::get_if<Refused>(&event)) {
    session.refuse(*refused);
  } else {
    session.take(std::get<CheckResult>(event));
  }
}

}  // namespace

int serve(std::istream& in, std::ostream& out, const Settings& settings) {
  Inbox inbox;
  CheckThread checks([&](CheckResult result) { inbox.put(std::move(result)); });
  Session session(
      settings, [&](const Json& message) { writeFrame(out, textOf(message)); },
      [&](CheckJob job) { checks.start(std::move(job)); });
  std::thread reader([&] { readAll(in, inbox); });
  while (!session.isOver()) {
    Inbox::Event event;
    const Inbox::State state = inbox.take(event, session.nextCheck());
    if (state == Inbox::State::closed) break;
    if (state == Inbox::State::event) {
      handle(session, event);
    } else {
      session.startCheck();
    }
  }
  reader.join();
  return session.exitStatus();
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
