#include "tools/lsp/session.h"

#include <algorithm>
#include <utility>

#include "sfg/host/version.h"
#include "tools/lsp/completion.h"
#include "tools/lsp/definition.h"
#include "tools/lsp/document_check.h"
#include "tools/lsp/hover.h"
#include "tools/lsp/rename.h"
#include "tools/lsp/symbols.h"
#include "tools/lsp/uri.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

namespace fs = std::filesystem;

// Of the protocol.
constexpr int kIncrementalSync = 2;
constexpr int kErrorMessage = 1;

/// The first of the editor's encodings that is one of ours.
Encoding chooseEncoding(const Json& offered) {
  for (const Json& name : elementsOf(offered)) {
    if (name == "utf-8") return Encoding::utf8;
    if (name == "utf-16") return Encoding::utf16;
    if (name == "utf-32") return Encoding::utf32;
  }
  return Encoding::utf16;
}

const char* nameOf(Encoding encoding) {
  switch (encoding) {
  case Encoding::utf8: return "utf-8";
  case Encoding::utf16: return "utf-16";
  case Encoding::utf32: return "utf-32";
  }
  return "";
}

void addPath(std::vector<fs::path>& paths, const Json& uri) {
  if (!uri.is_string()) return;
  if (auto path = pathOf(uri.get<std::string>())) {
    fs::path folder = path->lexically_normal();
    paths.push_back(folder.has_filename() ? folder : folder.parent_path());
  }
}

std::vector<fs::path> rootsOf(const Json& params) {
  std::vector<fs::path> roots;
  for (const Json& folder : elementsOf(memberOf(params, "workspaceFolders")))
    addPath(roots, memberOf(folder, "uri"));
  if (roots.empty()) addPath(roots, memberOf(params, "rootUri"));
  return roots;
}

}  // namespace

Session::Session(Settings settings, Send send, StartCheck start, std::chrono::milliseconds delay)
    : settings_(settings), send_(std::move(send)), start_(std::move(start)), delay_(delay),
      workspace_(std::move(settings), documents_) {}
Session::~Session() = default;

// Messages

void Session::handle(const Message& message) {
  if (message.isRequest()) {
    send_(answer(message));
  } else if (!message.method.empty()) {
    note(message);
  }
}

void Session::refuse(const Refused& refused) { send_(makeError(Json(), refused.code, refused.why)); }

Json Session::answer(const Message& message) {
  static const std::map<std::string, Answer> kAnswers = {{"shutdown", &Session::shutdown},
                                                         {"textDocument/completion", &Session::complete},
                                                         {"textDocument/hover", &Session::hoverAt},
                                                         {"textDocument/definition", &Session::define},
                                                         {"textDocument/documentSymbol", &Session::symbols},
                                                         {"textDocument/prepareRename", &Session::prepare},
                                                         {"textDocument/rename", &Session::renameAt},
                                                         {"textDocument/codeAction", &Session::fix}};
  const Json& id = *message.id;
  try {
    if (message.isCancelled) return makeError(id, ErrorCode::requestCancelled, "cancelled");
    if (state_ == State::shutDown) return makeError(id, ErrorCode::invalidRequest, "shut down");
    if (message.method == "initialize") {
      if (state_ != State::fresh) return makeError(id, ErrorCode::invalidRequest, "initialized already");
      return makeResponse(id, initialize(message.params));
    }
    if (state_ == State::fresh)
      return makeError(id, ErrorCode::serverNotInitialized, "the first request is `initialize`");
    const auto method = kAnswers.find(message.method);
    if (method == kAnswers.end())
      return makeError(id, ErrorCode::methodNotFound, "unknown method `" + message.method + "`");
    return makeResponse(id, (this->*method->second)(message.params));
  } catch (const RequestError& error) {
    return makeError(id, error.code(), error.what());
  } catch (const std::exception& error) {
    return makeError(id, ErrorCode::internalError, error.what());
  }
}

void Session::note(const Message& message) {
  static const std::map<std::string, Note> kNotes = {
      {"textDocument/didOpen", &Session::open},
      {"textDocument/didChange", &Session::change},
      {"textDocument/didClose", &Session::close},
      {"textDocument/didSave", &Session::save},
      {"workspace/didChangeConfiguration", &Session::configure},
      {"workspace/didChangeWorkspaceFolders", &Session::moveFolders},
      {"workspace/didChangeWatchedFiles", &Session::watch}};
  if (message.method == "exit") {
    isOver_ = true;
    return;
  }
  const auto method = kNotes.find(message.method);
  if (state_ != State::initialized || method == kNotes.end()) return;
  try {
    (this->*method->second)(message.params);
  } catch (const RequestError&) {
    // Nobody waits for an answer, and nothing was changed.
  } catch (const std::exception& error) {
    log(error.what());
  }
}

// Requests

Json Session::initialize(const Json& params) {
  const Json& client = memberOf(params, "capabilities");
  const Json& text = memberOf(client, "textDocument");
  encoding_ = chooseEncoding(memberOf(client, "general", "positionEncodings"));
  hasVersions_ = flagOf(memberOf(client, "workspace", "workspaceEdit"), "documentChanges");
  hasSnippets_ = flagOf(memberOf(text, "completion", "completionItem"), "snippetSupport");
  hasTrees_ = flagOf(memberOf(text, "documentSymbol"), "hierarchicalDocumentSymbolSupport");
  workspace_.setSettings(withOptions(settings_, memberOf(params, "initializationOptions")));
  workspace_.setRoots(rootsOf(params));
  state_ = State::initialized;
  return Json::object({{"capabilities", capabilities()},
                       {"serverInfo", Json::object({{"name", "sfg"}, {"version", host::hostVersion()}})}});
}

Json Session::capabilities() const {
  const Json sync = Json::object(
      {{"openClose", true}, {"change", kIncrementalSync}, {"save", Json::object({{"includeText", false}})}});
  const Json folders = Json::object(
      {{"workspaceFolders", Json::object({{"supported", true}, {"changeNotifications", true}})}});
  return Json::object(
      {{"positionEncoding", nameOf(encoding_)},
       {"textDocumentSync", sync},
       {"completionProvider", Json::object({{"triggerCharacters", Json::array({"\"", ":", "{", ","})}})},
       {"hoverProvider", true},
       {"definitionProvider", true},
       {"documentSymbolProvider", true},
       {"renameProvider", Json::object({{"prepareProvider", true}})},
       {"codeActionProvider", Json::object({{"codeActionKinds", Json::array({"quickfix"})}})},
       {"workspace", folders}});
}

Json Session::shutdown(const Json&) {
  state_ = State::shutDown;
  waiting_.clear();
  due_.reset();
  return nullptr;
}

Json Session::complete(const Json& params) {
  const auto view = viewOf(params);
  if (!view) return Json::array();
  return completion(*view, positionOf(memberOf(params, "position")), hasSnippets_);
}

Json Session::hoverAt(const Json& params) {
  const auto view = viewOf(params);
  return view ? hover(*view, positionOf(memberOf(params, "position"))) : Json();
}

Json Session::define(const Json& params) {
  const auto view = viewOf(params);
  return view ? definition(*view, positionOf(memberOf(params, "position"))) : Json();
}

Json Session::symbols(const Json& params) {
  const auto view = viewOf(params);
  return view ? documentSymbols(*view, hasTrees_) : Json::array();
}

Json Session::prepare(const Json& params) {
  const auto view = viewOf(params);
  return view ? prepareRename(*view, positionOf(memberOf(params, "position"))) : Json();
}

Json Session::renameAt(const Json& params) {
  const auto view = viewOf(params);
  if (!view) throw RequestError(ErrorCode::invalidParams, "only nodes and graph inputs are renamed");
  return rename(*view, positionOf(memberOf(params, "position")), requiredString(params, "newName"),
                hasVersions_);
}

Json Session::fix(const Json& params) {
  const OpenDocument* const document = find(params);
  if (document == nullptr) return Json::array();
  std::vector<ToldFinding> findings;
  for (const auto& [owner, found] : told_) {
    if (const auto own = found.find(document->uri()); own != found.end())
      findings.insert(findings.end(), own->second.begin(), own->second.end());
  }
  return quickFixes(*document, findings, rangeOf(memberOf(params, "range")), encoding_, hasVersions_);
}

// Documents

void Session::open(const Json& params) {
  const Json& item = memberOf(params, "textDocument");
  const std::string& uri = requiredString(item, "uri");
  const Json& version = memberOf(item, "version");
  OpenDocument document(uri, stringOf(item, "languageId"),
                        version.is_number_integer() ? version.get<std::int64_t>() : 0,
                        requiredString(item, "text"));
  documents_.erase(uri);
  documents_.emplace(uri, std::move(document));
  workspace_.invalidateFolders();
  checkAllLater();
}

void Session::change(const Json& params) {
  OpenDocument* const document = find(params);
  if (document == nullptr) return;
  const Json& version = memberOf(params, "textDocument", "version");
  document->change(memberOf(params, "contentChanges"),
                   version.is_number_integer() ? version.get<std::int64_t>() : document->version() + 1,
                   encoding_);
  if (document->kind() == host::DocumentKind::library) {
    libraryChanged();
  } else {
    checkLater(document->uri());
  }
}

void Session::close(const Json& params) {
  const OpenDocument* const document = find(params);
  if (document == nullptr) return;
  const std::string uri = document->uri();
  documents_.erase(uri);
  waiting_.erase(uri);
  workspace_.invalidateFolders();
  tellElsewhere(uri, {});
  told_.erase(uri);
  checkAllLater();
}

void Session::save(const Json& params) {
  if (find(params) != nullptr) watch(params);
}

void Session::configure(const Json& params) {
  const Json& settings = memberOf(params, "settings");
  const Json& own = memberOf(settings, "sfg");
  workspace_.setSettings(withOptions(settings_, own.is_object() ? own : settings));
  checkAllLater();
}

void Session::moveFolders(const Json& params) {
  std::vector<fs::path> roots = workspace_.roots();
  const Json& event = memberOf(params, "event");
  const auto pathsOf = [&](const char* list) {
    std::vector<fs::path> paths;
    for (const Json& folder : elementsOf(memberOf(event, list))) addPath(paths, memberOf(folder, "uri"));
    return paths;
  };
  for (const fs::path& gone : pathsOf("removed")) std::erase(roots, gone);
  for (const fs::path& added : pathsOf("added")) roots.push_back(added);
  workspace_.setRoots(std::move(roots));
  checkAllLater();
}

/// Files were changed by somebody else.
void Session::watch(const Json&) {
  workspace_.invalidateFolders();
  checkAllLater();
}

OpenDocument* Session::find(const Json& params) {
  const auto found = documents_.find(stringOf(memberOf(params, "textDocument"), "uri"));
  return found != documents_.end() ? &found->second : nullptr;
}

std::optional<View> Session::viewOf(const Json& params) {
  const OpenDocument* const document = find(params);
  if (document == nullptr) return std::nullopt;
  // In a file that is no document yet a graph is begun.
  const host::DocumentKind kind = document->kind().value_or(host::DocumentKind::graph);
  return View{*document, kind, encoding_, workspace_.catalog(),
              [this](const std::string& file) { return workspace_.textOf(file); }};
}

// Checks

void Session::checkLater(const std::string& uri) {
  waiting_.insert(uri);
  due_ = Clock::now() + delay_;
}

void Session::checkAllLater() {
  for (const auto& [uri, document] : documents_) checkLater(uri);
}

void Session::libraryChanged() {
  workspace_.invalidate();
  checkAllLater();
}

std::optional<Session::Clock::time_point> Session::nextCheck() const {
  if (!running_.empty() || waiting_.empty()) return std::nullopt;
  return due_;
}

void Session::startCheck() {
  if (waiting_.empty() || !running_.empty()) return;
  const std::string uri = *waiting_.begin();
  waiting_.erase(waiting_.begin());
  const auto document = documents_.find(uri);
  if (document == documents_.end()) return;
  std::function<std::vector<host::Diagnostic>()> check;
  try {
    check = makeCheck(document->second, workspace_);
  } catch (const std::exception& error) {
    return log(error.what());
  }
  showProblem();
  if (!check) {
    tell(document->second, {});
    return;
  }
  running_ = uri;
  start_({uri, document->second.version(), std::move(check)});
}

void Session::take(const CheckResult& result) {
  running_.clear();
  const auto document = documents_.find(result.uri);
  // A later text waits for its own check.
  if (document == documents_.end() || document->second.version() != result.version) return;
  if (!result.failure.empty()) return log(result.failure);
  tell(document->second, result.diagnostics);
}

void Session::tell(const OpenDocument& document, const std::vector<host::Diagnostic>& diagnostics) {
  std::map<std::string, std::vector<ToldFinding>> found;
  found[document.uri()];
  for (std::size_t i = 0; i < diagnostics.size();) {
    std::size_t end = i + 1;
    while (end < diagnostics.size() && diagnostics[end].severity == host::Severity::note) ++end;
    host::Diagnostic cause = diagnostics[i];
    auto notes = std::span(diagnostics).subspan(i + 1, end - i - 1);
    i = end;
    // What the generator says is told better by the note that says where to look.
    if (cause.identifier == "generator" && !notes.empty()) {
      cause = notes.front();
      cause.severity = host::Severity::error;
      notes = notes.subspan(1);
    }
    // What has no place is said at the document's head.
    const bool isPlaced = !cause.file.empty() && cause.file != document.name();
    const ScannedText* text = isPlaced ? workspace_.textOf(cause.file) : &document.text();
    if (text == nullptr) {
      text = &document.text();
      cause.text = cause.place() + ": " + cause.text;
      cause.line = cause.column = 0;
    }
    const OpenDocument* const other = isPlaced ? workspace_.findOpen(cause.file) : &document;
    const std::string uri =
        text == &document.text() ? document.uri() : (other != nullptr ? other->uri() : uriOf(cause.file));
    std::vector<ToldFinding>& list = found[uri];
    if (list.size() >= kMostFindings) continue;
    Json json = lsp::jsonOf(cause, notes, *text, encoding_,
                            [this](const std::string& file) { return workspace_.textOf(file); });
    list.push_back({std::move(cause), std::move(json)});
  }
  tellElsewhere(document.uri(), std::move(found));
}

/// Tells all documents that what was found by way of `owner` is or was in.
void Session::tellElsewhere(const std::string& owner, std::map<std::string, std::vector<ToldFinding>> found) {
  std::set<std::string> uris;
  for (const auto& [uri, findings] : found) uris.insert(uri);
  for (const auto& [uri, findings] : told_[owner]) uris.insert(uri);
  told_[owner] = std::move(found);
  for (const std::string& uri : uris) publish(uri);
}

void Session::publish(const std::string& uri) {
  Json diagnostics = Json::array();
  for (const auto& [owner, found] : told_) {
    const auto own = found.find(uri);
    if (own == found.end()) continue;
    for (const ToldFinding& finding : own->second) {
      const bool isKnown =
          std::find(diagnostics.begin(), diagnostics.end(), finding.json) != diagnostics.end();
      if (!isKnown && diagnostics.size() < kMostFindings) diagnostics.push_back(finding.json);
    }
  }
  Json params = Json::object({{"uri", uri}, {"diagnostics", std::move(diagnostics)}});
  if (const auto document = documents_.find(uri); document != documents_.end())
    params["version"] = document->second.version();
  send_(makeNotification("textDocument/publishDiagnostics", std::move(params)));
}

void Session::log(const std::string& text) {
  send_(makeNotification("window/logMessage", Json::object({{"type", kErrorMessage}, {"message", text}})));
}

/// That a folder is not there is said once.
void Session::showProblem() {
  const std::string& problem = workspace_.problem();
  if (problem == shownProblem_) return;
  shownProblem_ = problem;
  if (problem.empty()) return;
  send_(
      makeNotification("window/showMessage", Json::object({{"type", kErrorMessage}, {"message", problem}})));
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
