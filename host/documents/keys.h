#pragma once

// The keys of the documents: what readers know, and what is told of the others.

#include <span>
#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

/// What a key holds.
enum class Holds {
  name,          ///< a string that is not empty
  text,          ///< a string
  names,         ///< an array of strings
  words,         ///< an array of a few words
  numbers,       ///< an array of numbers
  number,        ///< a number
  level,         ///< a number, or a string that is one
  boolean,       ///< true or false
  value,         ///< a boolean, a number, or an array of numbers
  type,          ///< the name of a type
  word,          ///< one of a few words
  object,        ///< an object
  objects,       ///< an array of objects
  namedObjects,  ///< an object of any names, each of which holds an object
  namedTexts,    ///< the same, where a text may stand in place of an object
  namedValues    ///< an object of any names, each of which holds a value
};

struct KeyTable;

struct Key {
  std::string_view name;
  Holds holds = Holds::text;
  std::string_view meaning;  ///< a sentence
  bool isRequired = false;
  const KeyTable* table = nullptr;               ///< of the objects
  std::span<const std::string_view> words = {};  ///< of a word
};

/// The keys of one kind of object.
struct KeyTable {
  std::string_view object;  ///< "a node", in messages
  std::string_view meaning;
  std::span<const Key> keys;
  /// Keys of which exactly one stands in an object; none where that is no rule.
  std::span<const std::string_view> onlyOneOf = {};
  /// A key that makes the required ones needless; empty without one.
  std::string_view insteadOfRequired = {};

  /// Null for an unknown one.
  const Key* find(std::string_view name) const;
};

/// The root objects. That of a library holds fragments under any names: this is the table of each.
const KeyTable& graphKeys() noexcept;
const KeyTable& environmentKeys() noexcept;
const KeyTable& manifestKeys() noexcept;
const KeyTable& fragmentKeys() noexcept;
/// Of one of a fragment's "profiles"; its keys are keys of a fragment without "profiles", too.
const KeyTable& profileKeys() noexcept;

/// Of an input of a node.
const KeyTable& nodeInputKeys() noexcept;

/// The words that "kind" and "space" of a port or uniform know, in alphabetical order.
inline constexpr std::string_view kPortKinds[] = {"angle",  "color",  "direction", "distance",
                                                  "factor", "normal", "position",  "uv"};
inline constexpr std::string_view kPortSpaces[] = {"data",    "linear", "object", "srgb",
                                                   "tangent", "view",   "world"};

/// Words of a manifest.
inline constexpr std::string_view kToolWords[] = {"default", "lightloop"};
inline constexpr std::string_view kStageWords[] = {"pixel", "compute", "vertex"};
inline constexpr std::string_view kTargetWords[] = {"assembled", "spirv", "hlsl",    "hlsl60", "glsl",
                                                    "glsl330",   "essl",  "essl300", "msl"};
inline constexpr std::string_view kOptimizationWords[] = {"speed", "size", "none"};
inline constexpr std::string_view kUniformNameWords[] = {"readable", "generated"};
inline constexpr std::string_view kMeshWords[] = {"position",  "normal",    "tangent",   "texCoord0",
                                                  "texCoord1", "texCoord2", "texCoord3", "color"};

/// Comments: keys that nobody reads and nobody is told of.
template <class Text>
bool isCommentKey(const Text& key) noexcept {
  return key.size() >= 2 && key[0] == '/' && key[1] == '/';
}
/// In the root object: names the schema, for editors.
inline constexpr std::string_view kSchemaKey = "$schema";

}  // namespace TolmSDK::Graphics::sfg::host
