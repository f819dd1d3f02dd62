#include "host/lints/structure_lints.h"

#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

WString tokensBetween(const PlainCode& code, std::size_t begin, std::size_t end) {
  WString text;
  for (std::size_t i = begin; i < end; ++i) text.append(code.word(i)).append(L" ");
  return text;
}

}  // namespace

StructureLints::StructureLints(const IncludeIndex& includes) {
  for (const IncludeIndex::File& file : includes.files()) {
    for (const auto& [name, structure] : file.declared.structures) {
      texts_[WString(name)].push_back({tokensBetween(file.code, structure.begin, structure.end), file.path,
                                       file.placeOf(file.code.tokens[structure.token].begin)});
    }
  }
}

void StructureLints::add(const LintedFile& file) {
  for (const LintedFragment& fragment : file.fragments) {
    for (const LintedProfile& profile : fragment.profiles) {
      for (const CodeParameter& parameter : profile.parameters) portTypes_.insert(WString(parameter.type));
      if (profile.predefine.spelled == nullptr) continue;
      const PlainCode& code = profile.predefine.plain;
      for (const auto& [name, structure] : declarationsOf(code).structures) {
        texts_[WString(name)].push_back({tokensBetween(code, structure.begin, structure.end), file.name,
                                         profile.predefine.placeOf(code.tokens[structure.token])});
      }
    }
  }
}

void StructureLints::tell(LintList& lints) const {
  for (const auto& [name, texts] : texts_) {
    if (!portTypes_.contains(name)) continue;
    const Text& first = texts.front();
    for (const Text& text : texts) {
      if (text.tokens == first.tokens) continue;
      lints.at(Finding::twoStructures, text.file, text.position,
               "the structure " + inTicks(name) + " has another text at " +
                   InputError(first.file, first.position, std::string()).place() +
                   ", but a wire carries only one of them; give one of the two another name");
    }
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
