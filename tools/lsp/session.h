#pragma once

// One conversation with an editor.

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/lsp/checks.h"
#include "tools/lsp/documents.h"
#include "tools/lsp/inbox.h"
#include "tools/lsp/quick_fix.h"
#include "tools/lsp/view.h"
#include "tools/lsp/workspace.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// Answers messages, one after another. Used by one thread; checks run where `start` has them run, and come
/// back by take().
class Session {
public:
  using Clock = Inbox::Clock;
  using Send = std::function<void(const Json& message)>;
  using StartCheck = std::function<void(CheckJob job)>;
  /// What is typed quickly is checked once.
  static constexpr std::chrono::milliseconds kDelay{150};

  Session(Settings settings, Send send, StartCheck start, std::chrono::milliseconds delay = kDelay);
  ~Session();

  /// Each request is answered once. Notifications that are unknown or make no sense change nothing.
  void handle(const Message& message);
  void refuse(const Refused& refused);
  /// Tells the editor, unless the document is another by now.
  void take(const CheckResult& result);

  /// When the next check is due; nothing while none is, or one is running.
  std::optional<Clock::time_point> nextCheck() const;
  /// Starts it.
  void startCheck();

  /// After the notification "exit".
  bool isOver() const noexcept { return isOver_; }
  /// 0 when "shutdown" came before the end, else 1.
  int exitStatus() const noexcept { return state_ == State::shutDown ? 0 : 1; }

private:
  enum class State { fresh, initialized, shutDown };
  using Answer = Json (Session::*)(const Json& params);
  using Note = void (Session::*)(const Json& params);

  Json answer(const Message& message);
  Json initialize(const Json& params);
  Json capabilities() const;
  Json shutdown(const Json& params);
  Json complete(const Json& params);
  Json hoverAt(const Json& params);
  Json define(const Json& params);
  Json symbols(const Json& params);
  Json prepare(const Json& params);
  Json renameAt(const Json& params);
  Json fix(const Json& params);

  void note(const Message& message);
  void open(const Json& params);
  void change(const Json& params);
  void close(const Json& params);
  void save(const Json& params);
  void configure(const Json& params);
  void moveFolders(const Json& params);
  void watch(const Json& params);

  /// Null for a document that is not open.
  OpenDocument* find(const Json& params);
  /// Nothing for a document that is not open, or none of ours.
  std::optional<View> viewOf(const Json& params);
  void checkLater(const std::string& uri);
  void checkAllLater();
  void libraryChanged();
  void tell(const OpenDocument& document, const std::vector<host::Diagnostic>& diagnostics);
  void tellElsewhere(const std::string& owner, std::map<std::string, std::vector<ToldFinding>> found);
  void publish(const std::string& uri);
  void showProblem();
  void log(const std::string& text);

  Settings settings_;
  Send send_;
  StartCheck start_;
  std::chrono::milliseconds delay_;
  State state_ = State::fresh;
  bool isOver_ = false;
  Encoding encoding_ = Encoding::utf16;
  bool hasVersions_ = false;
  bool hasSnippets_ = false;
  bool hasTrees_ = false;
  OpenDocuments documents_;
  Workspace workspace_;
  std::string shownProblem_;

  std::set<std::string> waiting_;  ///< documents to check
  std::optional<Clock::time_point> due_;
  std::string running_;  ///< the document that is being checked
  /// By the document that was checked, then by the one that the findings are in.
  std::map<std::string, std::map<std::string, std::vector<ToldFinding>>> told_;
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
