#pragma once

// A conversation in one process: checks run when they are asked for.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tools/lsp/session.h"
#include "tools/lsp/uri.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// A folder with a library of two fragments and an include file, and a session that knows it.
class SessionTest : public testing::Test {
protected:
  static constexpr const char* kLibrary = R"json({
  "checker": {
    "description": "Squares of 0 and 1.",
    "ports": { "uv": { "value": [0.5, 0.5], "kind": "uv" }, "result": "which square" },
    "language": ["dx11"],
    "implementation": ["void checker(float2 uv, out float result)", "{", "result = frac(uv.x);", "}"]
  },
  "blend": {
    "ports": { "amount": { "description": "how much of b", "value": 0.25, "min": 0.0, "max": 1.0 } },
    "language": ["dx11"],
    "includes": ["tools.h"],
    "implementation": [
      "void blend(float3 a, float3 b, float amount, out float3 result)",
      "{", "result = mixed(a, b, amount);", "}"
    ]
  }
}
)json";
  static constexpr const char* kGraph = R"json({
  "inputs": [ { "name": "uv", "type": "float2" } ],
  "outputs": [ { "name": "color", "type": "float3", "node": "board", "output": "result" } ],
  "nodes": [
    { "name": "tiles", "fragment": "checker", "inputs": { "uv": { "graphInput": "uv" } } },
    { "name": "board", "fragment": "blend",
      "inputs": { "a": { "value": [0.1, 0.1, 0.1] }, "b": { "value": [0.9, 0.8, 0.6] },
                  "amount": { "node": "tiles", "output": "result" } } }
  ]
}
)json";

  SessionTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_lsp_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    write("fragments/first.fraglib", kLibrary);
    write("fragments/tools.h", "float3 mixed(float3 a, float3 b, float x) { return lerp(a, b, x); }\n");
  }
  ~SessionTest() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  std::string uri(const std::string& name) const { return uriOf(path(name)); }
  void write(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
    std::ofstream(path(name), std::ios::binary) << text;
  }

  /// The answer to a request: its result, or {"error": CODE}.
  Json ask(const std::string& method, const Json& params) {
    session_.handle(Message{Json(++id_), method, params, false});
    const Json answer = sent_.back();
    sent_.pop_back();
    EXPECT_EQ(answer.at("id"), id_);
    if (answer.contains("error")) return Json::object({{"error", answer.at("error").at("code")}});
    return answer.at("result");
  }
  void tell(const std::string& method, const Json& params) {
    session_.handle(Message{std::nullopt, method, params, false});
  }

  Json initialize(const Json& capabilities = Json::object(), const Json& options = Json::object()) {
    return ask(
        "initialize",
        {{"rootUri", uriOf(folder_)}, {"capabilities", capabilities}, {"initializationOptions", options}});
  }
  void open(const std::string& name, const std::string& text) {
    tell("textDocument/didOpen",
         {{"textDocument", {{"uri", uri(name)}, {"languageId", "json"}, {"version", 1}, {"text", text}}}});
  }
  void change(const std::string& name, int version, const Json& changes) {
    tell("textDocument/didChange",
         {{"textDocument", {{"uri", uri(name)}, {"version", version}}}, {"contentChanges", changes}});
  }
  /// The whole text, "|" left out, and its place kept for at().
  std::string marked(std::string text) {
    const std::size_t offset = text.find('|');
    text.erase(offset, 1);
    place_ = jsonOf(TextBuffer(text).positionOf(offset, Encoding::utf16));
    return text;
  }
  /// Parameters of a request about the place.
  Json at(const std::string& name) const {
    return {{"textDocument", {{"uri", uri(name)}}}, {"position", place_}};
  }

  /// Runs what is due. Answers what was told, a line each: "NAME VERSION: LINE:COLUMN-LINE:COLUMN text
  /// [code]".
  std::string check() {
    sent_.clear();
    while (session_.nextCheck()) session_.startCheck();
    std::string lines;
    for (const Json& message : sent_) lines += shown(message);
    return lines;
  }

  std::string shown(const Json& message) const {
    if (message.at("method") != "textDocument/publishDiagnostics")
      return message.at("method").get<std::string>() + ": " + stringOf(message.at("params"), "message") +
             "\n";
    const Json& params = message.at("params");
    const std::string head = std::filesystem::path(*pathOf(stringOf(params, "uri"))).filename().string() +
                             (params.contains("version") ? " " + params.at("version").dump() : "") + ":";
    if (params.at("diagnostics").empty()) return head + " nothing\n";
    std::string lines;
    for (const Json& one : params.at("diagnostics")) {
      lines += head + " " + shownRange(one.at("range")) + " " + one.at("severity").dump() + " " +
               stringOf(one, "message") + " [" + stringOf(one, "code") + "]\n";
    }
    return lines;
  }
  static std::string shownRange(const Json& range) {
    const auto place = [&](const char* end) {
      return std::to_string(range.at(end).at("line").get<int>() + 1) + ":" +
             std::to_string(range.at(end).at("character").get<int>() + 1);
    };
    return place("start") + "-" + place("end");
  }
  static std::string labels(const Json& items) {
    std::string text;
    for (const Json& item : items) text += (text.empty() ? "" : " ") + stringOf(item, "label");
    return text;
  }
  /// The document's text after a WorkspaceEdit without versions.
  std::string edited(const std::string& name, const std::string& text, const Json& edit) const {
    Json edits = edit.at("changes").at(uri(name));
    std::reverse(edits.begin(), edits.end());
    TextBuffer buffer(text);
    for (const Json& one : edits) {
      const Range range = rangeOf(one.at("range"));
      buffer.replace(buffer.spanOf(range, Encoding::utf16), one.at("newText").get<std::string>());
    }
    return buffer.text();
  }

  static std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    return text.replace(at, from.size(), to);
  }

  std::string folder_;
  std::vector<Json> sent_;
  Json place_;
  int id_ = 0;
  int checks_ = 0;  ///< that ran
  Session session_{withoutStandard(), [this](const Json& message) { sent_.push_back(message); },
                   [this](CheckJob job) {
                     ++checks_;
                     session_.take(runCheck(job));
                   },
                   std::chrono::milliseconds(0)};

private:
  static Settings withoutStandard() {
    Settings settings;
    settings.withoutStandard = true;
    return settings;
  }
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
