#pragma once

// The kinds of what a person is told, each with its identifier.

#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

/// In the order of diagnosticKinds().
enum class Finding {
  // Documents
  unreadableFile,
  malformedJson,
  wrongKind,
  missingKey,
  unknownKey,
  repeatedKey,
  ignoredKey,
  unknownWord,
  unknownType,
  badName,
  repeatedName,
  wrongValue,
  oneSource,
  unknownNode,
  unknownPort,
  unknownGraphInput,
  unknownFragment,
  outputWithoutNode,
  tooManyLights,
  // Documents of other systems
  malformedXml,
  unknownMaterial,
  cannotImport,
  // Libraries and include files
  unknownFolder,
  unreadableFolder,
  unknownLanguage,
  notLoaded,
  repeatedFragment,
  hiddenFragment,
  unknownPortType,
  missingInclude,
  emptyInclude,
  unreadableInclude,
  // Wires
  wireType,
  lightType,
  droppedComponents,
  calledExpression,
  interfaceMismatch,
  shaderArgument,
  // Refusals of the generator
  generator,
  noResult,
  loop,
  unwiredOutput,
  noOutput,
  preprocessInput,
  chainMismatch,
  severalSources,
  portCount,
  noProfile,
  lightProfile,
  collapsePlace,
  // Warnings
  unlitBetweenLit,
  litFeedsLit,
  structureSummed,
  litWithoutLight,
  undeclaredLightUniform,
  unofferedProfile,
  undeclaredGraphInput,
  inoutWithoutVariable,
  unconnectedInput,
  nameInsideName,
  repeatedStatement,
  idlePostprocess,
  encodedTwice,
  // Lints
  unassignedOutput,
  unreadInput,
  unusedUniform,
  twoStructures,
  unusedInclude,
  unreachableProfile,
  repeatedLevel,
  unusedGraphInput,
  unusedNode,
  // Complete shaders and compilers
  incompleteShader,
  compileError,
  codeOrigin,
  notCompiled,
  badSetting,
  // Commands
  wrongUsage,
  cannotWrite,
  cacheTrouble,
  foldersRead,
  fileWritten,
  outOfMemory,
  failure,
  count
};

/// "unknown-key"
std::string_view identifierOf(Finding kind) noexcept;

}  // namespace TolmSDK::Graphics::sfg::host
