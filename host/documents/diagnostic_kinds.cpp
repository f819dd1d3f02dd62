#include "host/documents/diagnostic_kinds.h"

#include <algorithm>
#include <array>

#include "sfg/host/diagnostic.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr auto kCount = static_cast<std::size_t>(Finding::count);

struct KindRow {
  Finding kind;
  DiagnosticKind shown;
};

constexpr KindRow kRows[] = {
    {Finding::unreadableFile, {"unreadable-file", "a file is missing or cannot be read"}},
    {Finding::malformedJson, {"malformed-json", "a document is no JSON"}},
    {Finding::wrongKind,
     {"wrong-kind", "a key holds something of another kind, such as a text in place of an array"}},
    {Finding::missingKey, {"missing-key", "a key that is required is missing"}},
    {Finding::unknownKey, {"unknown-key", "a key that no reader knows"}},
    {Finding::repeatedKey, {"repeated-key", "a key stands twice in one object; the last one counts"}},
    {Finding::ignoredKey, {"ignored-key", "a key has no effect where it stands"}},
    {Finding::unknownWord, {"unknown-word", "a text is none of the few that its key takes"}},
    {Finding::unknownType, {"unknown-type", "a text names no type"}},
    {Finding::badName, {"bad-name", "a name cannot be one in shader text"}},
    {Finding::repeatedName, {"repeated-name", "two things of one kind have the same name"}},
    {Finding::wrongValue, {"wrong-value", "a value does not fit its type"}},
    {Finding::oneSource, {"one-source", "an input of a node holds no source, or several"}},
    {Finding::unknownNode, {"unknown-node", "a wire names a node that is not there"}},
    {Finding::unknownPort,
     {"unknown-port", "a wire, value or description names an input or output that is not there"}},
    {Finding::unknownGraphInput, {"unknown-graph-input", "a wire names a graph input that is not there"}},
    {Finding::unknownFragment, {"unknown-fragment", "a fragment that no library has"}},
    {Finding::outputWithoutNode,
     {"output-without-node", "an `output` without the `node` whose output it is"}},
    {Finding::tooManyLights, {"too-many-lights", "more lights than code can be written for"}},
    {Finding::malformedXml, {"malformed-xml", "a document is no XML"}},
    {Finding::unknownMaterial, {"unknown-material", "a document has no such material, or several"}},
    {Finding::cannotImport, {"cannot-import", "a document holds what cannot be brought"}},
    {Finding::unknownFolder, {"unknown-folder", "a folder is missing, or is a file"}},
    {Finding::unreadableFolder, {"unreadable-folder", "a folder cannot be read"}},
    {Finding::unknownLanguage, {"unknown-language", "a language that is not known"}},
    {Finding::notLoaded, {"not-loaded", "a fragment cannot be loaded"}},
    {Finding::repeatedFragment,
     {"repeated-fragment", "a fragment is defined twice in one folder; the last one counts"}},
    {Finding::hiddenFragment,
     {"hidden-fragment", "a fragment of an earlier folder is replaced by one of a later folder"}},
    {Finding::unknownPortType,
     {"unknown-port-type",
      "a parameter of a fragment's code is of a type that no language knows and nothing declares"}},
    {Finding::missingInclude, {"missing-include", "an include file is in no include folder"}},
    {Finding::emptyInclude, {"empty-include", "an include file holds nothing"}},
    {Finding::unreadableInclude, {"unreadable-include", "an include file cannot be read"}},
    {Finding::wireType, {"wire-type", "a wire leads from one type to another that does not take it"}},
    {Finding::lightType, {"light-type", "a light gives another type than surfaces read"}},
    {Finding::droppedComponents, {"dropped-components", "a wire leads from a vector to a shorter one"}},
    {Finding::calledExpression,
     {"called-expression", "an inline expression is wired to an input that is called as a function"}},
    {Finding::interfaceMismatch,
     {"interface-mismatch", "the `interface` of a node contradicts the code of its fragment"}},
    {Finding::shaderArgument,
     {"shader-argument", "an argument of `sfg_shader` does not arrive as it is written"}},
    {Finding::generator, {"generator", "a message of the generator, as it stands"}},
    {Finding::noResult, {"no-result", "an output of the graph cannot be evaluated"}},
    {Finding::loop, {"loop", "wires close a loop"}},
    {Finding::unwiredOutput, {"unwired-output", "an output of the graph is wired to nothing"}},
    {Finding::noOutput, {"no-output", "a graph has no outputs"}},
    {Finding::preprocessInput, {"preprocess-input", "a pre-process fragment has inputs"}},
    {Finding::chainMismatch,
     {"chain-mismatch", "the inputs of a post-process or output fragment do not fit what feeds them"}},
    {Finding::severalSources, {"several-sources", "outputs of the default tool come from several nodes"}},
    {Finding::portCount, {"port-count", "a node has more or fewer ports than its fragment's code"}},
    {Finding::noProfile, {"no-profile", "a fragment has no profile for what it is used for"}},
    {Finding::lightProfile, {"light-profile", "a light asks for a profile that cannot be had"}},
    {Finding::collapsePlace, {"collapse-place", "where a collapse was refused"}},
    {Finding::unlitBetweenLit, {"unlit-between-lit", "a node that is not lit stands between lit ones"}},
    {Finding::litFeedsLit, {"lit-feeds-lit", "a lit node feeds an output and another lit node"}},
    {Finding::structureSummed, {"structure-summed", "a structure is summed over the lights"}},
    {Finding::litWithoutLight, {"lit-without-light", "a lit node, and no light"}},
    {Finding::undeclaredLightUniform,
     {"undeclared-light-uniform", "a uniform of a light that nobody declares"}},
    {Finding::unofferedProfile,
     {"unoffered-profile", "a light asks for a profile that no fragment of the graph has"}},
    {Finding::undeclaredGraphInput,
     {"undeclared-graph-input", "a graph input that the light-loop function has no parameter for"}},
    {Finding::inoutWithoutVariable,
     {"inout-without-variable", "an `inout` input is wired to nothing that could be written"}},
    {Finding::unconnectedInput,
     {"unconnected-input", "an input is wired to nothing, and nothing gives it a value"}},
    {Finding::nameInsideName, {"name-inside-name", "a name occurs inside another, which is changed with it"}},
    {Finding::repeatedStatement,
     {"repeated-statement", "a statement of the predefines is written more than once"}},
    {Finding::idlePostprocess,
     {"idle-postprocess", "a post-process fragment that only the light loop evaluates"}},
    {Finding::encodedTwice,
     {"encoded-twice", "colours that are encoded for the screen are encoded once more"}},
    {Finding::unassignedOutput,
     {"unassigned-output", "a fragment does not assign one of its outputs on every path"}},
    {Finding::unreadInput, {"unread-input", "a fragment never reads one of its inputs"}},
    {Finding::unusedUniform, {"unused-uniform", "no code of a fragment uses one of its uniforms"}},
    {Finding::twoStructures, {"two-structures", "two structures of one name have different texts"}},
    {Finding::unusedInclude, {"unused-include", "an include file is named, but nothing of it is used"}},
    {Finding::unreachableProfile, {"unreachable-profile", "a profile that can never be chosen"}},
    {Finding::repeatedLevel, {"repeated-level", "a level of detail has the code of another one"}},
    {Finding::unusedGraphInput, {"unused-graph-input", "nothing is wired to an input of the graph"}},
    {Finding::unusedNode, {"unused-node", "no output of the graph depends on a node"}},
    {Finding::incompleteShader, {"incomplete-shader", "a result cannot become a complete shader"}},
    {Finding::compileError, {"compile-error", "a compiler refused the shader"}},
    {Finding::codeOrigin, {"code-origin", "where refused code comes from"}},
    {Finding::notCompiled, {"not-compiled", "code that a check could not compile, and why"}},
    {Finding::badSetting, {"bad-setting", "a value cannot be set in a buffer"}},
    {Finding::wrongUsage, {"wrong-usage", "a command, or a function of the library, is used wrongly"}},
    {Finding::cannotWrite, {"cannot-write", "a result cannot be written"}},
    {Finding::cacheTrouble, {"cache-trouble", "the cache of builds, or an entry of it, cannot be used"}},
    {Finding::foldersRead, {"folders-read", "which folders are read"}},
    {Finding::fileWritten, {"file-written", "a file was written"}},
    {Finding::outOfMemory, {"out-of-memory", "there is not enough memory"}},
    {Finding::failure, {"failure", "something failed that nothing better is known of"}},
};
static_assert(std::size(kRows) == kCount);

constexpr auto kShown = [] {
  std::array<DiagnosticKind, kCount> shown{};
  for (const KindRow& row : kRows) shown[static_cast<std::size_t>(row.kind)] = row.shown;
  return shown;
}();
static_assert(std::none_of(kShown.begin(), kShown.end(),
                           [](const DiagnosticKind& kind) { return kind.identifier.empty(); }));

}  // namespace

std::span<const DiagnosticKind> diagnosticKinds() noexcept { return kShown; }

std::string_view identifierOf(Finding kind) noexcept {
  return kShown[static_cast<std::size_t>(kind)].identifier;
}

}  // namespace TolmSDK::Graphics::sfg::host
