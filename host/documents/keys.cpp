#include "host/documents/keys.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::string_view kModes[] = {"function", "inline", "metaSL"};

constexpr Key kDescription = {"description", Holds::text, "Says in a sentence what it is for."};
constexpr Key kLabel = {"label", Holds::text, "Names it in user interfaces."};
constexpr Key kMin = {"min", Holds::value, "Is the least value that an interface offers."};
constexpr Key kMax = {"max", Holds::value, "Is the greatest value that an interface offers."};
constexpr Key kStep = {"step", Holds::value, "Is the least change that an interface offers."};
constexpr Key kKind = {"kind", Holds::word, "Says what the numbers stand for.", false, nullptr, kPortKinds};
constexpr Key kSpace = {
    "space", Holds::word, "Says in which space a vector is, or how a colour or texture is coded.",
    false,   nullptr,     kPortSpaces};

constexpr Key kPortKeys[] = {
    kDescription,
    kLabel,
    {"value", Holds::value, "Is what an input takes that a node neither wires nor gives."},
    kMin,
    kMax,
    kStep,
    kKind,
    kSpace};
constexpr KeyTable kPort = {"a port", "What a port says of itself.", kPortKeys};

constexpr Key kName = {"name", Holds::name, "Is the name in code.", true};
constexpr Key kType = {"type", Holds::type, "Is the type: `float3`, `sampler2D`, `struct`.", true};
constexpr Key kStruct = {"struct", Holds::text, "Names the structure of the type `struct`."};
constexpr Key kParameterValue = {"value", Holds::value, "Is the default value."};
constexpr Key kConstant = {"constant", Holds::boolean, "Writes the value into the code."};
constexpr Key kSemantic = {"semantic", Holds::text, "Says that the host binds it, and to what."};

constexpr Key kParameterKeys[] = {kName,  kType, kStruct, kParameterValue, kConstant, kSemantic, kDescription,
                                  kLabel, kMin,  kMax,    kStep,           kKind,     kSpace};
constexpr KeyTable kParameter = {"a parameter", "An input, output or uniform.", kParameterKeys};

constexpr Key kInterfaceKeys[] = {
    {"inputs", Holds::objects, "Are the inputs, in the order of the code.", false, &kParameter},
    {"outputs", Holds::objects, "Are the outputs, in the order of the code.", false, &kParameter}};
constexpr KeyTable kInterface = {"an interface", "Ports in place of those of the code.", kInterfaceKeys};

// Graphs

constexpr Key kNode = {"node", Holds::name, "Names the node whose output it takes."};
constexpr Key kOutput = {"output", Holds::name, "Names the output of that node; without it the first."};

constexpr Key kGraphOutputKeys[] = {kName,     kType, kStruct, kParameterValue, kConstant,
                                    kSemantic, kNode, kOutput, kDescription,    kLabel,
                                    kMin,      kMax,  kStep,   kKind,           kSpace};
constexpr KeyTable kGraphOutput = {"a graph output", "An output of the graph and where it comes from.",
                                   kGraphOutputKeys};

constexpr Key kNodeInputKeys[] = {
    kNode,
    kOutput,
    {"graphInput", Holds::name, "Names the input of the graph that it takes."},
    {"value", Holds::value, "Is the default value of the uniform that the input becomes."},
    {"constant", Holds::value, "Is a value that is written into the code."}};
constexpr std::string_view kSources[] = {"node", "graphInput", "value", "constant"};
constexpr KeyTable kNodeInput = {"an input of a node", "What an input takes: exactly one source.",
                                 kNodeInputKeys, kSources};

constexpr Key kNodeKeys[] = {
    {"name", Holds::name, "Is the name by which wires find the node.", true},
    {"fragment", Holds::name, "Names the library fragment that the node uses.", true},
    {"inputs", Holds::namedObjects, "Says by name what each input takes; the others are uniforms.", false,
     &kNodeInput},
    {"interface", Holds::object, "Gives the ports; an inline fragment needs it.", false, &kInterface}};
constexpr KeyTable kNodeTable = {"a node", "A use of a library fragment.", kNodeKeys};

constexpr Key kGraphKeys[] = {
    kDescription,
    {"inputs", Holds::objects, "Are the inputs of the graph.", false, &kParameter},
    {"outputs", Holds::objects, "Are the outputs of the graph and where they come from.", false,
     &kGraphOutput},
    {"uniforms", Holds::objects, "Are uniforms that no input stands for.", false, &kParameter},
    {"nodes", Holds::objects, "Are the uses of fragments.", false, &kNodeTable},
    {"preprocess", Holds::names, "Names fragments that run before the graph."},
    {"postprocess", Holds::names, "Names fragments that take the outputs of the graph, one after another."},
    {kSchemaKey, Holds::text, "Names the schema, for editors."}};
constexpr KeyTable kGraph = {"a graph", "Fragments wired together.", kGraphKeys};

// Environments

constexpr Key kLightKeys[] = {
    {"name", Holds::name, "Is the name of the light; without it `light0`, `light1` and so on."},
    {"fragment", Holds::name, "Names the library fragment of the light.", true},
    {"profile", Holds::name, "Names the profile that surfaces use for the light; without it `default`."}};
constexpr KeyTable kLight = {"a light", "A light of the scene.", kLightKeys};

constexpr Key kEnvironmentKeys[] = {
    kDescription,
    {"lights", Holds::objects, "Are the lights of the scene.", false, &kLight},
    {"output", Holds::name, "Names the fragment that takes the outputs of every surface."},
    {"image", Holds::name,
     "Names the picture around the scene for who renders it: a file beside the document, `studio` or `sky`."},
    {kSchemaKey, Holds::text, "Names the schema, for editors."}};
constexpr KeyTable kEnvironment = {"an environment", "What surfaces are seen under.", kEnvironmentKeys};

// Libraries

constexpr Key kProfileName = {"name", Holds::text, "Is the profile's name; without it `default`."};
constexpr Key kLanguage = {"language", Holds::names, "Names the languages of the code.", true};
constexpr Key kLod = {"lod", Holds::level, "Is the level of detail; without it 100."};
constexpr Key kMode = {
    "mode",
    Holds::word,
    "Says whether the code is a function, an expression (`inline`) or translated `metaSL`.",
    false,
    nullptr,
    kModes};
constexpr Key kIncludes = {"includes", Holds::names, "Names the include files that the code needs."};
constexpr Key kPredefine = {"predefine", Holds::names,
                            "Are lines in front of the code: structures, helpers."};
constexpr Key kImplementation = {"implementation", Holds::names, "Are the lines of the code.", true};
constexpr Key kStateVariables = {"stateVariables", Holds::names,
                                 "Names the host's own state that the code reads."};

constexpr Key kProfileKeys[] = {kProfileName, kLanguage,       kLod,           kMode, kIncludes,
                                kPredefine,   kImplementation, kStateVariables};
constexpr KeyTable kProfile = {"a profile", "One implementation of a fragment.", kProfileKeys};

constexpr Key kFragmentKeys[] = {
    kDescription,
    {"source", Holds::text, "Says where the method comes from."},
    {"ports", Holds::namedTexts, "Says of each input and output by name what it is.", false, &kPort},
    {"uniforms", Holds::objects, "Are uniforms that every profile reads.", false, &kParameter},
    {"interface", Holds::object, "Shows the ports that nodes of an inline fragment give.", false,
     &kInterface},
    {"profiles", Holds::objects,
     "Are the implementations, for languages, lights and levels of detail; without it the fragment is its "
     "one "
     "profile.",
     false, &kProfile},
    kProfileName,
    kLanguage,
    kLod,
    kMode,
    kIncludes,
    kPredefine,
    kImplementation,
    kStateVariables};
constexpr KeyTable kFragment = {
    "a fragment", "A piece of shader code with inputs and outputs.", kFragmentKeys, {}, "profiles"};

// Manifests

constexpr Key kConstantsKeys[] = {
    {"name", Holds::name, "Is what file names call these constants.", true},
    {"values", Holds::namedValues, "Gives by `node.input` the values that are written into the code.", true}};
constexpr KeyTable kConstants = {
    "a set of constants", "Values of node inputs, in place of what the graphs give them.", kConstantsKeys};

constexpr Key kShadersKeys[] = {
    kDescription,
    {"graphs", Holds::names,
     "Names graphs: files, patterns (`*`, `?`, `**`), or folders with all graphs in them.", true},
    {"environments", Holds::names, "Names environments; an empty text stands for none."},
    {"constants", Holds::objects, "Are sets of values, each of which makes shaders of its own.", false,
     &kConstants},
    {"surfaceLods", Holds::numbers, "Are levels of detail of surface fragments; without it 100."},
    {"lightLods", Holds::numbers, "Are levels of detail of light fragments; without it 100."},
    {"stages", Holds::words, "Are the stages; without it `pixel`.", false, nullptr, kStageWords},
    {"targets", Holds::words,
     "Are what shaders are compiled to; without it `spirv`. `assembled` is HLSL that is not compiled.", false,
     nullptr, kTargetWords},
    {"tool", Holds::word, "Is what collapses the graphs; without it `default`.", false, nullptr, kToolWords},
    {"optimize", Holds::word, "Is what modules are optimised for; without it `speed`.", false, nullptr,
     kOptimizationWords},
    {"debug", Holds::boolean, "Keeps names and lines in modules of the target `spirv`."},
    {"uniformNames", Holds::word, "Is how uniforms are named; without it `readable`.", false, nullptr,
     kUniformNameWords},
    {"mesh", Holds::words, "Is what vertices have, for the stage `vertex`; without it everything.", false,
     nullptr, kMeshWords},
    {"reflection", Holds::boolean, "Also writes beside each shader what it takes and gives."},
    {"name", Holds::name,
     "Is the pattern of the outputs' names: `{graph}.{stage}.{extension}`, for example."}};
constexpr KeyTable kShaders = {"a set of shaders",
                               "Graphs, and in which variants they are made: every environment with every "
                               "set of constants, level, stage and target.",
                               kShadersKeys};

constexpr Key kManifestKeys[] = {
    kDescription,
    {"libraries", Holds::names, "Names folders of fragment libraries, later ones before earlier ones."},
    {"includes", Holds::names, "Names folders of include files; without it those of the libraries."},
    {"output", Holds::name, "Names the folder of the results; without it `shaders`."},
    {"shaders", Holds::objects, "Are the shaders to make.", true, &kShaders},
    {kSchemaKey, Holds::text, "Names the schema, for editors."}};
constexpr KeyTable kManifest = {
    "a manifest", "Shaders that are made together. Paths are relative to its file.", kManifestKeys};

}  // namespace

const Key* KeyTable::find(std::string_view name) const {
  const auto found = std::find_if(keys.begin(), keys.end(), [&](const Key& key) { return key.name == name; });
  return found != keys.end() ? &*found : nullptr;
}

const KeyTable& graphKeys() noexcept { return kGraph; }
const KeyTable& nodeInputKeys() noexcept { return kNodeInput; }
const KeyTable& environmentKeys() noexcept { return kEnvironment; }
const KeyTable& manifestKeys() noexcept { return kManifest; }
const KeyTable& fragmentKeys() noexcept { return kFragment; }
const KeyTable& profileKeys() noexcept { return kProfile; }

}  // namespace TolmSDK::Graphics::sfg::host
