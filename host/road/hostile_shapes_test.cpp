// Documents that somebody wrote to exhaust the host: each ends in bounded time and memory, or is refused.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <new>
#include <optional>
#include <string>

#include "sfg/host/job.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// Of processor time: many times what is needed, so that it tells what never ends.
constexpr rlim_t kSeconds = 60;
constexpr rlim_t kMemory = rlim_t{1} << 30;

/// `part` for each number below `count`, with the number for every `#`.
std::string repeated(std::size_t count, const std::string& part, const std::string& separator = ",") {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    if (i != 0) text += separator;
    for (const char c : part) text += c == '#' ? std::to_string(i) : std::string(1, c);
  }
  return text;
}

struct Shape {
  std::string library =
      R"json({ "f": { "language": ["dx11"], "implementation": ["void f(float a, out float r)", "{ r = a; }"] } })json";
  std::string graph =
      R"({ "outputs": [ { "name": "o", "type": "float", "node": "n" } ], "nodes": [ { "name": "n", "fragment": "f" } ] })";
  std::string environment = R"({ "lights": [] })";
  std::string include;
  std::optional<CollapseTool> tool;
};

Shape withLibrary(const std::string& members,
                  const std::string& code = R"json("void f(float a, out float r)", "{ r = a; }")json") {
  Shape shape;
  shape.library =
      R"({ "f": { "language": ["dx11"], )" + members + R"("implementation": [ )" + code + " ] } }";
  return shape;
}

Shape withGraph(const std::string& members, const std::string& nodes = {}) {
  Shape shape;
  shape.graph = R"({ "outputs": [ { "name": "o", "type": "float", "node": "n" } ], )" + members +
                R"("nodes": [ { "name": "n", "fragment": "f" })" + nodes + " ] }";
  return shape;
}

Shape graphInputs(std::size_t count) {
  return withGraph(R"("inputs": [ )" + repeated(count, R"({"name":"i#","type":"float"})") + " ], ");
}
Shape uniforms(std::size_t count) {
  return withGraph(R"("uniforms": [ )" + repeated(count, R"({"name":"i#","type":"float"})") + " ], ");
}
Shape unusedNodes(std::size_t count) {
  return withGraph({}, "," + repeated(count, R"({"name":"u#","fragment":"f"})"));
}
Shape fragmentUniforms(std::size_t count) {
  return withLibrary(R"("uniforms": [ )" + repeated(count, R"({"name":"u#","type":"float"})") + " ], ");
}
Shape ports(std::size_t count) {
  return withLibrary({},
                     "\"void f(" + repeated(count, "float p#") + R"json(, out float r)", "{ r = p0; }")json");
}
Shape missingIncludes(std::size_t count) {
  return withLibrary(R"("includes": [ )" + repeated(count, R"("i#.h")") + " ], ");
}
Shape includesOfAFile(std::size_t count) {
  Shape shape = withLibrary(R"("includes": [ "all.h" ], )");
  for (std::size_t i = 0; i < count; ++i) shape.include += "#include \"i" + std::to_string(i) + ".h\"\n";
  return shape;
}
Shape functionsOfAFile(std::size_t count) {
  Shape shape = withLibrary(R"("includes": [ "all.h" ], )");
  shape.include = repeated(count, "float f#(float x)\n{\n  return x * #;\n}\n", {});
  return shape;
}
Shape macrosOfAFile(std::size_t count) {
  Shape shape = withLibrary(R"("includes": [ "all.h" ], )");
  shape.include = repeated(count, "#define M_$ 1 // of many\n", {});
  for (char& c : shape.include) c = c == '$' ? 'x' : c;
  return shape;
}
Shape lights(std::size_t count) {
  Shape shape;
  shape.environment = R"({ "lights": [ )" + repeated(count, R"({"name":"l#","fragment":"f"})") + " ] }";
  return shape;
}
Shape longName(std::size_t length) {
  const std::string name(length, 'x');
  Shape shape;
  shape.graph = R"({ "outputs": [ { "name": "o", "type": "float", "node": ")" + name +
                R"(" } ], "nodes": [ { "name": ")" + name + R"(", "fragment": "f" } ] })";
  return shape;
}
Shape overlongUtf8(std::size_t count) {
  return withGraph("\"//\": \"" + repeated(count, "\xC0\xAF\xE0\x80\xAF\xED\xA0\x80", {}) + "\", ");
}

Shape outputs(std::size_t count) {
  Shape shape;
  shape.graph = R"({ "outputs": [ )" + repeated(count, R"({"name":"o#","type":"float","node":"n"})") +
                R"( ], "nodes": [ { "name": "n", "fragment": "f" } ] })";
  return shape;
}
Shape levelsOfDetail(std::size_t count) {
  Shape shape;
  shape.library =
      R"({ "f": { "profiles": [ )" +
      repeated(
          count,
          R"json({"name":"default","lod":#,"language":["dx11"],"implementation":["void f(float a, out float r)","{ r = a; }"]})json") +
      " ] } }";
  return shape;
}
Shape namedProfiles(std::size_t count) {
  Shape shape;
  shape.library =
      R"({ "f": { "profiles": [ )" +
      repeated(
          count,
          R"json({"name":"p#","language":["dx11"],"implementation":["void f(float a, out float r)","{ r = a; }"]})json") +
      R"json(, {"name":"default","language":["dx11"],"implementation":["void f(float a, out float r)","{ r = a; }"]} ] } })json";
  return shape;
}
/// Nodes behind each other, the last one first.
Shape chain(std::size_t count) {
  Shape shape;
  shape.graph = R"({ "outputs": [ { "name": "o", "type": "float", "node": "n)" + std::to_string(count) +
                R"(" } ], "nodes": [ )";
  for (std::size_t i = count; i > 0; --i) {
    shape.graph += R"({"name":"n)" + std::to_string(i) + R"(","fragment":"f","inputs":{"a":{"node":"n)" +
                   std::to_string(i - 1) + "\"}}},";
  }
  shape.graph += R"({"name":"n0","fragment":"f"} ] })";
  return shape;
}
/// Each node takes the one before twice.
Shape doubling(std::size_t count, const std::string& members, const std::string& code,
               const std::string& node) {
  Shape shape;
  shape.library =
      R"json({ "s": { "language": ["dx11"], "implementation": ["void s(out float r)", "{ r = 1; }"] },
    "f": { "language": ["dx11"], )json" +
      members + R"("implementation": [ )" + code + " ] } }";
  shape.graph = R"({ "outputs": [ { "name": "o", "type": "float", "node": "n)" + std::to_string(count) +
                R"(" } ], "nodes": [ { "name": "n0", "fragment": "s" })";
  for (std::size_t i = 1; i <= count; ++i) {
    const std::string before = R"({"node":"n)" + std::to_string(i - 1) + "\"}";
    shape.graph += R"(, {"name":"n)" + std::to_string(i) + R"(","fragment":"f","inputs":{"a":)" + before +
                   ",\"b\":" + before + "}" + node + "}";
  }
  shape.graph += " ] }";
  return shape;
}
Shape doublingCalls(std::size_t count) {
  return doubling(count, {}, R"json("void f(float a, float b, out float r)", "{ r = a + b; }")json", {});
}
Shape doublingExpressions(std::size_t count) {
  return doubling(
      count, R"("mode": "inline", )", R"("{{a}} + {{b}}")",
      R"(, "interface": { "inputs": [ {"name":"a","type":"float"}, {"name":"b","type":"float"} ], "outputs": [ {"name":"r","type":"float"} ] })");
}
Shape doublingShaderFunctions(std::size_t count) {
  return doubling(
      count, {},
      R"json("void f(float a, float b, out float r)", "{", "float t;", "sfg_shader(a, t);", "sfg_shader(b, r);", "r += t;", "}")json",
      {});
}
Shape litSurface(std::size_t lights) {
  Shape shape;
  shape.library = R"json({
    "l": { "name": "L", "language": ["dx11"], "predefine": ["struct L { float3 c; };"],
      "implementation": ["void l(float3 tint, out L light)", "{ light.c = tint; }"] },
    "f": { "name": "L", "language": ["dx11"],
      "implementation": ["void f(float3 a, out float r)", "{ r = sfg_currentLight.c.x * a.x; }"] } })json";
  shape.environment =
      R"({ "lights": [ )" + repeated(lights, R"({"name":"l#","fragment":"l","profile":"L"})") + " ] }";
  shape.tool = CollapseTool::lightLoop;
  return shape;
}
Shape nestedLists(std::size_t count) {
  return withGraph("\"//\": " + std::string(count, '[') + std::string(count, ']') + ", ");
}
Shape wordsWithoutEnd(std::size_t count) {
  return withLibrary({},
                     "\"void f(float a, out float r)\", \"{ r = " + repeated(count, "(", {}) + "a;\", \"}\"");
}

/// What becomes of it: the first thing that is told, or nothing.
std::string outcomeOf(const std::filesystem::path& folder, const Shape& shape) {
  try {
    const auto libraries = LibrarySet::load({{folder}, {folder}});
    for (const Diagnostic& problem : libraries->problems())
      if (problem.severity == Severity::error)
        return problem.place().substr(folder.string().size() + 1) + ": " + problem.text;
    CollapseOptions options;
    if (shape.tool) options.tool = *shape.tool;
    Job job(libraries, Document::fromText(shape.graph, "graph"), options,
            Document::fromText(shape.environment, "environment"));
    job.collapse();
    static_cast<void>(job.warnings());
    static_cast<void>(job.reflect());
    return {};
  } catch (const InputError& error) {
    return error.place() + ": " + error.what();
  } catch (const std::bad_alloc&) {
    return "it ran out of memory";
  } catch (const std::exception& error) {
    return error.what();
  }
}

struct Outcome {
  std::string told;
  double seconds = 0;       ///< of processor time
  long long mebibytes = 0;  ///< of memory, at most
};

/// The same in a process that may use so much and no more.
Outcome outcomeWithinLimits(const std::filesystem::path& folder, const Shape& shape) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return {"no pipe"};
  const pid_t child = fork();
  if (child == 0) {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t memory = kMemory + pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
    const rlimit memoryLimit{memory, memory};
    const rlimit timeLimit{kSeconds, kSeconds};
    bool isSent = setrlimit(RLIMIT_AS, &memoryLimit) == 0 && setrlimit(RLIMIT_CPU, &timeLimit) == 0;
    const std::string outcome = outcomeOf(folder, shape).substr(0, 1000);
    isSent = isSent && write(ends[1], outcome.data(), outcome.size()) == static_cast<ssize_t>(outcome.size());
    _exit(isSent ? 0 : 1);
  }
  close(ends[1]);
  Outcome outcome;
  std::array<char, 1000> bytes{};
  for (ssize_t count = 0; (count = read(ends[0], bytes.data(), bytes.size())) > 0;)
    outcome.told.append(bytes.data(), static_cast<std::size_t>(count));
  close(ends[0]);
  int status = 0;
  rusage used{};
  if (child < 0 || wait4(child, &status, 0, &used) != child) return {"no process"};
  if (WIFSIGNALED(status)) outcome.told = "it was ended by signal " + std::to_string(WTERMSIG(status));
  if (WIFEXITED(status) && WEXITSTATUS(status) != 0) outcome.told = "the limits cannot be set";
  outcome.seconds =
      static_cast<double>(used.ru_utime.tv_sec) + static_cast<double>(used.ru_utime.tv_usec) * 1e-6;
  outcome.mebibytes = used.ru_maxrss >> 10;
  return outcome;
}

struct HostileCase {
  const char* name;
  Shape (*make)(std::size_t count);
  std::size_t count;
  const char* told = "";
  bool hasPlace = true;
};
std::ostream& operator<<(std::ostream& out, const HostileCase& shape) { return out << shape.name; }

constexpr const char* kTooManyValues =
    "expected at most 2000000 values (objects, arrays, texts, numbers) in one document: split it";

class HostileShapesTest : public testing::TestWithParam<HostileCase> {
protected:
  HostileShapesTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_hostile_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~HostileShapesTest() override { std::filesystem::remove_all(folder_); }

  std::filesystem::path folder_;
};

TEST_P(HostileShapesTest, EndsOrIsRefused) {
  const Shape shape = GetParam().make(GetParam().count);
  std::ofstream(folder_ / "lib.fraglib") << shape.library;
  std::ofstream(folder_ / "all.h") << shape.include;
  const auto [outcome, seconds, mebibytes] = outcomeWithinLimits(folder_, shape);
  std::cout << seconds << " s, " << mebibytes << " MiB: " << (outcome.empty() ? "done" : outcome)
            << std::endl;
  const std::string expected = GetParam().told;
  if (expected.empty()) {
    EXPECT_EQ(outcome, "");
  } else {
    // "FILE:LINE:COLUMN: what is told"
    EXPECT_TRUE(outcome.ends_with(expected)) << outcome;
    EXPECT_EQ(outcome.find(":1:") != outcome.npos, GetParam().hasPlace) << outcome;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, HostileShapesTest,
    testing::Values(
        HostileCase{"GraphInputs", graphInputs, 1'000'000, kTooManyValues},
        HostileCase{"FewerGraphInputs", graphInputs, 300'000},
        HostileCase{"Uniforms", uniforms, 1'000'000, kTooManyValues},
        HostileCase{"FewerUniforms", uniforms, 300'000},
        HostileCase{"UnusedNodes", unusedNodes, 1'000'000, kTooManyValues},
        HostileCase{"FewerUnusedNodes", unusedNodes, 300'000},
        HostileCase{"UniformsOfAFragment", fragmentUniforms, 1'000'000, kTooManyValues},
        HostileCase{"FewerUniformsOfAFragment", fragmentUniforms, 300'000},
        HostileCase{"Ports", ports, 1'000'000, "a function has at most 100000 parameters: give it fewer"},
        HostileCase{"FewerPorts", ports, 90'000},
        HostileCase{"MissingIncludes", missingIncludes, 3'000'000, kTooManyValues},
        HostileCase{"FewerMissingIncludes", missingIncludes, 300'000},
        HostileCase{"MissingIncludesOfAFile", includesOfAFile, 300'000},
        HostileCase{"FunctionsOfAFile", functionsOfAFile, 250'000},
        HostileCase{"MacrosOfAFile", macrosOfAFile, 1'000'000},
        HostileCase{"Lights", lights, 300'000, "300000 lights are too many; at most 100000 can be written"},
        HostileCase{"FewerLights", lights, 100'000}, HostileCase{"NamesOfTenMegabytes", longName, 10'000'000},
        HostileCase{"OverlongUtf8", overlongUtf8, 500'000},
        HostileCase{"Outputs", outputs, 300'000,
                    "the outputs need 300000 render targets; a pixel stage has 8", false},
        HostileCase{"LevelsOfDetail", levelsOfDetail, 200'000},
        HostileCase{"NamedProfiles", namedProfiles, 200'000}, HostileCase{"Chain", chain, 100'000},
        HostileCase{"DoublingCalls", doublingCalls, 1000},
        HostileCase{"DoublingExpressions", doublingExpressions, 1000, "the generated code is too large!",
                    false},
        HostileCase{"DoublingShaderFunctions", doublingShaderFunctions, 1000,
                    "the generated code is too large!", false},
        HostileCase{"LitSurface", litSurface, 50'000},
        HostileCase{"NestedLists", nestedLists, 1'000'000,
                    "expected at most 256 levels of arrays and objects"},
        HostileCase{"OpenParentheses", wordsWithoutEnd, 1'000'000}),
    testing::PrintToStringParamName());

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
