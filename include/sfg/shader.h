#pragma once

// A finished shader as a host keeps it.

#include <cstddef>

#include "sfg/export.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg {

/// A plain holder that the host fills: complete text, uniform names in order, state variables used.
class SFG_API AShader {
public:
  AShader();
  virtual ~AShader();

  virtual WString& getCompleteShader() { return completeShader_; }
  virtual const WString& getCompleteShader() const { return completeShader_; }
  /// Duplicates are kept.
  virtual void addUniform(const WString& name) { uniformNames_.push_back(name); }
  virtual std::size_t getNumUniforms() const { return uniformNames_.size(); }
  /// `index` must be below getNumUniforms().
  virtual const WString& getUniformName(std::size_t index) const { return uniformNames_[index]; }
  virtual Set<UString>& getStateVariables() { return stateVariables_; }
  virtual const Set<UString>& getStateVariables() const { return stateVariables_; }

private:
  WString completeShader_;
  Array<WString> uniformNames_;
  Set<UString> stateVariables_;
};

}  // namespace TolmSDK::Graphics::sfg
