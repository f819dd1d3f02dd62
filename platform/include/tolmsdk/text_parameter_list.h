#pragma once

// Parameter lists of functions as text.

#include <cstddef>
#include <string_view>

#include "tolmsdk/export.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics {

/// Inputs and outputs of a function, each a type text and a name text, in the order added. Indexes are not
/// checked.
class ITextParameterList : public IRefObject {
public:
  virtual std::size_t getNumInputs() const = 0;
  virtual const WString& getInputType(std::size_t index) const = 0;
  virtual const WString& getInputName(std::size_t index) const = 0;
  virtual std::size_t getNumOutputs() const = 0;
  virtual const WString& getOutputType(std::size_t index) const = 0;
  virtual const WString& getOutputName(std::size_t index) const = 0;

  virtual void addInput(std::wstring_view type, std::wstring_view name) = 0;
  virtual void addOutput(std::wstring_view type, std::wstring_view name) = 0;
  virtual void clear() = 0;

  /// Replaces the list by a comma-separated list of parameters as a function prototype has it: qualifiers
  /// `in`, `out`, `inout`, `const`, `uniform`; type words with template arguments; the name; optionally `:`
  /// and a semantic, which is dropped. Comments are skipped. `out` makes an output, `inout T` an input of the
  /// type text `inout T`. Blank text is the empty list. A missing type or name, an array suffix, a default
  /// value or a name given twice answers false and leaves the list empty.
  virtual bool parseParameters(std::wstring_view text) = 0;

  /// Appends all inputs, then all outputs, each as a line feed, the prefix and the item, with a comma
  /// directly behind every item but the last. An item in declaration form is type, blank, name (the name
  /// alone when the type is empty), outputs preceded by "out "; in call form the name alone. An empty list
  /// writes nothing.
  virtual void writeParameters(WString& out, std::wstring_view prefix, bool declaration) const = 0;
};

/// The one implementation. Copyable: a copy has its own count of zero.
class TOLMSDK_API ATextParameterList : public RefCounted<ITextParameterList> {
public:
  ATextParameterList();
  ATextParameterList(const ATextParameterList&);
  explicit ATextParameterList(const ITextParameterList& other);
  ATextParameterList& operator=(const ATextParameterList&);
  ~ATextParameterList() override;

  std::size_t getNumInputs() const override { return inputs_.size(); }
  const WString& getInputType(std::size_t index) const override { return inputs_[index].type.str(); }
  const WString& getInputName(std::size_t index) const override { return inputs_[index].name; }
  std::size_t getNumOutputs() const override { return outputs_.size(); }
  const WString& getOutputType(std::size_t index) const override { return outputs_[index].type.str(); }
  const WString& getOutputName(std::size_t index) const override { return outputs_[index].name; }

  void addInput(std::wstring_view type, std::wstring_view name) override;
  void addOutput(std::wstring_view type, std::wstring_view name) override;
  void clear() override;
  bool parseParameters(std::wstring_view text) override;
  void writeParameters(WString& out, std::wstring_view prefix, bool declaration) const override;

private:
  struct Item {
    UString type;  // few texts, in many lists
    WString name;
  };
  Array<Item> inputs_;
  Array<Item> outputs_;
};

}  // namespace TolmSDK::Graphics
