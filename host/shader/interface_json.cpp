// The interface of a shader as JSON, the schema of that, and its hash.

#include "host/documents/port_metadata.h"
#include "host/shader/interface_hash.h"
#include "host/shader/json_table.h"
#include "host/shader/shader_stage.h"
#include "host/shader/shader_target.h"
#include "tolmsdk/sha1.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using Json = OrderedJson;

constexpr const char* kAssembled = "assembled";
constexpr std::string_view kOriginKinds[] = {"node",          "light",        "preprocess", "postprocess",
                                             "output",        "graphUniform", "graphInput", "graphOutput",
                                             "stateVariable", "mesh"};
constexpr std::string_view kBufferKinds[] = {"constant", "input", "output", "sizes"};
constexpr std::string_view kBuiltins[] = {"fragCoord", "frontFacing", "position"};
constexpr ShaderTarget kTargets[] = {ShaderTarget::hlsl, ShaderTarget::spirv,   ShaderTarget::glsl,
                                     ShaderTarget::essl, ShaderTarget::essl300, ShaderTarget::msl};
constexpr ShaderStage kStages[] = {ShaderStage::pixel, ShaderStage::vertex, ShaderStage::compute};

// What a member is written as: a text that is not empty, a number that is not 0, and so on.

std::optional<JsonText> ifAny(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional(jsonText(text));
}
std::optional<JsonText> ifAny(std::size_t number) {
  return number == 0 ? std::nullopt : std::optional(jsonText(number));
}
std::optional<JsonText> ifAny(const std::vector<double>& numbers) {
  if (numbers.empty()) return std::nullopt;
  return writeEach(numbers, [](double number) { return jsonText(numberJson(number)); });
}
template <class Value>
std::optional<JsonText> ifAny(const std::optional<Value>& value) {
  return value ? std::optional(jsonText(*value)) : std::nullopt;
}

JsonText namesText(const std::vector<std::string>& names) {
  return writeEach(names, [](const std::string& name) { return jsonText(name); });
}

Json numbersSchema() { return listSchema(ofType("number")); }
Json textSchema() { return ofType("string"); }
Json textsSchema() { return listSchema(textSchema()); }

Json targetSchema() {
  std::vector<std::string_view> names = {kAssembled};
  for (const ShaderTarget target : kTargets) names.emplace_back(targetName(target));
  return oneOfWords(names);
}

Json stageSchema() {
  std::vector<std::string> names;
  for (const ShaderStage stage : kStages) names.push_back(toUtf8(stageName(stage)));
  return oneOfWords(std::vector<std::string_view>(names.begin(), names.end()));
}

Json hashSchema() {
  Json schema = textSchema();
  schema["pattern"] = "^[0-9a-f]{40}$";
  return schema;
}

const JsonTable<PortMetadata>& portTable() {
  using Port = PortMetadata;
  static const JsonTable<Port> table = {
      {"label", "What a person calls it.", textSchema(), false,
       [](const Port& port) { return ifAny(port.label); }},
      {"description", "What it does.", textSchema(), false,
       [](const Port& port) { return ifAny(port.description); }},
      {"kind", "What it is, for whoever edits it.", oneOfWords(portKinds()), false,
       [](const Port& port) { return ifAny(port.kind); }},
      {"space", "In which space a vector, color or texture is.", oneOfWords(portSpaces()), false,
       [](const Port& port) { return ifAny(port.space); }},
      {"value", "What it takes that nobody gives a value; a number for each component.", numbersSchema(),
       false, [](const Port& port) { return ifAny(port.value); }},
      {"min", "The least that makes sense, for each component.", numbersSchema(), false,
       [](const Port& port) { return ifAny(port.min); }},
      {"max", "The most that makes sense, for each component.", numbersSchema(), false,
       [](const Port& port) { return ifAny(port.max); }},
      {"step", "By which a person changes it, for each component.", numbersSchema(), false,
       [](const Port& port) { return ifAny(port.step); }},
  };
  return table;
}

const JsonTable<InterfaceOrigin>& originTable() {
  using Origin = InterfaceOrigin;
  static const JsonTable<Origin> table = {
      {"kind", "Of which part of graph and scene it is.", oneOfWords(kOriginKinds), true,
       [](const Origin& origin) { return jsonText(origin.kind); }},
      {"owner", "The node's or light's name.", textSchema(), false,
       [](const Origin& origin) { return ifAny(origin.owner); }},
      {"name", "Of the input, uniform, output or state variable.", textSchema(), true,
       [](const Origin& origin) { return jsonText(origin.name); }},
      {"fragment", "The owner's fragment.", textSchema(), false,
       [](const Origin& origin) { return ifAny(origin.fragment); }},
      {"port", "What the fragment's library says of the input or uniform.", defined("port"), false,
       [](const Origin& origin) {
         return origin.port ? std::optional(writeObject(portTable(), *origin.port)) : std::nullopt;
       }},
  };
  return table;
}

std::optional<JsonText> ifKnown(const InterfaceOrigin& origin) {
  if (origin.kind.empty()) return std::nullopt;
  return writeObject(originTable(), origin);
}

/// "origin": null where it is not known.
template <class Thing>
JsonMember<Thing> originMember() {
  return {"origin", "What it stands for; null when that is not known.", orNull(defined("origin")), true,
          [](const Thing& thing) { return ifKnown(thing.origin).value_or(jsonText(Json())); }};
}

/// Where a resource is bound.
template <class Thing>
JsonTable<Thing> placeMembers() {
  return {
      {"set", "Descriptor set, where the target has them.", sizeSchema(), false,
       [](const Thing& thing) { return ifAny(thing.place.set); }},
      {"binding", "Binding, where the target has them.", sizeSchema(), false,
       [](const Thing& thing) { return ifAny(thing.place.binding); }},
      {"register", "Register, where the target has them.", textSchema(), false,
       [](const Thing& thing) { return ifAny(thing.place.registerName); }},
      {"used", "Whether the compiled shader still has it.", ofType("boolean"), false,
       [](const Thing& thing) { return ifAny(thing.place.isUsed); }},
  };
}

template <class Thing>
JsonTable<Thing> joined(JsonTable<Thing> table, const JsonTable<Thing>& more) {
  table.insert(table.end(), more.begin(), more.end());
  return table;
}

const JsonTable<InterfaceMember>& memberTable() {
  using Member = InterfaceMember;
  static const JsonTable<Member> table = {
      {"name", "In the target's text.", textSchema(), true,
       [](const Member& member) { return jsonText(member.name); }},
      {"type", "In HLSL's words, or the structure's name.", textSchema(), true,
       [](const Member& member) { return jsonText(member.type); }},
      {"offset", "In bytes, from the start of the buffer.", sizeSchema(), true,
       [](const Member& member) { return jsonText(member.offset); }},
      {"size", "In bytes.", sizeSchema(), true, [](const Member& member) { return jsonText(member.size); }},
      {"arrayLength", "Of an array.", sizeSchema(), false,
       [](const Member& member) { return ifAny(member.arrayLength); }},
      {"arrayStride", "In bytes, from one element to the next.", sizeSchema(), false,
       [](const Member& member) { return ifAny(member.arrayStride); }},
      {"matrixStride", "In bytes, from one column to the next.", sizeSchema(), false,
       [](const Member& member) { return ifAny(member.matrixStride); }},
      {"value", "What it starts with; a matrix row by row.", numbersSchema(), false,
       [](const Member& member) { return ifAny(member.value); }},
      {"origin", "What it stands for.", defined("origin"), false,
       [](const Member& member) { return ifKnown(member.origin); }},
      {"members", "Of a structure.", listSchema(defined("member")), false,
       [](const Member& member) {
         return member.members.empty() ? std::nullopt
                                       : std::optional(writeList(memberTable(), member.members));
       }},
  };
  return table;
}

const JsonTable<InterfaceBuffer>& bufferTable() {
  using Buffer = InterfaceBuffer;
  using Kind = Buffer::Kind;
  static const JsonTable<Buffer> table = joined(
      joined<Buffer>(
          {
              {"name", "In the target's text.", textSchema(), true,
               [](const Buffer& buffer) { return jsonText(buffer.name); }},
              {"kind", "Constant buffer, elements that a compute stage reads or writes, or sizes of these.",
               oneOfWords(kBufferKinds), true,
               [](const Buffer& buffer) {
                 return jsonText(std::string(kBufferKinds[static_cast<std::size_t>(buffer.kind)]));
               }},
              {"variable", "By which the target's text reaches the members.", textSchema(), false,
               [](const Buffer& buffer) { return ifAny(buffer.variable); }},
          },
          placeMembers<Buffer>()),
      {
          {"size", "In bytes, of a constant buffer; null when a structure in it could not be read.",
           orNull(sizeSchema()), false,
           [](const Buffer& buffer) {
             const Json size = buffer.isComplete ? Json(buffer.size) : Json();
             return buffer.kind == Kind::constant ? std::optional(jsonText(size)) : std::nullopt;
           }},
          {"stride", "In bytes, of one element.", sizeSchema(), false,
           [](const Buffer& buffer) {
             return buffer.kind == Kind::constant ? std::nullopt : std::optional(jsonText(buffer.size));
           }},
          {"members", "Of the buffer, or of an element.", listSchema(defined("member")), true,
           [](const Buffer& buffer) { return writeList(memberTable(), buffer.members); }},
      });
  return table;
}

const JsonTable<InterfaceTexture>& textureTable() {
  using Texture = InterfaceTexture;
  static const JsonTable<Texture> table =
      joined(joined<Texture>(
                 {
                     {"name", "In the target's text.", textSchema(), true,
                      [](const Texture& texture) { return jsonText(texture.name); }},
                     {"type", "\"texture2D\", or \"sampler2D\" where texture and sampler are one.",
                      textSchema(), true, [](const Texture& texture) { return jsonText(texture.type); }},
                 },
                 placeMembers<Texture>()),
             {originMember<Texture>()});
  return table;
}

const JsonTable<InterfaceSampler>& samplerTable() {
  using Sampler = InterfaceSampler;
  static const JsonTable<Sampler> table =
      joined(joined<Sampler>(
                 {
                     {"name", "In the target's text.", textSchema(), true,
                      [](const Sampler& sampler) { return jsonText(sampler.name); }},
                     {"texture", "The texture it belongs to.", textSchema(), true,
                      [](const Sampler& sampler) { return jsonText(sampler.texture); }},
                 },
                 placeMembers<Sampler>()),
             {originMember<Sampler>()});
  return table;
}

const JsonTable<InterfaceAttribute>& attributeTable() {
  using Attribute = InterfaceAttribute;
  static const JsonTable<Attribute> table = {
      {"name", "In the target's text.", textSchema(), true,
       [](const Attribute& attribute) { return jsonText(attribute.name); }},
      {"type", "In HLSL's words.", textSchema(), true,
       [](const Attribute& attribute) { return jsonText(attribute.type); }},
      {"location", "Of what is interpolated.", sizeSchema(), false,
       [](const Attribute& attribute) { return ifAny(attribute.location); }},
      {"builtin", "What the stage itself provides.", oneOfWords(kBuiltins), false,
       [](const Attribute& attribute) { return ifAny(attribute.builtin); }},
      {"semantic", "In HLSL; in Metal the attribute.", textSchema(), false,
       [](const Attribute& attribute) { return ifAny(attribute.semantic); }},
      {"flat", "Whether it is not interpolated.", ofType("boolean"), false,
       [](const Attribute& attribute) {
         return attribute.isFlat ? std::optional(jsonText(true)) : std::nullopt;
       }},
      {"used", "Whether the compiled shader still has it.", ofType("boolean"), false,
       [](const Attribute& attribute) { return ifAny(attribute.isUsed); }},
      originMember<Attribute>(),
      {"meaning", "Of a state variable.", textSchema(), false,
       [](const Attribute& attribute) { return ifAny(attribute.meaning); }},
      {"space", "Of a state variable that is in one.", textSchema(), false,
       [](const Attribute& attribute) { return ifAny(attribute.space); }},
  };
  return table;
}

const JsonTable<InterfaceRenderTarget>& renderTargetTable() {
  using Target = InterfaceRenderTarget;
  static const JsonTable<Target> table = {
      {"name", "In the target's text.", textSchema(), true,
       [](const Target& target) { return jsonText(target.name); }},
      {"index", "Of the render target.", sizeSchema(), true,
       [](const Target& target) { return jsonText(target.index); }},
      {"type", "In HLSL's words.", textSchema(), true,
       [](const Target& target) { return jsonText(target.type); }},
      {"row", "Of a matrix.", sizeSchema(), false, [](const Target& target) { return ifAny(target.row); }},
      originMember<Target>(),
  };
  return table;
}

/// What is hashed.
const JsonTable<ShaderInterface>& contentTable() {
  using Shader = ShaderInterface;
  static const JsonTable<Shader> table = {
      {"target", "What the shader is compiled to.", targetSchema(), true,
       [](const Shader& shader) {
         return jsonText(shader.target ? targetName(*shader.target) : kAssembled);
       }},
      {"version", "Of the target's language, where it was chosen.", textSchema(), false,
       [](const Shader& shader) { return ifAny(shader.version); }},
      {"stage", "Of the pipeline.", stageSchema(), true,
       [](const Shader& shader) { return jsonText(toUtf8(stageName(shader.stage))); }},
      {"entryPoint", "Name of the function to start.", textSchema(), true,
       [](const Shader& shader) { return jsonText(shader.entryPoint); }},
      {"groupSize", "Invocations of a compute group.", sizeSchema(), false,
       [](const Shader& shader) { return ifAny(shader.groupSize); }},
      {"attributes", "What the stage takes for each pixel or vertex.", listSchema(defined("attribute")), true,
       [](const Shader& shader) { return writeList(attributeTable(), shader.attributes); }},
      {"varyings", "What a vertex stage hands to the pixel stage.", listSchema(defined("attribute")), false,
       [](const Shader& shader) {
         return shader.stage == ShaderStage::vertex
                    ? std::optional(writeList(attributeTable(), shader.varyings))
                    : std::nullopt;
       }},
      {"buffers", "Constant buffers and buffers of elements.", listSchema(defined("buffer")), true,
       [](const Shader& shader) { return writeList(bufferTable(), shader.buffers); }},
      {"textures", "Textures.", listSchema(defined("texture")), true,
       [](const Shader& shader) { return writeList(textureTable(), shader.textures); }},
      {"samplers", "Samplers that are apart from their textures.", listSchema(defined("sampler")), true,
       [](const Shader& shader) { return writeList(samplerTable(), shader.samplers); }},
      {"renderTargets", "What a pixel stage writes.", listSchema(defined("renderTarget")), true,
       [](const Shader& shader) { return writeList(renderTargetTable(), shader.renderTargets); }},
      {"includes", "Names of the include files.", textsSchema(), true,
       [](const Shader& shader) { return namesText(shader.includes); }},
  };
  return table;
}

/// What is not.
const JsonTable<ShaderInterface>& fileTable() {
  using Shader = ShaderInterface;
  static const JsonTable<Shader> table = {
      {"files", "The files that the shader was made of.", textsSchema(), true,
       [](const Shader& shader) { return namesText(shader.files); }},
      {"hash", "Of the shader's text and its interface.", hashSchema(), true,
       [](const Shader& shader) { return jsonText(shader.hash); }},
  };
  return table;
}

template <class Thing>
void define(Json& schema, const std::string& name, const JsonTable<Thing>& table) {
  addToSchema(schema["$defs"][name], table);
}

/// A buffer has either a size or a stride.
Json sizeOrStride() {
  Json either = Json::array();
  for (const char* const name : {"size", "stride"}) {
    Json required = Json::object();
    required["required"] = Json::array();
    required["required"].push_back(name);
    either.push_back(std::move(required));
  }
  return either;
}

/// Members and elements on lines of their own, two blanks for each level.
std::string indentJson(std::string_view json) {
  std::string text;
  std::size_t level = 0;
  bool isInString = false;
  const auto startLine = [&] { text.append(1, '\n').append(2 * level, ' '); };
  for (std::size_t at = 0; at < json.size(); ++at) {
    const char c = json[at];
    if (isInString) {
      text += c;
      if (c == '\\') text += json[++at];
      isInString = c != '"';
    } else if (c == '{' || c == '[') {
      text += c;
      ++level;
      const char next = json[at + 1];
      if (next == '}' || next == ']') {
        text += next;
        --level;
        ++at;
      } else {
        startLine();
      }
    } else if (c == '}' || c == ']') {
      --level;
      startLine();
      text += c;
    } else {
      text += c;
      if (c == ',') startLine();
      if (c == ':') text += ' ';
      isInString = c == '"';
    }
  }
  return text;
}

}  // namespace

std::string writeInterfaceJson(const ShaderInterface& shader) {
  return indentJson("{" + writeMembers(contentTable(), shader) + "," + writeMembers(fileTable(), shader) +
                    "}") +
         "\n";
}

std::string interfaceSchemaJson() {
  Json schema = Json::object();
  schema["$schema"] = "https://json-schema.org/draft/2020-12/schema";
  schema["title"] = "What a shader takes and gives, as `sfg reflect` tells it";
  addToSchema(schema, joined(contentTable(), fileTable()));
  define(schema, "attribute", attributeTable());
  define(schema, "buffer", bufferTable());
  schema["$defs"]["buffer"]["oneOf"] = sizeOrStride();
  define(schema, "member", memberTable());
  define(schema, "texture", textureTable());
  define(schema, "sampler", samplerTable());
  define(schema, "renderTarget", renderTargetTable());
  define(schema, "origin", originTable());
  define(schema, "port", portTable());
  return schema.dump(2) + "\n";
}

void hashInterface(ShaderInterface& shader, const std::string& text) {
  const JsonText content = writeObject(contentTable(), shader);
  shader.hash = SHA1_GetBytesHash(text + "\n" + content.text);
}

}  // namespace TolmSDK::Graphics::sfg::host
