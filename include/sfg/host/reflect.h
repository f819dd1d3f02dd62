#pragma once

// What a complete shader takes and gives, and where: what a renderer must know to feed it. Plain data, which
// Job::reflect() fills; whoever changes it changes only what he has. Text is UTF-8. Any number of threads may
// call what is here.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sfg/host/errors.h"
#include "sfg/host/export.h"
#include "sfg/host/port_metadata.h"
#include "sfg/host/shader.h"
#include "sfg/host/target.h"

namespace TolmSDK::Graphics::sfg::host {

/// What a value stands for in graph and scene.
struct InterfaceOrigin {
  std::string kind;      ///< "node", "light", "preprocess", "postprocess", "output", "graphUniform",
                         ///< "graphInput", "graphOutput", "stateVariable", "mesh" (a part of a vertex);
                         ///< empty when it is not known
  std::string owner;     ///< the node's or light's name; empty for the graph and state variables
  std::string fragment;  ///< the owner's
  std::string name;      ///< of the input, uniform, output or state variable
  /// What the owner's library says of its input or uniform; none when it says nothing.
  std::optional<PortMetadata> port = std::nullopt;

  /// "owner.name", or the name alone where there is no owner: under which values are set.
  std::string path() const { return owner.empty() ? name : owner + "." + name; }
};

/// A value in a buffer. Offsets and sizes are in bytes.
struct InterfaceMember {
  std::string name;             ///< in the target's text
  std::string type;             ///< in HLSL's words ("float3"), or the structure's name
  std::size_t offset = 0;       ///< from the start of the buffer
  std::size_t size = 0;         ///< what is written there
  std::size_t arrayLength = 0;  ///< 0 for what is no array
  std::size_t arrayStride = 0;
  std::size_t matrixStride = 0;  ///< from one column to the next; rows follow each other within a column
  std::vector<double> value;     ///< what it starts with, matrices row by row; empty without one
  InterfaceOrigin origin;
  std::vector<InterfaceMember> members;  ///< of a structure
};

/// Where a resource is bound. A target has a binding, registers, or both; or neither, and it is bound by its
/// name.
struct InterfacePlace {
  char kind = 'b';         ///< of the register in HLSL: 'b', 't', 's' or 'u'
  std::size_t number = 0;  ///< of the register
  std::optional<std::size_t> set;
  std::optional<std::size_t> binding;
  std::string registerName;    ///< "b0"; empty where the target has none
  std::optional<bool> isUsed;  ///< whether the compiled shader still has it; unknown until it is compiled
};

struct InterfaceBuffer {
  enum class Kind {
    constant,  ///< a constant buffer, or block of uniforms
    input,     ///< elements that a compute stage reads, one for each invocation
    output,    ///< and writes
    sizes,     ///< sizes in bytes of the other buffers, each at the place of its binding (Metal)
  };
  Kind kind = Kind::constant;
  std::string name;
  std::string variable;  ///< by which the target's text reaches its members; empty where it needs none
  InterfacePlace place;
  std::size_t size = 0;  ///< to allocate, a multiple of 16; of one element in a buffer of elements
  std::vector<InterfaceMember> members;
  bool isComplete = true;  ///< false when a structure's declaration could not be read: size is 0 then
};

struct InterfaceTexture {
  std::string name;
  std::string type;  ///< "texture2D", or "sampler2D" where texture and sampler are one
  InterfacePlace place;
  InterfaceOrigin origin;
};

struct InterfaceSampler {
  std::string name;
  std::string texture;  ///< the texture it belongs to
  InterfacePlace place;
  InterfaceOrigin origin;
};

/// A value that varies over a surface, or of a vertex.
struct InterfaceAttribute {
  std::string name;
  std::string semantic;                 ///< in HLSL; in Metal the attribute ("user(locn0)"); else empty
  std::optional<std::size_t> location;  ///< none for what the stage itself provides or takes, and where
                                        ///< stages are linked by names
  std::string builtin;  ///< "fragCoord" or "frontFacing": the stage's own; "position" leaves a vertex stage
  std::string type;
  bool isFlat = false;  ///< not interpolated
  InterfaceOrigin origin;
  std::string meaning;  ///< of a state variable or a part of a vertex
  std::string space;    ///< "object", "world", "view", "clip"; empty for what is in none
  std::optional<bool> isUsed;
};

struct InterfaceRenderTarget {
  std::string name;
  std::size_t index = 0;
  std::string type;
  InterfaceOrigin origin;
  std::optional<std::size_t> row;  ///< of a matrix
};

struct ShaderInterface {
  std::optional<ShaderTarget> target;  ///< none: the assembled HLSL
  std::string version;                 ///< of the target's language, "330" or "6.0", where it was chosen
  ShaderStage stage = ShaderStage::pixel;
  std::string entryPoint;
  std::size_t groupSize = 0;  ///< invocations of a compute group
  std::vector<InterfaceAttribute> attributes;
  std::vector<InterfaceAttribute> varyings;  ///< what a vertex stage hands to the pixel stage
  std::vector<InterfaceBuffer> buffers;
  std::vector<InterfaceTexture> textures;
  std::vector<InterfaceSampler> samplers;
  std::vector<InterfaceRenderTarget> renderTargets;
  std::vector<std::string> includes;
  /// The files that the shader was made of: documents, the library files of the fragments in use, include
  /// files; each once, as its folder was spelled.
  std::vector<std::string> files;
  /// Of the assembled text and of everything above but what is used and the files, and of the options that
  /// compile() was given for it. The same on every machine and for every order of folders; equal text,
  /// interface and options, equal hash. 40 hexadecimal digits.
  std::string hash;
};

/// The same shader as compile() makes it for a target with these options: names, bindings and registers, and
/// a hash of its own, which tells options apart, too. `assembled` is of no target and has its hash. Throws
/// CompileError where refusalOf() has a reason.
SFG_HOST_API ShaderInterface interfaceFor(const ShaderInterface& assembled, ShaderTarget target,
                                          const CompileOptions& options = {});

/// As JSON, indented, with a line feed at its end.
SFG_HOST_API std::string writeInterfaceJson(const ShaderInterface& shader);

/// The JSON Schema (draft 2020-12) of what that writes, in the same form.
SFG_HOST_API std::string interfaceSchemaJson();

/// What a value of a shader shall be: as many numbers as it has components, rows of a matrix behind one
/// another, elements of an array too; booleans as 0 and 1.
struct ValueSetting {
  std::string name;  ///< "node.input", or the name that the member has in the shader; ".part" for structures
  std::vector<double> numbers;
};

/// Reads "name=1,2,3", "name=true": the name ends at the last equals sign. Throws PackError.
SFG_HOST_API ValueSetting parseSetting(const std::string& text);

/// The buffer of that name; lives as long as the interface. Throws PackError when there is none.
SFG_HOST_API const InterfaceBuffer& findBuffer(const ShaderInterface& shader, const std::string& name);

/// The bytes of a constant buffer, little-endian as every graphics API has them: what each value starts with,
/// zero where nothing is known, and then the settings in order. Nothing is compiled, and the bytes are the
/// same for every target. Throws PackError for a name that no value of the buffer has or two have, a wrong
/// count of numbers, a number that its type cannot hold, and a buffer that is no constant buffer or not
/// complete.
SFG_HOST_API std::vector<std::uint8_t> packBuffer(const InterfaceBuffer& buffer,
                                                  const std::vector<ValueSetting>& settings);

}  // namespace TolmSDK::Graphics::sfg::host
