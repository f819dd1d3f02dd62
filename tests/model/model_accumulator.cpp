#include "tests/model/model_accumulator.h"

#include <algorithm>
#include <functional>

namespace TolmSDK::Graphics::sfg::model {

void Accumulator::append(std::wstring& out, const std::vector<SymbolInstance>& symbols,
                         const Snippet& snippet, const Pattern& pattern, Pattern& renames,
                         const std::wstring& definition) {
  // Decide every ring, those first whose names a ring's texts hold.
  Call call{snippet, collectFamilies(symbols), {}, {}, {}, {}, {}};
  call.holds = findHeldNames(snippet, call.families);
  for (const Ring& ring : findRings(call.holds)) decide(call, ring, renames);

  // Write what is not skipped, in order, all with all of the call's rules.
  for (const SymbolInstance& instance : symbols) {
    const View text = snippet.view(*instance.symbol);
    if (instance.key.empty()) {
      out.append(text.text, text.length);
    } else if (!call.skipped.contains(&instance)) {
      Replacer replacer;
      replacer.add(pattern);
      replacer.add(instance.spans);
      replacer.add(renames);
      const bool isDefinition = instance.symbol->kind == SymbolKind::function &&
                                instance.symbol->name == definition && !definition.empty();
      if (isDefinition) replacer.protect(findKeptCalls(snippet, *instance.symbol));
      std::wstring written;
      replacer.appendAndReplace(written, text);
      out += written;
    }
  }
  remember(call);
}

std::wstring Accumulator::rename(const std::wstring& name) const {
  const auto found = renames_.find(name);
  return found != renames_.end() ? found->second : name;
}

std::vector<Accumulator::Family> Accumulator::collectFamilies(const std::vector<SymbolInstance>& symbols) {
  std::vector<Family> families;
  for (const SymbolInstance& instance : symbols) {
    if (instance.key.empty()) continue;
    const std::wstring& name = instance.symbol->name;
    const auto same = std::find_if(families.begin(), families.end(),
                                   [&](const Family& family) { return family.name == name; });
    // A symbol without a name is a family of its own.
    if (same == families.end() || name.empty()) {
      families.push_back({name, {&instance}});
    } else {
      same->symbols.push_back(&instance);
    }
  }
  return families;
}

std::vector<std::vector<bool>> Accumulator::findHeldNames(const Snippet& snippet,
                                                          const std::vector<Family>& families) {
  std::vector<std::vector<bool>> holds(families.size(), std::vector<bool>(families.size(), false));
  for (std::size_t a = 0; a < families.size(); ++a) {
    for (std::size_t b = 0; b < families.size(); ++b) {
      if (families[b].name.empty()) continue;
      for (const SymbolInstance* instance : families[a].symbols)
        if (find(snippet.view(*instance->symbol), families[b].name, 0) != kNone) holds[a][b] = true;
    }
  }
  return holds;
}

/// Tarjan's walk, in his own words: a family's number is the time of its visit, its low number the smallest
/// it reaches without leaving the stack.
std::vector<Accumulator::Ring> Accumulator::findRings(const std::vector<std::vector<bool>>& holds) {
  std::vector<Ring> rings;
  std::vector<std::size_t> number(holds.size(), kNone);
  std::vector<std::size_t> low(holds.size(), kNone);
  std::vector<std::size_t> stack;
  std::size_t time = 0;
  const auto isOpen = [&](std::size_t family) {
    return std::find(stack.begin(), stack.end(), family) != stack.end();
  };
  const std::function<void(std::size_t)> visit = [&](std::size_t family) {
    number[family] = low[family] = time++;
    stack.push_back(family);
    for (std::size_t next = 0; next < holds.size(); ++next) {
      if (!holds[family][next]) continue;
      if (number[next] == kNone) {
        visit(next);
        low[family] = std::min(low[family], low[next]);
      } else if (isOpen(next)) {
        low[family] = std::min(low[family], number[next]);
      }
    }
    if (low[family] != number[family]) return;
    const auto first = std::find(stack.begin(), stack.end(), family);
    Ring ring(first, stack.end());
    stack.erase(first, stack.end());
    std::sort(ring.begin(), ring.end());
    rings.push_back(ring);
  };
  for (std::size_t family = 0; family < holds.size(); ++family)
    if (number[family] == kNone) visit(family);
  return rings;
}

Accumulator::Key Accumulator::makeKey(const Call& call, const Ring& ring, const Pattern& renames) {
  Key key;
  std::set<std::wstring> names;
  for (const std::size_t family : ring) {
    key.families.emplace_back();
    names.insert(call.families[family].name);
    for (const SymbolInstance* instance : call.families[family].symbols)
      key.families.back().push_back(instance->key);
  }
  const auto isHeld = [&](const std::wstring& keyword) {
    for (const std::size_t family : ring)
      for (const SymbolInstance* instance : call.families[family].symbols)
        if (find(call.snippet.view(*instance->symbol), keyword, 0) != kNone) return true;
    return false;
  };
  for (const Rule& rule : renames.keywords)
    if (!rule.first.empty() && !names.contains(rule.first) && isHeld(rule.first)) key.rules.push_back(rule);
  return key;
}

void Accumulator::decide(Call& call, const Ring& ring, Pattern& renames) {
  const Key key = makeKey(call, ring, renames);
  const auto earlier = written_.find(key);
  std::vector<std::wstring> names;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Family& family = call.families[ring[i]];
    if (earlier != written_.end()) {
      // An earlier call wrote this ring: it goes by the names of then.
      names.push_back(earlier->second[i]);
      call.skipped.insert(family.symbols.begin(), family.symbols.end());
    } else {
      names.push_back(family.name.empty() ? L"" : makeName(call, family.name));
      if (!family.name.empty()) call.given.insert(names.back());
    }
  }
  if (earlier == written_.end()) call.written.emplace(key, names);

  // Hand back the names that differ from the families' own.
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const std::wstring& name = call.families[ring[i]].name;
    if (name.empty()) continue;
    call.used[name] = names[i];
    const Rule rule(name, names[i]);
    const bool isKnown =
        std::find(renames.keywords.begin(), renames.keywords.end(), rule) != renames.keywords.end();
    if (names[i] != name && !isKnown) renames.keywords.push_back(rule);
  }
}

std::wstring Accumulator::makeName(const Call& call, const std::wstring& name) {
  std::wstring candidate = name;
  while (taken_.contains(candidate) || call.given.contains(candidate)) {
    counter_ += 1;
    candidate += std::to_wstring(counter_);
  }
  return candidate;
}

std::vector<Span> Accumulator::findKeptCalls(const Snippet& snippet, const Symbol& symbol) const {
  std::vector<Span> kept;
  const std::wstring text = snippet.view(symbol).str();
  const Scanner scanner(text);
  for (std::size_t pos = symbol.parametersEnd; pos < text.size();) {
    scanner.skipNonKeywords(pos);
    const Part word = scanner.getKeyword(pos);
    std::size_t behind = pos;
    scanner.skipWhitespaces(behind);
    const bool isCall = behind < text.size() && text[behind] == L'(';
    if (isCall && functions_.contains(text.substr(word.start, word.length)))
      kept.push_back({word.start, word.length});
  }
  return kept;
}

void Accumulator::remember(const Call& call) {
  written_.insert(call.written.begin(), call.written.end());
  for (const auto& [name, used] : call.used) {
    renames_[name] = used;
    taken_.insert(name);
    taken_.insert(used);
  }
  for (const Family& family : call.families)
    for (const SymbolInstance* instance : family.symbols)
      if (instance->symbol->kind == SymbolKind::function && !call.skipped.contains(instance))
        functions_.insert(call.used.at(family.name));
}

}  // namespace TolmSDK::Graphics::sfg::model
