#include "tools/lsp/rpc.h"

#include <utility>

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

const Json kNull;

/// The id alone, for the answer to a message that is otherwise no good.
bool isId(const Json& id) { return id.is_string() || id.is_number(); }

}  // namespace

Message parseMessage(const std::string& text) {
  Json json = Json::parse(text, nullptr, false);
  if (json.is_discarded()) throw RequestError(ErrorCode::parseError, "the message is no JSON");
  if (!json.is_object()) throw RequestError(ErrorCode::invalidRequest, "a message is an object");

  Message message;
  if (const Json& id = memberOf(json, "id"); isId(id)) {
    message.id = id;
  } else if (!id.is_null()) {
    throw RequestError(ErrorCode::invalidRequest, "`id` is a number or a text");
  }
  const Json& method = memberOf(json, "method");
  if (method.is_string()) {
    message.method = method.get_ref<const std::string&>();
  } else if (!method.is_null() || (!json.contains("result") && !json.contains("error"))) {
    throw RequestError(ErrorCode::invalidRequest, "a message has a `method`, `result` or `error`");
  }
  if (const auto params = json.find("params"); params != json.end()) message.params = std::move(*params);
  return message;
}

Json makeResponse(const Json& id, Json result) {
  return Json::object({{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}});
}

Json makeError(const Json& id, ErrorCode code, const std::string& text) {
  return Json::object({{"jsonrpc", "2.0"},
                       {"id", id},
                       {"error", Json::object({{"code", static_cast<int>(code)}, {"message", text}})}});
}

Json makeNotification(const std::string& method, Json params) {
  return Json::object({{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}});
}

std::string textOf(const Json& message) {
  return message.dump(-1, ' ', false, Json::error_handler_t::replace);
}

const Json& memberOf(const Json& object, const char* key) {
  if (!object.is_object()) return kNull;
  const auto found = object.find(key);
  return found != object.end() ? *found : kNull;
}

std::string stringOf(const Json& object, const char* key, const std::string& otherwise) {
  const Json& member = memberOf(object, key);
  return member.is_string() ? member.get<std::string>() : otherwise;
}

bool flagOf(const Json& object, const char* key) {
  const Json& member = memberOf(object, key);
  return member.is_boolean() && member.get<bool>();
}

const Json& elementsOf(const Json& value) {
  static const Json kEmpty = Json::array();
  return value.is_array() ? value : kEmpty;
}

const std::string& requiredString(const Json& object, const char* key) {
  const Json& member = memberOf(object, key);
  if (!member.is_string()) {
    throw RequestError(ErrorCode::invalidParams, "`" + std::string(key) + "` is a text");
  }
  return member.get_ref<const std::string&>();
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
