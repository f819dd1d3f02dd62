#pragma once

// Who wants to know where the text of a result comes from.

#include <cstddef>
#include <span>
#include <string_view>

#include "sfg/export.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class FragmentProfileInstance;

/// A symbol, or text between symbols, that was appended to the predefines of a result: which characters of
/// the code given to the result became which characters of the predefines.
struct WrittenSymbol {
  std::size_t codeBegin = 0;
  std::size_t codeEnd = 0;
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Is told, while a collapse writes, what it writes of which instance, in the order of the texts. Set before
/// the collapse begins; outlives it. Views and instances are valid during the call only. Changes nothing: the
/// result is the same with an observer and without one. What it throws passes through the collapse.
class SFG_API ICollapseObserver {
public:
  virtual ~ICollapseObserver();

  /// The profile's predefines. `code` is what they became with the instance's own names; `written` is empty
  /// when the result holds all of it already.
  virtual void onPredefines(const FragmentProfileInstance& instance, std::wstring_view code,
                            std::span<const WrittenSymbol> written) = 0;
  /// The same for the definition of the instance's function, whose name is the final one by now.
  virtual void onDefinition(const FragmentProfileInstance& instance, std::wstring_view code,
                            std::span<const WrittenSymbol> written) = 0;
  /// A call with these values. `bodyLength` is how long the body of the result is with the call's text in
  /// it, or, when the text goes somewhere else, without. The text of an inline expression is empty: the
  /// instance's output is then the expression.
  virtual void onCall(const FragmentProfileInstance& instance, const Array<WString>& inputValues,
                      std::wstring_view text, std::size_t bodyLength) = 0;
};

}  // namespace TolmSDK::Graphics::sfg
