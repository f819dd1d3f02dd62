#pragma once

// One output text to which many calls contribute symbols, each written once and clashing names renamed: as a
// plain walk over families and rings.
//
// The keyed symbols of one name in one call are a family. Families whose texts hold one another's names,
// directly or through others, are a ring. A ring is written as a whole, or skipped as a whole because an
// earlier call wrote the same.

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/model/model_text.h"

namespace TolmSDK::Graphics::sfg::model {

class Accumulator {
public:
  /// `definition`: name of the function whose calls of functions written by earlier calls keep their names;
  /// empty for none. `renames` is in force for the call and takes the rules that it adds.
  void append(std::wstring& out, const std::vector<SymbolInstance>& symbols, const Snippet& snippet,
              const Pattern& pattern, Pattern& renames, const std::wstring& definition);

  /// The name last used for a name, or the name itself.
  std::wstring rename(const std::wstring& name) const;

private:
  struct Family {
    std::wstring name;
    std::vector<const SymbolInstance*> symbols;
  };
  using Ring = std::vector<std::size_t>;  ///< indexes of families, in the order of their first symbols
  struct Key {
    std::vector<std::vector<std::wstring>> families;
    std::vector<Rule> rules;
    friend auto operator<=>(const Key&, const Key&) = default;
  };
  /// What becomes of the families of one call.
  struct Call {
    const Snippet& snippet;
    std::vector<Family> families;
    std::vector<std::vector<bool>> holds;       ///< [a][b]: a text of family a holds the name of family b
    std::map<std::wstring, std::wstring> used;  ///< by name
    std::set<std::wstring> given;
    std::map<Key, std::vector<std::wstring>> written;
    std::set<const SymbolInstance*> skipped;
  };

  static std::vector<Family> collectFamilies(const std::vector<SymbolInstance>& symbols);
  static std::vector<std::vector<bool>> findHeldNames(const Snippet& snippet,
                                                      const std::vector<Family>& families);
  static std::vector<Ring> findRings(const std::vector<std::vector<bool>>& holds);
  static Key makeKey(const Call& call, const Ring& ring, const Pattern& renames);
  void decide(Call& call, const Ring& ring, Pattern& renames);
  std::wstring makeName(const Call& call, const std::wstring& name);
  std::vector<Span> findKeptCalls(const Snippet& snippet, const Symbol& symbol) const;
  void remember(const Call& call);

  std::size_t counter_ = 0;
  std::map<Key, std::vector<std::wstring>> written_;
  std::set<std::wstring> taken_;
  std::set<std::wstring> functions_;  ///< names under which functions were written
  std::map<std::wstring, std::wstring> renames_;
};

}  // namespace TolmSDK::Graphics::sfg::model
