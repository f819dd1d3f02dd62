// From every token of assembled shaders back to the files they come from.

#include <fstream>
#include <optional>
#include <set>
#include <sstream>

#include "host/diagnostics/compile_explanation.h"
#include "sfg/host/compile.h"
#include "sfg/host/source_map.h"
#include "tests/shaders/random_graph.h"

namespace shaders_test {
namespace {

using sfg::host::AssembledShader;
using sfg::host::CollapseJob;
using sfg::host::Document;
using sfg::host::ShaderSection;
using sfg::host::SourceMap;
using sfg::host::SourcePlace;
using TolmSDK::WString;
using Kind = SourcePlace::Kind;

constexpr unsigned kMappedGraphs = 300;
constexpr unsigned kMappedGroups = 10;

bool isWordPart(wchar_t c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == L'_'; }

/// A word, or one character of anything else. Written for this test alone.
struct Token {
  std::size_t line;
  std::size_t column;
  std::string text;
};

std::vector<Token> scan(const std::vector<std::string>& lines, std::size_t first, std::size_t last) {
  std::vector<Token> tokens;
  bool isComment = false;
  for (std::size_t line = first; line <= last && line <= lines.size(); ++line) {
    const std::string& text = lines[line - 1];
    for (std::size_t at = 0; at < text.size();) {
      if (isComment) {
        const std::size_t end = text.find("*/", at);
        if (end == std::string::npos) break;
        isComment = false;
        at = end + 2;
      } else if (text.compare(at, 2, "//") == 0) {
        break;
      } else if (text.compare(at, 2, "/*") == 0) {
        isComment = true;
        at += 2;
      } else if (text[at] == ' ' || text[at] == '\t') {
        ++at;
      } else {
        std::size_t end = at + 1;
        while (isWordPart(text[at]) && end < text.size() && isWordPart(text[end])) ++end;
        tokens.push_back({line, at + 1, text.substr(at, end - at)});
        at = end;
      }
    }
  }
  return tokens;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// Files are read once.
const std::vector<std::string>& fileLines(const std::string& file) {
  static std::map<std::string, std::vector<std::string>> known;
  const auto [found, isNew] = known.try_emplace(file);
  if (isNew) {
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) found->second.push_back(line);
  }
  return found->second;
}

/// The word or character at a place of a file; empty for a place that is none.
std::string tokenAt(const SourcePlace& place) {
  const std::vector<std::string>& lines = fileLines(place.file);
  if (place.line == 0 || place.line > lines.size()) return "";
  const std::string& line = lines[place.line - 1];
  if (place.column == 0 || place.column > line.size()) return "";
  std::size_t end = place.column;
  while (isWordPart(line[place.column - 1]) && end < line.size() && isWordPart(line[end])) ++end;
  return line.substr(place.column - 1, end - (place.column - 1));
}

bool isName(const std::string& text) {
  return !text.empty() && isWordPart(text[0]) && std::isdigit(static_cast<unsigned char>(text[0])) == 0;
}

/// Names that the generator or the host replaces by others as a whole.
bool isReplaced(const std::string& name) {
  return name == "sfg_currentLight" || name.ends_with("Light") || name == "TOLM_SCENE_LIGHTING" ||
         name.starts_with("__");
}

/// What text is put in for: uses of built-in functions, light markers, a function's parameter list.
bool putsIn(const std::string& token) {
  return token.starts_with("sfg_") || token.starts_with("TOLM_VESSOR_LIGHT_AND_SHADOW_");
}

struct Counts {
  std::size_t exact = 0;
  std::size_t putIn = 0;
  std::size_t included = 0;
  std::size_t ofBody = 0;
};

std::shared_ptr<const sfg::host::LoadedLibraries> sharedLibrary() {
  static const std::vector<std::string> folders = {"library"};
  static const auto library = std::make_shared<const sfg::host::LoadedLibraries>(folders, folders, "dx11");
  return library;
}

std::optional<Document> documentOf(const std::optional<Json>& environment) {
  if (!environment) return std::nullopt;
  return Document::fromText(environment->dump(), "scene.json");
}

sfg::host::CollapseOptions optionsOf(bool isLit, float lod) {
  sfg::host::CollapseOptions options;
  options.tool = isLit ? sfg::host::CollapseTool::lightLoop : sfg::host::CollapseTool::standard;
  options.surfaceLod = options.lightLod = lod;
  return options;
}

class Checker {
public:
  Checker(const Json& graph, const std::optional<Json>& environment, float lod, sfg::host::ShaderStage stage,
          sfg::host::NameStyle names)
      : job_(sharedLibrary(), Document::fromText(graph.dump(), "graph.json"), documentOf(environment),
             optionsOf(environment.has_value(), lod)) {
    job_.run();
    assembled_ = sfg::host::assembleShader(job_, stage, names);
    text_ = linesOf(TolmSDK::toUtf8(std::as_const(assembled_.shader).getCompleteShader()));
    for (std::size_t i = 0; i < job_.graph()->getNumFragments(); ++i)
      functions_.insert(TolmSDK::toUtf8(job_.graph()->getFragment(i)->key()));
    isReadable_ = names == sfg::host::NameStyle::readable;
  }

  void check(Counts& counts) const {
    const SourceMap map(job_, assembled_);
    for (const ShaderSection& section : assembled_.sections) {
      for (const Token& token : scan(text_, section.firstLine, section.lastLine)) {
        const SourcePlace place = map.find(token.line, token.column);
        const std::string what = token.text + " at " + std::to_string(token.line) + ":" +
                                 std::to_string(token.column) + " is from " + place.place() + " `" +
                                 tokenAt(place) + "`: " + text_[token.line - 1];
        if (section.kind == ShaderSection::Kind::include) {
          ASSERT_EQ(place.kind, Kind::include) << what;
          ASSERT_EQ(tokenAt(place), token.text) << what;
          ++counts.included;
        } else if (section.predefine != TolmSDK::kNotFound) {
          checkCode(token, place, what, counts);
        } else if (section.kind == ShaderSection::Kind::function &&
                   (place.kind == Kind::implementation || place.kind == Kind::predefine)) {
          checkExpression(token, place, what, counts);
        }
      }
    }
  }

private:
  void checkCode(const Token& token, const SourcePlace& place, const std::string& what,
                 Counts& counts) const {
    if (isOfTheGenerator(token, place)) return;
    ASSERT_TRUE(place.kind == Kind::implementation || place.kind == Kind::predefine) << what;
    ASSERT_FALSE(place.users.empty()) << what;
    const std::string source = tokenAt(place);
    if (place.isExact) {
      ASSERT_TRUE(source == token.text || isRenamed(source, token.text)) << what;
      ASSERT_NE(place.token.find(source), std::string::npos) << what;
      ++counts.exact;
    } else {
      ASSERT_TRUE(putsIn(source) || functions_.contains(source) || isFunctionHead(place, source)) << what;
      ++counts.putIn;
    }
  }

  /// Parameters for state come from the function's name in its prototype.
  static bool isFunctionHead(const SourcePlace& place, const std::string& source) {
    const std::string& line = fileLines(place.file)[place.line - 1];
    return line.find("void " + source) != std::string::npos;
  }

  /// The functions that stand for lights without a MetaSL profile.
  static bool isOfTheGenerator(const Token&, const SourcePlace& place) {
    return place.kind == Kind::assembly;
  }

  void checkExpression(const Token& token, const SourcePlace& place, const std::string& what,
                       Counts& counts) const {
    if (!place.isExact) return;
    const std::string source = tokenAt(place);
    ASSERT_TRUE(source == token.text || isRenamed(source, token.text)) << what;
    ++counts.ofBody;
  }

  bool isRenamed(const std::string& source, const std::string& now) const {
    if (!isName(source) || !isName(now)) return false;
    if (isReplaced(source) || now.starts_with(source)) return true;
    // The owner stands in front of a readable name.
    return isReadable_ && (now.ends_with(source) || now.find("_" + source) != std::string::npos);
  }

  CollapseJob job_;
  AssembledShader assembled_;
  std::vector<std::string> text_;
  std::set<std::string> functions_;
  bool isReadable_ = false;
};

class SourceMapTest : public ShaderFixture, public testing::WithParamInterface<unsigned> {};

TEST_P(SourceMapTest, FindsEveryTokenOfRandomGraphs) {
  const std::vector<Usable> fragments = usableFragments();
  Counts counts;
  for (unsigned seed = GetParam(); seed < kMappedGraphs; seed += kMappedGroups) {
    RandomGraph random(seed);
    const Json graph = random.make(fragments);
    std::optional<Json> environment;
    if (seed % 3 == 0) environment = environmentOf(random.pick(5));
    const auto lod = static_cast<float>(random.pick(101));
    const sfg::host::NameStyle names =
        seed % 2 == 0 ? sfg::host::NameStyle::readable : sfg::host::NameStyle::generated;
    const Checker checker(graph, environment, lod, sfg::host::ShaderStage::pixel, names);
    checker.check(counts);
    if (HasFatalFailure()) FAIL() << "seed " << seed << "\n" << graph.dump(2);
  }
  EXPECT_GT(counts.exact, 3000u);
  EXPECT_GT(counts.included, 10000u);
  EXPECT_LT(counts.putIn * 10, counts.exact);
}
INSTANTIATE_TEST_SUITE_P(Groups, SourceMapTest, testing::Range(0u, kMappedGroups));

class ExampleMapTest : public ShaderFixture {};
TEST_F(ExampleMapTest, FindsEveryTokenOfTheExamples) {
  Counts counts;
  for (const auto& file : std::filesystem::directory_iterator("examples/materials")) {
    if (file.path().extension() != ".json") continue;
    std::ifstream stream(file.path());
    const Json graph = Json::parse(stream);
    for (const std::size_t lights : {0u, 1u, 4u}) {
      for (const sfg::host::NameStyle names :
           {sfg::host::NameStyle::generated, sfg::host::NameStyle::readable}) {
        const Checker checker(graph, environmentOf(lights), 100.0f, sfg::host::ShaderStage::compute, names);
        checker.check(counts);
        if (HasFatalFailure()) FAIL() << file.path() << ", " << lights << " lights";
      }
    }
  }
  EXPECT_GT(counts.exact, 10000u);
  EXPECT_GT(counts.ofBody, 10u);
}

/// A name that nobody declares, in place of a random one of a fragment's code.
class MutatedLibrary {
public:
  MutatedLibrary(const std::filesystem::path& folder, const std::string& fragment, std::mt19937& random)
      : file_((folder / "mutated.fraglib").string()),
        lines_(fileLines(standardLibrary().files().find(TolmSDK::fromUtf8(fragment))->file)) {
    const std::size_t head = standardLibrary().files().find(TolmSDK::fromUtf8(fragment))->position.line;
    const std::vector<Token> uses = usesIn(implementation(head));
    if (uses.empty()) return;
    token_ = uses[random() % uses.size()];
    std::string& line = lines_[token_.line - 1];
    line.replace(token_.column - 1, token_.text.size(), kUndefined);
    std::ofstream stream(file_);
    for (const std::string& each : lines_) stream << each << '\n';
  }

  static constexpr const char* kUndefined = "zzqUndefined";

  bool isMutated() const { return token_.line != 0; }
  const Token& token() const { return token_; }
  std::string place() const {
    return file_ + ":" + std::to_string(token_.line) + ":" + std::to_string(token_.column);
  }

private:
  /// The lines of the array, without its key.
  std::pair<std::size_t, std::size_t> implementation(std::size_t head) const {
    std::size_t first = head;
    while (lines_[first - 1].find("\"implementation\": [") == std::string::npos) ++first;
    std::size_t last = first + 1;
    while (lines_[last - 1].find_first_not_of(' ') != lines_[last - 1].find(']')) ++last;
    return {first + 1, last - 1};
  }

  /// Names behind an operator, where a value is meant, from the first brace on.
  std::vector<Token> usesIn(std::pair<std::size_t, std::size_t> lines) const {
    const std::vector<Token> all = scan(lines_, lines.first, lines.second);
    std::vector<Token> uses;
    bool isBody = false;
    for (std::size_t i = 1; i < all.size(); ++i) {
      isBody = isBody || all[i].text == "{";
      const std::string& line = lines_[all[i].line - 1];
      const bool isPlain = line.find("sfg_is") == std::string::npos &&
                           line.find("sfg_shader") == std::string::npos &&
                           line.find("TOLM_") == std::string::npos && line.find('#') == std::string::npos;
      const bool isUse = std::string("(,=+-*/<>?:").find(all[i - 1].text) != std::string::npos;
      if (isBody && isPlain && isUse && isName(all[i].text)) uses.push_back(all[i]);
    }
    return uses;
  }

  std::string file_;
  std::vector<std::string> lines_;
  Token token_{0, 0, ""};
};

class MutationTest : public ShaderFixture, public testing::WithParamInterface<unsigned> {
protected:
  /// The first diagnostic of a graph of that fragment alone; empty when it compiles.
  static std::string compileAlone(const std::filesystem::path& folder, const Usable& fragment) {
    Json outputs = Json::array();
    for (const Usable::Port& port : fragment.outputs)
      outputs.push_back(
          {{"name", "o_" + port.name}, {"type", port.type}, {"node", "n"}, {"output", port.name}});
    const Json graph = {{"outputs", outputs}, {"nodes", {{{"name", "n"}, {"fragment", fragment.name}}}}};
    const std::vector<std::string> libraries = {"library", folder.string()};
    const std::vector<std::string> includes = {"library"};
    CollapseJob job(std::make_shared<const sfg::host::LoadedLibraries>(libraries, includes, "dx11"),
                    Document::fromText(graph.dump(), "graph.json"),
                    fragment.isLit ? documentOf(environmentOf(1)) : std::nullopt,
                    optionsOf(fragment.isLit, 100.0f));
    job.run();
    const AssembledShader assembled = sfg::host::assembleShader(job, sfg::host::ShaderStage::pixel);
    sfg::host::Shader shader;
    shader.text = TolmSDK::toUtf8(std::as_const(assembled.shader).getCompleteShader());
    shader.entryPoint = assembled.entryPoint;
    try {
      sfg::host::compileToSpirv(shader);
    } catch (const sfg::host::CompileError& error) {
      const std::vector<sfg::host::Diagnostic> told = sfg::host::explainCompileError(job, assembled, error);
      return told.front().place() + ": " + told.front().text;
    }
    return "";
  }
};

TEST_P(MutationTest, TellsAnUndefinedNameAtItsVeryPlace) {
  // The front end does not survive an undefined name behind a question mark.
  sfg::host::isolateCompilers();
  constexpr unsigned kMutants = 30;
  const std::vector<Usable> fragments = usableFragments();
  std::mt19937 random(GetParam());
  unsigned told = 0;
  for (unsigned tries = 0; told < kMutants && tries < 4 * kMutants; ++tries) {
    const Usable& fragment = fragments[random() % fragments.size()];
    if (!fragment.interface.is_null()) continue;
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_mutant_XXXXXX").string();
    const std::filesystem::path folder = mkdtemp(pattern.data());
    const MutatedLibrary library(folder, fragment.name, random);
    const std::string first = library.isMutated() ? compileAlone(folder, fragment) : "";
    std::filesystem::remove_all(folder);
    if (first.empty()) continue;  // a profile of another light or level of detail
    ASSERT_TRUE(first.starts_with(library.place() + ": `zzqUndefined` "))
        << fragment.name << ", `" << library.token().text << "` at " << library.place() << "\n"
        << first;
    ++told;
  }
  EXPECT_EQ(told, kMutants);
}
INSTANTIATE_TEST_SUITE_P(Groups, MutationTest, testing::Range(0u, kMappedGroups));

}  // namespace
}  // namespace shaders_test
