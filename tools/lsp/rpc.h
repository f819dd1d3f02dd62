#pragma once

// Messages of JSON-RPC 2.0 as the language server protocol uses them.

#include <nlohmann/json.hpp>

#include <optional>
#include <stdexcept>
#include <string>

namespace TolmSDK::Graphics::sfg::tools::lsp {

using Json = nlohmann::json;

enum class ErrorCode {
  parseError = -32700,
  invalidRequest = -32600,
  methodNotFound = -32601,
  invalidParams = -32602,
  internalError = -32603,
  serverNotInitialized = -32002,
  requestCancelled = -32800,
  requestFailed = -32803
};

/// A request that is answered by an error.
class RequestError : public std::runtime_error {
public:
  RequestError(ErrorCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ErrorCode code() const noexcept { return code_; }

private:
  ErrorCode code_;
};

/// A message that came in. An answer to a request of ours has no method.
struct Message {
  std::optional<Json> id;  ///< a number or a text; without it the message is a notification
  std::string method;
  Json params;
  bool isCancelled = false;

  bool isRequest() const { return id.has_value() && !method.empty(); }
};

/// Throws RequestError (a parse error, an invalid request) for what is no message.
Message parseMessage(const std::string& text);

Json makeResponse(const Json& id, Json result);
/// `id` may be null: of a message whose own cannot be read.
Json makeError(const Json& id, ErrorCode code, const std::string& text);
Json makeNotification(const std::string& method, Json params);

/// UTF-8; what is none becomes U+FFFD.
std::string textOf(const Json& message);

// Members of what a client sends, which may be anything.

/// The member, or null where there is none.
const Json& memberOf(const Json& object, const char* key);
std::string stringOf(const Json& object, const char* key, const std::string& otherwise = {});
bool flagOf(const Json& object, const char* key);
/// The value itself when it is an array, else an empty one. Never a copy: that of a value that is nested
/// deeply would take stack in proportion.
const Json& elementsOf(const Json& value);
/// The same along several keys.
template <class... Keys>
const Json& memberOf(const Json& object, const char* key, const char* next, Keys... rest) {
  return memberOf(memberOf(object, key), next, rest...);
}
/// Throws RequestError for a member that is missing or of another type.
const std::string& requiredString(const Json& object, const char* key);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
