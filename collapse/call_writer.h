#pragma once

// The texts that evaluated fragments write.

#include <cstddef>
#include <memory>

#include "sfg/fragment_instance.h"
#include "sfg/keyword_replace.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class AShaderCollapseContext;
struct ShaderCallText;

/// The uses of a shader function in the code of its caller, which its calls replace.
struct ShaderUses {
  Array<BuiltinFunction> calls;
  KeywordReplacePattern* pattern = nullptr;   // of the caller
  FragmentProfileInstance* caller = nullptr;  // null when only the pattern is known
};

/// Writes declarations, definitions and calls of instances whose inputs' values are known. It visits no other
/// instance. Each answers false when an instance cannot be written: a port that does not fit, a writer that
/// fails.
class CallWriter {
public:
  explicit CallWriter(AShaderCollapseContext& context) : context_(context) {}

  bool declareOutputs(FragmentInstance& instance);
  /// Gives a name to every value that is empty.
  bool declareOutputs(FragmentInstance& instance, Array<WString>& values);

  // The value of an input, into an empty text: an output of the evaluated instance that feeds it, what stands
  // for a source that the code calls, or what stands for an input that no fragment feeds.
  bool writeOutputOf(WString& value, const FragmentInstance& source, std::size_t output);
  bool writeCalledInput(WString& value, const FragmentInstance& instance, std::size_t input);
  bool writeOpenInput(WString& value, const FragmentInstance& instance, std::size_t input);

  /// Requirements, definition and call, with the instance's own names for the outputs or with others.
  bool write(FragmentInstance& instance, const Array<WString>& inputs);
  bool write(FragmentInstance& instance, const Array<WString>& inputs, const Array<WString>& outputs);

  /// Requirements, definition and calls of a shader function. Its inputs are handed over through the state:
  /// their values become the names they have there.
  bool writeShaderFunction(FragmentInstance& instance, Array<WString>& inputs, const ShaderUses& uses);

private:
  bool writeDefinition(FragmentInstance& instance, FragmentProfileInstance& active, std::size_t inputs);
  bool writeCall(FragmentProfileInstance& active, const Array<WString>& inputs,
                 const Array<WString>& outputs);
  void allocateShaderInputs(const FragmentInstance& instance, Array<WString>& inputs);
  void writeShaderCalls(FragmentProfileInstance& active, const Array<WString>& inputs,
                        const ShaderUses& uses);
  bool writeShaderCall(ShaderCallText& out, FragmentProfileInstance& active, Array<WString> inputs,
                       Array<WString> outputs, const BuiltinFunction& use);
  WString& body() const;

  AShaderCollapseContext& context_;
  Array<WString> outputNames_;  // texts that serve one call after another
};

}  // namespace TolmSDK::Graphics::sfg
