#include "sfg/host/source_map.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "host/job/collapse_job.h"
#include "host/origins/include_places.h"
#include "host/origins/token_origins.h"
#include "host/origins/unbalanced.h"
#include "host/shader/shader_assembly.h"
#include "sfg/host/diagnostic.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using Section = ShaderSection;

/// Node, light or chain fragment with the places of its inputs.
struct Use {
  SourceUser user;
  std::vector<TextPosition> wires;
};

/// A token of the shader and what is known of it.
struct MappedToken {
  CodeToken token;
  TokenOrigin origin;
  std::size_t section = 0;
};

std::vector<std::size_t> startsOfLines(std::wstring_view text) {
  std::vector<std::size_t> starts{0};
  for (std::size_t end = text.find(L'\n'); end != text.npos; end = text.find(L'\n', end + 1))
    starts.push_back(end + 1);
  return starts;
}

using InputNumbers = std::map<WString, std::size_t>;

/// What declares or fills a value of the interface.
struct NamedValue {
  const IShaderFragment* fragment = nullptr;
  std::size_t input = kNotFound;
};

}  // namespace

std::string SourcePlace::place() const {
  return Diagnostic{Severity::note, file, line, column, {}, {}}.place();
}

struct SourceMap::Impl {
  Impl(const CollapseJob& job, const AssembledShader& assembled)
      : libraries(job.shareLibraries()), codes(*libraries), graph(job.graph()),
        environment(&job.environment()), text(std::as_const(assembled.shader).getCompleteShader()),
        lines(startsOfLines(text)), sections(assembled.sections), documentFile(job.document().file()) {
    job.observe(record);
    for (std::size_t i = 0; i < record.writers().size(); ++i)
      writers.emplace(record.writers()[i].fragment, i);
    findUses(job);
    const IShaderFragmentProfile& result = *job.result()->getProfile(0);
    record.placeCalls(result.getFunctionBody());
    TokenOrigins origins(record, codes, job.environment().getNumLights());
    predefines = result.predefines();
    body = result.getFunctionBody();
    predefineOrigins = origins.ofPredefines(predefines);
    bodyOrigins = origins.ofBody(body);
    mapPredefines();
    for (std::size_t i = 0; i < sections.size(); ++i) mapSection(i, assembled.reflection);
    findUnbalanced();
    std::stable_sort(tokens.begin(), tokens.end(), [](const MappedToken& a, const MappedToken& b) {
      return a.token.begin < b.token.begin;
    });
  }

  std::size_t sectionBegin(std::size_t index) const { return lines[sections[index].firstLine - 1]; }
  std::size_t sectionEnd(std::size_t index) const {
    return sections[index].lastLine < lines.size() ? lines[sections[index].lastLine] : text.size();
  }

  // Users.

  void findUses(const CollapseJob& job) {
    const AShaderFragmentGraph& fragments = *job.graph();
    const GraphDocument& document = job.document();
    for (std::size_t i = 0; i < document.getNumNodes(); ++i) {
      const GraphNode& node = document.node(i);
      Use& use = add(*fragments.getFragment(i), "node", node.name(), document.file(), node.position());
      for (const GraphNode::Wire& wire : node.wires()) use.wires.push_back(wire.position);
    }
    for (std::size_t i = 0; i < fragments.getNumPreprocessFragment(); ++i) {
      const GraphDocument::ChainFragment& link = document.preprocess()[i];
      add(*fragments.getPreprocessFragment(i), "preprocess", link.name, document.file(), link.position);
    }
    for (std::size_t i = 0; i < fragments.getNumPostprocessFragments(); ++i) {
      const GraphDocument::ChainFragment& link = document.postprocess()[i];
      add(*fragments.getPostprocessFragment(i), "postprocess", link.name, document.file(), link.position);
    }
    for (const ShadingEnvironment::Light& light : job.environment().lights())
      add(*light.fragment, "light", light.name, job.environment().file(), light.position);
    if (const IShaderFragment* const output = job.environment().getOutputFragment())
      add(*output, "output", output->key(), job.environment().file(), {});
  }

  Use& add(const IShaderFragment& fragment, const char* kind, const WString& name, const std::string& file,
           TextPosition position) {
    Use& use = uses[&fragment];
    use.user = {kind, toUtf8(name), file, position.line, position.column};
    owners.emplace(std::pair(std::string(kind), name), &fragment);
    return use;
  }

  // Tokens.

  /// The predefines stand in the shader in parts, in another order, and with other names of uniforms; token
  /// by token they are the same.
  void mapPredefines() {
    std::vector<std::size_t> parts;
    for (std::size_t i = 0; i < sections.size(); ++i)
      if (sections[i].predefine != kNotFound) parts.push_back(i);
    std::sort(parts.begin(), parts.end(),
              [&](std::size_t a, std::size_t b) { return sections[a].predefine < sections[b].predefine; });
    const CodeTokens all = tokensOf(predefines);
    std::size_t next = 0;
    for (const std::size_t part : parts) {
      const std::size_t begin = sectionBegin(part);
      const std::size_t end = sectionEnd(part);
      const bool isUnchanged = predefines.compare(sections[part].predefine, end - begin,
                                                  std::wstring_view(text).substr(begin, end - begin)) == 0;
      if (isUnchanged) next = tokenAt(all, sections[part].predefine);
      for (const CodeToken& token : tokensOf(std::wstring_view(text).substr(0, end), begin)) {
        const std::size_t place = isUnchanged         ? sections[part].predefine + (token.begin - begin)
                                  : next < all.size() ? all[next].begin
                                                      : kNotFound;
        addToken(token, part, predefineOrigins.find(place));
        ++next;
      }
    }
  }

  void addToken(const CodeToken& token, std::size_t section, const TokenOrigin* origin) {
    tokens.push_back({token, origin != nullptr ? *origin : TokenOrigin(), section});
  }

  void mapSection(std::size_t index, const ShaderInterface& reflection) {
    const Section& section = sections[index];
    if (section.predefine != kNotFound) return;
    const std::size_t begin = sectionBegin(index);
    const std::size_t end = sectionEnd(index);
    if (section.kind == Section::Kind::include) {
      includes.emplace(index, IncludePlaces(libraries->texts(), section.name));
      return;
    }
    const CodeTokens found = tokensOf(std::wstring_view(text).substr(0, end), begin);
    if (section.kind == Section::Kind::function) return mapFunction(index, found);
    if (!namesAreKnown) findNames(reflection);
    for (const CodeToken& token : found) {
      TokenOrigin origin;
      if (token.isName) {
        const auto known = names.find(WString(token.in(text)));
        if (known != names.end()) origin = originOf(known->second);
      }
      addToken(token, index, &origin);
    }
  }

  /// The body is behind the brace that follows the parameters.
  void mapFunction(std::size_t index, const CodeTokens& found) {
    std::size_t first = 0;
    while (first < found.size() && text[found[first].begin] != L'{') ++first;
    ++first;
    for (std::size_t i = 0; i < std::min(first, found.size()); ++i) addToken(found[i], index, nullptr);
    for (std::size_t i = first; i < found.size(); ++i) {
      const std::size_t k = i - first;
      const bool isBody = k < bodyOrigins.origins.size();
      addToken(found[i], index, isBody ? &bodyOrigins.origins[k] : nullptr);
    }
  }

  // Declarations of what fragments and graph bring.

  void findNames(const ShaderInterface& reflection) {
    namesAreKnown = true;
    for (const InterfaceBuffer& buffer : reflection.buffers)
      for (const InterfaceMember& member : buffer.members) addName(member.name, member.origin);
    for (const InterfaceTexture& texture : reflection.textures) addName(texture.name, texture.origin);
    for (const InterfaceSampler& sampler : reflection.samplers) addName(sampler.name, sampler.origin);
  }

  void addName(const std::string& name, const InterfaceOrigin& origin) {
    const auto owner = owners.find({origin.kind, fromUtf8(origin.owner)});
    if (owner == owners.end()) return;
    const InputNumbers& numbers = inputsOf(*owner->second);
    const auto input = numbers.find(fromUtf8(origin.name));
    names.emplace(fromUtf8(name),
                  NamedValue{owner->second, input != numbers.end() ? input->second : kNotFound});
  }

  /// Of equal names the last counts.
  const InputNumbers& inputsOf(const IShaderFragment& fragment) {
    const auto [found, isNew] = inputNumbers.try_emplace(&fragment);
    for (std::size_t i = 0; isNew && i < fragment.getNumInputs(); ++i)
      found->second[fragment.getInputName(i)] = i;
    return found->second;
  }

  TokenOrigin originOf(const NamedValue& value) const {
    const auto writer = writers.find(value.fragment);
    if (writer == writers.end()) return {};
    const bool isInput = value.input != kNotFound;
    TokenOrigin origin;
    origin.kind = isInput ? TokenOrigin::Kind::input : TokenOrigin::Kind::node;
    origin.isExact = isInput;
    origin.writer = writer->second;
    origin.offset = isInput ? value.input : 0;
    return origin;
  }

  // Brackets.

  void findUnbalanced() {
    std::set<const FragmentCode*> done;
    for (std::size_t i = 0; i < record.writers().size(); ++i) {
      const CollapseRecord::Writer& writer = record.writers()[i];
      for (const CodePart part : {CodePart::predefine, CodePart::implementation}) {
        const FragmentCode* const code = codes.find(writer.fragment->key(), writer.profileIndex, part);
        if (code == nullptr || !done.insert(code).second) continue;
        const std::optional<Unbalanced> found = host::findUnbalanced(code->text);
        if (!found) continue;
        TokenOrigin origin{TokenOrigin::Kind::code, true, i, code, part, found->place, kNotFound};
        unbalanced = placeOf({{}, origin, 0}, 0);
        unbalanced.token = toUtf8(found->token);
        return;
      }
    }
    for (const auto& [section, places] : includes) {
      const std::size_t begin = sectionBegin(section) + 1;
      const std::wstring_view content = std::wstring_view(text).substr(0, sectionEnd(section)).substr(begin);
      const std::optional<Unbalanced> found = host::findUnbalanced(content);
      if (!found) continue;
      unbalanced = findInclude(section, begin + found->place);
      unbalanced.token = toUtf8(found->token);
      return;
    }
  }

  // Answers.

  SourcePlace find(std::size_t line, std::size_t column) const {
    if (line == 0 || line > lines.size()) return {};
    const std::size_t lineEnd = line < lines.size() ? lines[line] : text.size();
    const std::size_t offset = std::min(lines[line - 1] + (column == 0 ? 0 : column - 1), lineEnd);
    const auto section = std::partition_point(sections.begin(), sections.end(),
                                              [&](const Section& known) { return known.lastLine < line; });
    if (section == sections.end() || line < section->firstLine) return {};
    const auto index = static_cast<std::size_t>(section - sections.begin());
    if (section->kind == Section::Kind::include) return findInclude(index, offset);

    const auto token = std::partition_point(
        tokens.begin(), tokens.end(), [&](const MappedToken& known) { return known.token.end <= offset; });
    if (token == tokens.end() || token->section != index) return assemblyPlace();
    const std::size_t inside = offset > token->token.begin ? offset - token->token.begin : 0;
    return placeOf(*token, inside);
  }

  static SourcePlace assemblyPlace() {
    SourcePlace place;
    place.kind = SourcePlace::Kind::assembly;
    return place;
  }

  SourcePlace findInclude(std::size_t section, std::size_t offset) const {
    SourcePlace place;
    place.kind = SourcePlace::Kind::include;
    const std::size_t begin = sectionBegin(section) + 1;  // a line feed stands in front of it
    const IncludePlaces::Place found = includes.at(section).find(std::max(offset, begin) - begin);
    place.file = found.file;
    place.line = found.position.line;
    place.column = found.position.column;
    place.isExact = !found.file.empty();
    const std::size_t end = std::min(text.find(L'\n', std::min(offset, text.size())), text.size());
    const CodeTokens here = tokensOf(std::wstring_view(text).substr(0, end), std::min(offset, end));
    if (!here.empty() && here.front().begin == offset) place.token = toUtf8(here.front().in(text));
    return place;
  }

  SourcePlace placeOf(const MappedToken& mapped, std::size_t inside) const {
    const TokenOrigin& origin = mapped.origin;
    if (origin.kind == TokenOrigin::Kind::none) return assemblyPlace();
    const CollapseRecord::Writer& writer = record.writers()[origin.writer];
    SourcePlace place;
    place.fragment = toUtf8(writer.fragment->key());
    place.isExact = origin.isExact;
    if (origin.kind == TokenOrigin::Kind::code) {
      setCode(place, mapped, inside);
    } else {
      setUse(place, writer.fragment, origin);
    }
    addUsers(place, origin);
    return place;
  }

  void setCode(SourcePlace& place, const MappedToken& mapped, std::size_t inside) const {
    const TokenOrigin& origin = mapped.origin;
    const FragmentCode& code = *origin.code;
    place.kind =
        origin.part == CodePart::predefine ? SourcePlace::Kind::predefine : SourcePlace::Kind::implementation;
    place.file = *code.file;
    const std::size_t source = tokenAt(code.tokens, origin.offset);
    const bool isToken = source < code.tokens.size();
    const std::wstring_view token = isToken ? code.tokens[source].in(code.text) : std::wstring_view();
    const bool isSame = isToken && token == mapped.token.in(text);
    const TextPosition found = code.placeOf(origin.offset + (isSame ? inside : 0));
    place.line = found.line;
    place.column = found.column;
    place.token = toUtf8(token);
  }

  void setUse(SourcePlace& place, const IShaderFragment* fragment, const TokenOrigin& origin) const {
    const bool isInput = origin.kind == TokenOrigin::Kind::input;
    place.kind = isInput ? SourcePlace::Kind::input : SourcePlace::Kind::node;
    if (isInput && origin.offset < fragment->getNumInputs())
      place.input = toUtf8(fragment->getInputName(origin.offset));
    const auto use = uses.find(fragment);
    if (use == uses.end()) return;
    place.file = use->second.user.file;
    place.line = use->second.user.line;
    place.column = use->second.user.column;
    const bool isWired =
        isInput && origin.offset < use->second.wires.size() && use->second.wires[origin.offset].line != 0;
    if (!isWired) return;
    place.line = use->second.wires[origin.offset].line;
    place.column = use->second.wires[origin.offset].column;
  }

  /// The writer first.
  void addUsers(SourcePlace& place, const TokenOrigin& origin) const {
    const auto add = [&](std::size_t writer) {
      const auto use = uses.find(record.writers()[writer].fragment);
      if (use != uses.end()) place.users.push_back(use->second.user);
    };
    add(origin.writer);
    if (origin.record == kNotFound) return;
    const CollapseRecord::Code& code = record.codes()[origin.record];
    const std::vector<std::size_t>& others = code.isDefinition
                                                 ? record.callersOf(code.functionName)
                                                 : record.usersOf(record.writers()[origin.writer].profile);
    for (const std::size_t writer : others)
      if (writer != origin.writer) add(writer);
  }

  std::shared_ptr<const LoadedLibraries> libraries;
  FragmentCodes codes;
  RefPtr<AShaderFragmentGraph const> graph;
  RefPtr<ShadingEnvironment const> environment;
  CollapseRecord record;
  WString text;
  std::vector<std::size_t> lines;
  std::vector<Section> sections;
  std::string documentFile;
  WString predefines;
  WString body;
  OriginText predefineOrigins;
  OriginText bodyOrigins;
  std::vector<MappedToken> tokens;
  std::map<std::size_t, IncludePlaces> includes;
  std::map<const IShaderFragment*, Use> uses;
  std::map<std::pair<std::string, WString>, const IShaderFragment*> owners;
  std::map<const IShaderFragment*, std::size_t> writers;  // the first of each fragment
  std::map<const IShaderFragment*, InputNumbers> inputNumbers;
  std::map<WString, NamedValue> names;
  bool namesAreKnown = false;
  SourcePlace unbalanced;
};

SourceMap::SourceMap(const CollapseJob& job, const AssembledShader& assembled)
    : impl_(std::make_unique<const Impl>(job, assembled)) {}
SourceMap::SourceMap(SourceMap&& other) noexcept = default;
SourceMap& SourceMap::operator=(SourceMap&& other) noexcept = default;
SourceMap::~SourceMap() = default;

const SourcePlace& SourceMap::findUnbalanced() const {
  static const SourcePlace none;
  return impl_ ? impl_->unbalanced : none;
}

SourcePlace SourceMap::find(std::size_t line, std::size_t column) const {
  return impl_ ? impl_->find(line, column) : SourcePlace();
}

}  // namespace TolmSDK::Graphics::sfg::host
