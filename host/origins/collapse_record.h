#pragma once

// What a collapse wrote of which instance.

#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "sfg/collapse_observer.h"
#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// Keeps what an observer is told. Fragments and profiles are those of the graph, which outlives it.
class CollapseRecord : public ICollapseObserver {
public:
  /// A fragment under one of its profiles.
  struct Writer {
    const AShaderFragment* fragment = nullptr;
    const AShaderFragmentProfile* profile = nullptr;
    std::size_t profileIndex = kNotFound;
    bool isInline = false;
    Array<WString> outputs;  ///< names of its variables
  };
  /// Code that was given to the result, and the symbols of it that the result took.
  struct Code {
    std::size_t writer = 0;
    bool isDefinition = false;
    WString text;
    Array<WrittenSymbol> symbols;
    WString functionName;  ///< of a definition
  };
  struct Call {
    std::size_t writer = 0;
    std::size_t place = kNotFound;  ///< in the body
    WString text;
    Array<WString> inputs;
  };
  struct Expression {
    std::size_t writer = 0;
    Array<WString> inputs;
  };

  void onPredefines(const FragmentProfileInstance& instance, std::wstring_view code,
                    std::span<const WrittenSymbol> written) override;
  void onDefinition(const FragmentProfileInstance& instance, std::wstring_view code,
                    std::span<const WrittenSymbol> written) override;
  void onCall(const FragmentProfileInstance& instance, const Array<WString>& inputValues,
              std::wstring_view text, std::size_t bodyLength) override;

  /// Drops calls that did not go into this body; the others are in order then.
  void placeCalls(std::wstring_view body);

  const std::vector<Writer>& writers() const noexcept { return writers_; }
  const std::vector<Code>& codes() const noexcept { return codes_; }
  const std::vector<Call>& calls() const noexcept { return calls_; }
  /// The last expression of that text; null when no instance has one.
  const Expression* findExpression(const WString& text) const;
  /// The writers that call the function, each once.
  const std::vector<std::size_t>& callersOf(const WString& function) const;
  /// The writers that have the profile.
  const std::vector<std::size_t>& usersOf(const AShaderFragmentProfile* profile) const;

private:
  std::size_t writerOf(const FragmentProfileInstance& instance);

  struct HashText {
    std::size_t operator()(const WString& text) const noexcept {
      return std::hash<std::wstring_view>()(text);
    }
  };

  std::vector<Writer> writers_;
  std::map<std::pair<const void*, const void*>, std::size_t> writerNumbers_;
  std::vector<Code> codes_;
  std::vector<Call> calls_;
  std::unordered_map<WString, Expression, HashText> expressions_;
  std::unordered_map<WString, std::vector<std::size_t>, HashText> callers_;
  std::map<const void*, std::vector<std::size_t>> users_;
};

}  // namespace TolmSDK::Graphics::sfg::host
