// From every token of assembled shaders back to the files they come from.

#include <fstream>
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
using sfg::host::ShaderSection;
using sfg::host::SourceMap;
using sfg::host::SourcePlace;
using TolmSDK::WString;
using Kind = SourcePlace::Kind;

constexpr unsigned kGraphs = 300;
constexpr unsigned kGroups = 10;

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
  return name == "sfg_currentLight" || name == "TOLM_SCENE_LIGHTING" || name.starts_with("__");
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

class Checker {
public:
  Checker(const sfg::host::CollapseSettings& settings, sfg::host::ShaderStage stage,
          sfg::host::NameStyle names)
      : job_(settings) {
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
      ASSERT_EQ(place.token.substr(0, source.size()), source) << what;
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
  for (unsigned seed = GetParam(); seed < kGraphs; seed += kGroups) {
    RandomGraph random(seed);
    const Json graph = random.make(fragments);
    sfg::host::CollapseSettings chosen = settings(graph);
    if (seed % 3 == 0) light(chosen, environmentOf(random.pick(5)));
    chosen.surfaceLod = chosen.lightLod = static_cast<float>(random.pick(101));
    const sfg::host::NameStyle names =
        seed % 2 == 0 ? sfg::host::NameStyle::readable : sfg::host::NameStyle::generated;
    const Checker checker(chosen, sfg::host::ShaderStage::pixel, names);
    checker.check(counts);
    if (HasFatalFailure()) FAIL() << "seed " << seed << "\n" << graph.dump(2);
  }
  EXPECT_GT(counts.exact, 10000u);
  EXPECT_GT(counts.included, 10000u);
  EXPECT_LT(counts.putIn * 20, counts.exact);
}
INSTANTIATE_TEST_SUITE_P(Groups, SourceMapTest, testing::Range(0u, kGroups));

class ExampleMapTest : public ShaderFixture {};
TEST_F(ExampleMapTest, FindsEveryTokenOfTheExamples) {
  Counts counts;
  for (const auto& file : std::filesystem::directory_iterator("examples/materials")) {
    if (file.path().extension() != ".json") continue;
    std::ifstream stream(file.path());
    const Json graph = Json::parse(stream);
    for (const std::size_t lights : {0u, 1u, 4u}) {
      sfg::host::CollapseSettings lit = settings(graph);
      light(lit, environmentOf(lights));
      for (const sfg::host::NameStyle names :
           {sfg::host::NameStyle::generated, sfg::host::NameStyle::readable}) {
        const Checker checker(lit, sfg::host::ShaderStage::compute, names);
        checker.check(counts);
        if (HasFatalFailure()) FAIL() << file.path() << ", " << lights << " lights";
      }
    }
  }
  EXPECT_GT(counts.exact, 10000u);
  EXPECT_GT(counts.ofBody, 10u);
}

}  // namespace
}  // namespace shaders_test
