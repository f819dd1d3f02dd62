// Random changes of everything that a shader follows from, and of what it does not: a build with one cache
// for all of them must make what a build without any cache makes, and only changes of the first kind may make
// it work.

#include <random>
#include <vector>

#include "host/build/build_fixture.h"
#include "sfg/host/version.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

namespace fs = std::filesystem;

class KeyProperty : public BuildFixture {
protected:
  KeyProperty() { writeAll(); }

  unsigned pick(unsigned below) { return static_cast<unsigned>(random_() % below); }

  /// What a graph, an environment or the manifest says, or a fragment or include file that they reach.
  void changeWhatMatters() {
    std::string& part = parts_.at(kMatters[pick(std::size(kMatters))]);
    const std::string before = part;
    while (part == before) part = kValues[pick(std::size(kValues))];
    const std::size_t option = pick(static_cast<unsigned>(std::size(kOptions)));
    if (pick(3) == 0) option_ = kOptions[option];
    if (pick(4) == 0) std::swap(parts_["first fragment"], parts_["second fragment"]);
    if (pick(4) == 0) parts_["lights"] = std::string(1 + pick(3), 'x');
  }

  /// Nothing that any of the graphs reaches; names of folders, their order, dates.
  void changeWhatDoesNot() {
    parts_["unused"] = std::to_string(pick(1000));
    parts_["alone"] = std::to_string(pick(1000));
    isReversed_ = pick(2) == 0;
    parts_["folder"] = std::to_string(pick(1000));
    age_ = std::chrono::hours(pick(1000));
  }

  void writeAll() {
    for (const char* name : {"lib", "other", "sources"}) fs::remove_all(path(name));
    write("lib/test.fraglib", replaced(R"json({
  "dim": { "language": ["dx11"], "includes": ["half.h"], "profiles": [
    { "language": ["dx11"], "includes": ["half.h"], "implementation": [
      "void dim(float3 color, float amount, out float3 result)", "{", "result = color * amount * HALF * <body>;", "}" ] },
    { "language": ["dx11"], "lod": 10, "implementation": [
      "void dim(float3 color, float amount, out float3 result)", "{", "result = color + <coarse>;", "}" ] } ],
    "ports": { "color": { "value": [1, 1, 1] }, "amount": { "value": <default> } } },
  "red": { "language": ["dx11"], "implementation": [
    "void red(float3 color, float amount, out float3 result)", "{", "result = color - amount;", "}" ] },
  "unused": { "language": ["dx11"], "implementation": [
    "void unused(out float3 result)", "{", "result = <unused>;", "}" ] } }
)json"));
    write("other/lights.fraglib", replaced(R"json({
  "lamp": { "language": ["dx11"], "implementation": ["void lamp(out float light)", "{", "light = <lamp>;", "}"] },
  "idle": { "language": ["dx11"], "implementation": ["void idle(out float light)", "{", "light = <unused>;", "}"] } }
)json"));
    write("lib/half.h", replaced("#include \"deep.h\"\n#define HALF (DEEP * <half>)\n"));
    write("lib/deep.h", replaced("#define DEEP <deep>\n"));
    write("lib/alone.h", replaced("#define ALONE <alone>\n"));
    const std::string graphs = "sources/" + parts_["folder"] + "/";
    write(graphs + "a.json", graph("<first fragment>", "<constant>"));
    write(graphs + "b.json", graph("<second fragment>", "<other constant>"));
    std::string lights;
    for (std::size_t i = 0; i < parts_["lights"].size(); ++i)
      lights += std::string(i == 0 ? "" : ", ") + R"({ "fragment": "lamp" })";
    write(graphs + "sun.json", R"({ "lights": [ )" + lights + " ] }");
    for (const char* name : {"lib", "other", "sources"}) {
      for (const auto& entry : fs::recursive_directory_iterator(path(name)))
        fs::last_write_time(entry.path(), fs::file_time_type::clock::now() - age_);
    }
  }

  std::string graph(const std::string& fragment, const std::string& constant) const {
    return replaced(R"({"outputs": [{"name": "color", "type": "float3", "node": "a"}],
  "nodes": [{"name": "a", "fragment": ")" +
                    fragment + R"(", "inputs": {"amount": {"constant": )" + constant + "}}}]}\n");
  }

  std::string replaced(std::string text) const {
    for (const auto& [name, value] : parts_) {
      const std::string place = "<" + name + ">";
      for (std::size_t at = 0; (at = text.find(place)) != text.npos;) text.replace(at, place.size(), value);
    }
    return text;
  }

  BuildPlan planInto(const std::string& output) const {
    const std::string set =
        replaced(R"("graphs": ["sources"], "targets": [<target>], "reflection": <reflection>)" + option_);
    write("build.json", R"({"libraries": [)" +
                            std::string(isReversed_ ? R"("other", "lib")" : R"("lib", "other")") +
                            R"(], "output": ")" + output + R"(", "shaders": [{)" + set + "}]}");
    return readManifest(Document::fromFile(path("build.json")));
  }

  /// By the names of the outputs, wherever they and their graphs lie.
  std::map<std::string, std::string> made(const std::string& output, const BuildOptions& options) {
    fs::remove_all(path(output));
    build(planInto(output), options);
    EXPECT_EQ(report_.failed, 0u) << told();
    std::map<std::string, std::string> all;
    for (const auto& [name, bytes] : contents(output)) all[fs::path(name).filename().string()] = bytes;
    return all;
  }

  static constexpr const char* kMatters[] = {"body", "coarse", "default",  "lamp",
                                             "half", "deep",   "constant", "other constant"};
  static constexpr const char* kValues[] = {"1.0", "2.0", "0.5", "0.25"};
  static constexpr const char* kOptions[] = {
      "",
      R"(, "surfaceLods": [5])",
      R"(, "lightLods": [5])",
      R"(, "stages": ["compute"])",
      R"(, "stages": ["vertex", "pixel"])",
      R"(, "uniformNames": "generated")",
      R"(, "tool": "lightloop", "environments": ["sources/<folder>/sun.json"])",
      R"(, "constants": [{"name": "x", "values": {"a.amount": 5}}])",
      R"(, "constants": [{"name": "x", "values": {"a.amount": 6}}])"};

  std::mt19937 random_{7};
  std::map<std::string, std::string> parts_ = {
      {"body", "1.0"}, {"coarse", "1.0"}, {"default", "1.0"},        {"lamp", "1.0"},
      {"half", "1.0"}, {"deep", "1.0"},   {"constant", "1.0"},       {"other constant", "2.0"},
      {"unused", "1"}, {"alone", "1"},    {"first fragment", "dim"}, {"second fragment", "red"},
      {"lights", "x"}, {"folder", "0"},   {"reflection", "true"},    {"target", "\"assembled\""}};
  std::string option_;
  bool isReversed_ = false;
  std::chrono::hours age_{0};
};

TEST_F(KeyProperty, RandomChangesChangeTheKeyWhenTheyChangeTheOutput) {
  std::set<std::map<std::string, std::string>> states;
  for (int i = 0; i < 30; ++i) {
    changeWhatMatters();
    if (pick(2) == 0) changeWhatDoesNot();
    writeAll();
    const auto fresh = made("fresh", BuildOptions());
    ASSERT_EQ(made("cached", withCache()), fresh) << "change " << i << ", options " << option_;
    states.insert(fresh);
    // The same with everything else about it changed.
    changeWhatDoesNot();
    writeAll();
    ASSERT_EQ(made("cached", withCache()), fresh) << "change " << i;
    EXPECT_EQ(report_.built, 0u) << "change " << i;
  }
  // The changes were changes.
  EXPECT_GT(states.size(), 15u);
}

TEST_F(KeyProperty, RandomChangesOfTargetsDoSo) {
  if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  std::set<std::map<std::string, std::string>> states;
  for (int i = 0; i < 12; ++i) {
    constexpr const char* kTargets[] = {R"("spirv")", R"("glsl")", R"("hlsl60", "hlsl")",
                                        R"("glsl330", "msl")"};
    parts_["target"] = kTargets[pick(4)];
    parts_["reflection"] = pick(2) == 0 ? "true" : "false";
    if (pick(2) == 0) changeWhatMatters();
    option_.clear();
    writeAll();
    const auto fresh = made("fresh", BuildOptions());
    ASSERT_EQ(made("cached", withCache()), fresh) << "change " << i;
    states.insert(fresh);
  }
  EXPECT_GT(states.size(), 5u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
