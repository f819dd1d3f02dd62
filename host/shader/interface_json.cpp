// The interface of a shader as JSON, and its hash.

#include <cmath>
#include <nlohmann/json.hpp>

#include "host/shader/interface_hash.h"
#include "host/shader/shader_stage.h"
#include "host/shader/shader_target.h"
#include "tolmsdk/sha1.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Members in the order in which they are added; numbers are 32-bit floats, written in their shortest form.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t,
                                  std::uint64_t, float>;

template <class Value>
void addOptional(Json& object, const char* key, const std::optional<Value>& value) {
  if (value) object[key] = *value;
}

void addText(Json& object, const char* key, const std::string& text) {
  if (!text.empty()) object[key] = text;
}

void addNumber(Json& object, const char* key, std::size_t number) {
  if (number != 0) object[key] = number;
}

Json originJson(const InterfaceOrigin& origin) {
  if (origin.kind.empty()) return nullptr;
  Json json = {{"kind", origin.kind}};
  addText(json, "owner", origin.owner);
  json["name"] = origin.name;
  addText(json, "fragment", origin.fragment);
  return json;
}

/// Whole numbers without a fraction, so that integers and booleans read as such.
Json numberJson(double number) {
  constexpr double kLargest = 9007199254740992.0;  // beyond it all numbers are whole
  if (std::abs(number) < kLargest && std::trunc(number) == number) return static_cast<std::int64_t>(number);
  return static_cast<float>(number);
}

Json memberJson(const InterfaceMember& member) {
  Json json = {
      {"name", member.name}, {"type", member.type}, {"offset", member.offset}, {"size", member.size}};
  addNumber(json, "arrayLength", member.arrayLength);
  addNumber(json, "arrayStride", member.arrayStride);
  addNumber(json, "matrixStride", member.matrixStride);
  if (!member.value.empty()) {
    json["value"] = Json::array();
    for (const double number : member.value) json["value"].push_back(numberJson(number));
  }
  if (!member.origin.kind.empty()) json["origin"] = originJson(member.origin);
  for (const InterfaceMember& part : member.members) json["members"].push_back(memberJson(part));
  return json;
}

void addPlace(Json& json, const InterfacePlace& place) {
  addOptional(json, "set", place.set);
  addOptional(json, "binding", place.binding);
  addText(json, "register", place.registerName);
  addOptional(json, "used", place.isUsed);
}

Json bufferJson(const InterfaceBuffer& buffer) {
  constexpr const char* kKinds[] = {"constant", "input", "output", "sizes"};
  Json json = {{"name", buffer.name}, {"kind", kKinds[static_cast<std::size_t>(buffer.kind)]}};
  addText(json, "variable", buffer.variable);
  addPlace(json, buffer.place);
  if (buffer.kind == InterfaceBuffer::Kind::constant) {
    json["size"] = buffer.isComplete ? Json(buffer.size) : Json(nullptr);
  } else {
    json["stride"] = buffer.size;
  }
  json["members"] = Json::array();
  for (const InterfaceMember& member : buffer.members) json["members"].push_back(memberJson(member));
  return json;
}

Json textureJson(const InterfaceTexture& texture) {
  Json json = {{"name", texture.name}, {"type", texture.type}};
  addPlace(json, texture.place);
  json["origin"] = originJson(texture.origin);
  return json;
}

Json samplerJson(const InterfaceSampler& sampler) {
  Json json = {{"name", sampler.name}, {"texture", sampler.texture}};
  addPlace(json, sampler.place);
  json["origin"] = originJson(sampler.origin);
  return json;
}

Json attributeJson(const InterfaceAttribute& attribute) {
  Json json = {{"name", attribute.name}, {"type", attribute.type}};
  addOptional(json, "location", attribute.location);
  addText(json, "builtin", attribute.builtin);
  addText(json, "semantic", attribute.semantic);
  if (attribute.isFlat) json["flat"] = true;
  addOptional(json, "used", attribute.isUsed);
  json["origin"] = originJson(attribute.origin);
  addText(json, "meaning", attribute.meaning);
  addText(json, "space", attribute.space);
  return json;
}

Json renderTargetJson(const InterfaceRenderTarget& target) {
  Json json = {{"name", target.name}, {"index", target.index}, {"type", target.type}};
  addOptional(json, "row", target.row);
  json["origin"] = originJson(target.origin);
  return json;
}

template <class Things, class ToJson>
Json listJson(const Things& things, const ToJson& toJson) {
  Json list = Json::array();
  for (const auto& thing : things) list.push_back(toJson(thing));
  return list;
}

Json interfaceJson(const ShaderInterface& shader) {
  Json json = {{"target", shader.target ? targetName(*shader.target) : "assembled"}};
  addText(json, "version", shader.version);
  json["stage"] = toUtf8(stageName(shader.stage));
  json["entryPoint"] = shader.entryPoint;
  addNumber(json, "groupSize", shader.groupSize);
  json["attributes"] = listJson(shader.attributes, attributeJson);
  if (shader.stage == ShaderStage::vertex) json["varyings"] = listJson(shader.varyings, attributeJson);
  json["buffers"] = listJson(shader.buffers, bufferJson);
  json["textures"] = listJson(shader.textures, textureJson);
  json["samplers"] = listJson(shader.samplers, samplerJson);
  json["renderTargets"] = listJson(shader.renderTargets, renderTargetJson);
  json["includes"] = shader.includes;
  return json;
}

}  // namespace

std::string writeInterfaceJson(const ShaderInterface& shader) {
  Json json = interfaceJson(shader);
  json["files"] = shader.files;
  json["hash"] = shader.hash;
  // Paths need not be text.
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void hashInterface(ShaderInterface& shader, const std::string& text) {
  shader.hash = toUtf8(SHA1_GetStringHash(fromUtf8(text + "\n" + interfaceJson(shader).dump())));
}

}  // namespace TolmSDK::Graphics::sfg::host
