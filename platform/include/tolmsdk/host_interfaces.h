#pragma once

// What the generator asks of its host. A host implements these six interfaces; all are counted objects, and
// all operations the generator calls are const. Several collapses may call one object at the same time.

#include <cstddef>

#include "tolmsdk/export.h"
#include "tolmsdk/parameter.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"
#include "tolmsdk/value.h"

namespace TolmSDK::Graphics::sfg {

class IShaderFragment;
class IShaderFragmentProfile;

/// A shading language: names of types, texts of values, state variables, and the fragments written in it.
class ILanguageTraits : public IRefObject {
public:
  /// The language's name, as profiles list it: "dx11".
  virtual const UString& getLanguageString() const = 0;
  /// The language's name of a type; empty for one it does not have. A structure is written by its own name,
  /// which the caller knows.
  virtual const WString& getTypeName(const TypeID& type) const = 0;
  /// The type of a type text; TypeID_nil for a text that is none of the language's own types (a structure's
  /// name). A leading "inout " is ignored.
  virtual TypeID getTypeID(const WString& typeText) const = 0;
  /// The value as the language writes it; empty for types without text (samplers, structures).
  virtual WString getValueText(const AValue& value) const = 0;
  /// The name of the parameter that carries a state variable; empty when the language does not know the
  /// variable.
  virtual const WString& getStateVariableParameterName(const UString& stateVariable) const = 0;
  /// The type text of that parameter, without "inout ".
  virtual const WString& getStateVariableTypeName(const UString& stateVariable) const = 0;
  /// The library fragment of that name, or null. Adds no reference.
  virtual const IShaderFragment* findFragment(const WString& name) const = 0;
};

/// The scene a surface is shaded in.
class IShadingEnvironment : public IRefObject {
public:
  virtual std::size_t getNumLights() const = 0;
  /// The light's fragment. Adds no reference; null is refused by the collapse.
  virtual const IShaderFragment* getLight(std::size_t index) const = 0;
  /// The fragment that consumes the graph's outputs, or null.
  virtual const IShaderFragment* getOutputFragment() const = 0;
};

/// Choices of one collapse.
class IShaderOptions : public IRefObject {
public:
  /// The language to generate: must be the traits' own.
  virtual const UString& getLanguage() const = 0;
  virtual float getSurfaceLOD() const = 0;
  virtual float getLightLOD() const = 0;
  /// Fills `value` with the constant of a parameter that is marked constant; false when there is none.
  virtual bool getConstValue(AValue& value, const AParameter* parameter) const = 0;
  /// The light profile to use for a light: only its name is read. Adds no reference; may be null ("default").
  virtual const IShaderFragmentProfile* getLightProfile(const IShaderFragment* light) const = 0;
};

/// Flags of a host for a graph. The generator stores them and asks nothing of them.
class IShaderFlags : public IRefObject {};

/// One node of the host's own graph.
class INodeAccessor : public IRefObject {
public:
  /// The library name of the fragment the node uses.
  virtual const wchar_t* getFragmentName() const = 0;
  virtual std::size_t getNumInputs() const = 0;
  virtual const AParameter* getInput(std::size_t index) const = 0;
  /// False when the input is not wired; otherwise sets the source node and its output. The source must be a
  /// node of the same graph.
  virtual bool getInputConnection(std::size_t index, const INodeAccessor*& source,
                                  std::size_t& output) const = 0;
  virtual std::size_t getNumOutputs() const = 0;
  virtual const AParameter* getOutput(std::size_t index) const = 0;
};

/// The host's own graph. Nodes are told apart by address.
class IGraphAccessor : public IRefObject {
public:
  virtual std::size_t getNumInputs() const = 0;
  virtual const AParameter* getInput(std::size_t index) const = 0;
  virtual std::size_t getNumOutputs() const = 0;
  virtual const AParameter* getOutput(std::size_t index) const = 0;
  /// False when the graph output is not wired; otherwise sets the source node and its output.
  virtual bool getOutputConnection(std::size_t index, const INodeAccessor*& source,
                                   std::size_t& output) const = 0;
  virtual std::size_t getNumNodes() const = 0;
  virtual const INodeAccessor* getNode(std::size_t index) const = 0;
};

}  // namespace TolmSDK::Graphics::sfg
