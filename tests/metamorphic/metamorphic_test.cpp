// Random graphs of standard fragments and other graphs that mean the same: they compute the same numbers.
//
// SFG_SEED and SFG_SEEDS choose the first graph and their number.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <optional>
#include <set>

#include "tests/materialx/surface_field.h"
#include "tests/shaders/random_graph.h"

namespace shaders_test {
namespace {

using namespace TolmSDK;
using materialx_test::FieldOutput;
using materialx_test::Image;
using materialx_test::Numbers;
using materialx_test::SurfaceField;
namespace host = sfg::host;

constexpr std::uint32_t kSide = 8;
/// Of the larger of two numbers: an optimiser may add in another order.
constexpr float kTolerance = 1e-4f;

unsigned numberFrom(const char* variable, unsigned usual) {
  const char* const text = std::getenv(variable);
  return text == nullptr ? usual : static_cast<unsigned>(std::atoi(text));
}

/// A graph, what lights it, and at which level of detail.
struct Scene {
  Json graph;
  std::optional<Json> environment;
  host::CollapseOptions options;
  std::size_t level = 0;  ///< see levelBehind()
  std::vector<host::ValueSetting> settings;
};

/// Between 0 and 1, the same for equal words.
double chanceOf(const std::string& words) {
  const auto hash = std::hash<std::string>()(words);
  return static_cast<double>(hash % 10007) / 10007.0;
}

/// Planes over the pixels, one for each component; directions have the length one.
Numbers valueAt(const std::string& name, std::uint32_t column, std::uint32_t row) {
  const double u = (column + 0.5) / kSide;
  const double v = (row + 0.5) / kSide;
  Numbers numbers;
  for (const char* const component : {"x", "y", "z", "w"}) {
    numbers.push_back(2.0 * chanceOf(name + component) - 1.0 + u * chanceOf(name + component + "u") +
                      v * chanceOf(name + component + "v"));
  }
  if (name.starts_with("in_int") || name.starts_with("in_bool")) {
    for (double& number : numbers) number = std::round(3.0 * std::abs(number));
  }
  const bool isDirection = name.find("ormal") != std::string::npos ||
                           name.find("angent") != std::string::npos ||
                           name.find("irection") != std::string::npos;
  if (isDirection) {
    numbers[2] += 2.0;
    const double length = std::hypot(numbers[0], numbers[1], numbers[2]);
    numbers = {numbers[0] / length, numbers[1] / length, numbers[2] / length, 1.0};
  }
  return numbers;
}

Numbers stateValue(const std::string& name) {
  if (name == "sfg_matWorldViewProj") return {1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 0, 0.5, 0, 0, 0, 1};
  if (name.starts_with("sfg_mat")) return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  if (name == "sfg_eyePosition") return {0, 0, 5};
  if (name == "sfg_time") return {1.25};
  return {};
}

const Image& texture() {
  static const Image made = [] {
    Image image{4, 4, {}};
    for (int i = 0; i < 64; ++i) image.texels.push_back(static_cast<float>((i * 37) % 64) / 64.0f);
    return image;
  }();
  return made;
}

SurfaceField fieldOf(const Scene& scene) {
  SurfaceField field;
  field.width = field.height = kSide;
  field.isSeen = [](std::uint32_t, std::uint32_t) { return true; };
  field.at = valueAt;
  field.state = stateValue;
  field.settings = scene.settings;
  field.texture = [](const host::InterfaceOrigin&) -> const Image& { return texture(); };
  return field;
}

/// Only pictures of two dimensions are at hand here.
bool isTextured(const Usable& fragment) {
  return std::any_of(fragment.inputs.begin(), fragment.inputs.end(), [](const Usable::Port& port) {
    return port.type.starts_with("sfg_sampler") && port.type != "sfg_sampler2D";
  });
}

std::vector<FieldOutput> evaluate(const Scene& scene) {
  static const render::Device device;
  static const std::shared_ptr<const host::LibrarySet> libraries =
      host::LibrarySet::load({{"library"}, {"library"}});
  std::optional<host::Document> environment;
  if (scene.environment) environment = host::Document::fromText(scene.environment->dump(), "environment");
  host::Job job(libraries, host::Document::fromText(scene.graph.dump(), "graph"), scene.options, environment);
  job.collapse();
  return materialx_test::evaluate(device, job, fieldOf(scene));
}

bool isClose(float a, float b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return a == b || std::abs(a - b) <= kTolerance * std::max({std::abs(a), std::abs(b), 1e-3f});
}

/// How many numbers differ, and the first that does; empty when all are the same. What is no number to begin
/// with, as a smooth step between equal edges, the shading language leaves open, and compilers make of it
/// what they like.
std::string difference(const std::vector<FieldOutput>& expected, const std::vector<FieldOutput>& seen) {
  if (expected.size() != seen.size()) return "another number of outputs";
  std::string first;
  std::size_t count = 0;
  for (std::size_t i = 0; i < expected.size(); ++i) {
    for (std::size_t k = 0; k < expected[i].values.size(); ++k) {
      if (std::isnan(expected[i].values[k]) || isClose(expected[i].values[k], seen[i].values.at(k))) continue;
      if (++count == 1) {
        first = expected[i].name + "[" + std::to_string(k) + "]: " + std::to_string(expected[i].values[k]) +
                " became " + std::to_string(seen[i].values[k]);
      }
    }
  }
  return count == 0 ? first : std::to_string(count) + " differ, " + first;
}

bool hasNumbers(const std::vector<FieldOutput>& outputs) {
  return std::any_of(outputs.begin(), outputs.end(), [](const FieldOutput& output) {
    return std::any_of(output.values.begin(), output.values.end(),
                       [](auto value) { return !std::isnan(value); });
  });
}

/// Graph outputs and wires that name the node, each as a place that can be changed.
std::vector<Json*> usesOf(Json& graph, const std::string& node) {
  std::vector<Json*> uses;
  for (Json& output : graph["outputs"]) {
    if (output.at("node") == node) uses.push_back(&output["node"]);
  }
  for (Json& user : graph["nodes"]) {
    if (!user.contains("inputs")) continue;
    for (Json& input : user["inputs"]) {
      if (input.contains("node") && input.at("node") == node) uses.push_back(&input["node"]);
    }
  }
  return uses;
}

std::string nameOf(const Json& node) { return node.at("name").get<std::string>(); }

/// Every node gets a name that sorts elsewhere.
Scene renamed(Scene scene, std::mt19937& random) {
  for (Json& node : scene.graph["nodes"]) {
    const std::string name = nameOf(node);
    const std::string other = std::string(1, static_cast<char>('a' + random() % 26)) + "_" + name;
    for (Json* const use : usesOf(scene.graph, name)) *use = other;
    node["name"] = other;
  }
  return scene;
}

Scene reordered(Scene scene, std::mt19937& random) {
  Json& nodes = scene.graph["nodes"];
  std::shuffle(nodes.begin(), nodes.end(), random);
  return scene;
}

Scene withUnusedCopy(Scene scene, std::mt19937& random) {
  Json& nodes = scene.graph["nodes"];
  Json copy = nodes[random() % nodes.size()];
  copy["name"] = "unusedCopy";
  nodes.insert(nodes.begin() + static_cast<std::ptrdiff_t>(random() % nodes.size()), copy);
  return scene;
}

/// One of the users of an inline node gets a copy of its own. Unchanged without a node that has two.
Scene split(Scene scene, std::mt19937& random) {
  for (std::size_t i = 0; i < scene.graph["nodes"].size(); ++i) {
    Json copy = scene.graph["nodes"][i];
    const std::vector<Json*> uses = usesOf(scene.graph, nameOf(copy));
    if (!copy.contains("interface") || uses.size() < 2) continue;
    *uses[random() % uses.size()] = "splitCopy";
    copy["name"] = "splitCopy";
    scene.graph["nodes"].push_back(copy);
    break;
  }
  return scene;
}

/// Where the nearest profile can become another one: between any two levels of the library, in order.
std::vector<float> boundaries() {
  std::set<float> levels;
  const host::LanguageDx11& language = standardLibrary().language();
  for (const std::string& name : fragmentNames()) {
    const sfg::IShaderFragment& fragment = *language.findFragment(fromUtf8(name));
    for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i)
      levels.insert(fragment.getProfile(i)->getLOD());
  }
  std::set<float> between;
  for (const float a : levels) {
    for (const float b : levels) between.insert(0.5f * (a + b));
  }
  return {between.begin(), between.end()};
}

/// A level behind the n-th boundary, that share of the way to the next.
float levelBehind(std::size_t n, float share) {
  static const std::vector<float> all = boundaries();
  const float from = all.at(n % all.size());
  const float to = n % all.size() + 1 < all.size() ? all[n % all.size() + 1] : from + 100.0f;
  return from + share * (to - from);
}

/// Asks for a level further on, up to which nobody has another profile.
Scene atALevelOfNobody(Scene scene, std::mt19937&) {
  scene.options.surfaceLod = levelBehind(scene.level, 0.75f);
  scene.options.lightLod = levelBehind(scene.level, 0.5f);
  return scene;
}

/// A light more, whose intensity is 0. Unchanged without lights.
Scene withDarkLight(Scene scene, std::mt19937& random) {
  if (!scene.environment) return scene;
  const char* const kinds[] = {"directionalLight", "pointLight", "spotLight"};
  Json& lights = (*scene.environment)["lights"];
  lights.insert(lights.begin() + static_cast<std::ptrdiff_t>(random() % (lights.size() + 1)),
                Json{{"name", "dark"}, {"fragment", kinds[random() % 3]}, {"profile", "sfg_Light"}});
  scene.settings.push_back({"dark.light_intensity", {0.0}});
  return scene;
}

struct Change {
  const char* name;
  Scene (*apply)(Scene, std::mt19937&);
};
constexpr Change kChanges[] = {{"renamed", renamed},
                               {"reordered", reordered},
                               {"an unused copy", withUnusedCopy},
                               {"an inline node split", split},
                               {"a level of nobody", atALevelOfNobody},
                               {"a dark light", withDarkLight}};

Scene sceneOf(unsigned seed, const std::vector<Usable>& fragments) {
  RandomGraph random(seed);
  Scene scene;
  scene.graph = random.make(fragments);
  if (seed % 2 == 0) {
    scene.environment = environmentOf(1 + random.pick(3));
    scene.options.tool = host::CollapseTool::lightLoop;
  }
  scene.level = random.pick(100);
  scene.options.surfaceLod = scene.options.lightLod = levelBehind(scene.level, 0.25f);
  return scene;
}

TEST(MetamorphicTest, GraphsThatMeanTheSameComputeTheSame) {
  if (std::getenv("SFG_SKIP_VULKAN_TESTS") != nullptr) GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
  std::vector<Usable> fragments = usableFragments();
  fragments.erase(std::remove_if(fragments.begin(), fragments.end(), isTextured), fragments.end());
  ASSERT_GT(fragments.size(), 200u);
  const unsigned first = numberFrom("SFG_SEED", 1);
  const unsigned count = numberFrom("SFG_SEEDS", 10);
  std::size_t changed[std::size(kChanges)] = {};
  unsigned compared = 0;
  for (unsigned seed = first; seed < first + count; ++seed) {
    const Scene scene = sceneOf(seed, fragments);
    SCOPED_TRACE("SFG_SEED=" + std::to_string(seed));
    const std::vector<FieldOutput> expected = evaluate(scene);
    compared += hasNumbers(expected) ? 1 : 0;
    for (std::size_t i = 0; i < std::size(kChanges); ++i) {
      std::mt19937 random(seed);
      const Scene other = kChanges[i].apply(scene, random);
      if (other.graph == scene.graph && other.environment == scene.environment &&
          other.options == scene.options)
        continue;
      ++changed[i];
      EXPECT_EQ(difference(expected, evaluate(other)), "") << kChanges[i].name << "\n"
                                                           << scene.graph.dump(1) << "\n"
                                                           << other.graph.dump(1);
    }
  }
  EXPECT_GE(4 * compared, 3 * count) << "most graphs compute nothing";
  for (std::size_t i = 0; i < std::size(kChanges); ++i) {
    if (count >= 10) {
      EXPECT_GT(changed[i], 0u) << kChanges[i].name << " was never tried";
    }
  }
}

/// The comparison would see one.
TEST(MetamorphicTest, AnotherValueComputesOtherNumbers) {
  if (std::getenv("SFG_SKIP_VULKAN_TESTS") != nullptr) GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
  Scene scene;
  scene.graph = Json::parse(R"({
    "outputs": [ { "name": "wave", "type": "float", "node": "wave", "output": "result" } ],
    "nodes": [ { "name": "wave", "fragment": "valueNoise2", "inputs": { "position": { "graphInput": "in_float2" } } } ],
    "inputs": [ { "name": "in_float2", "type": "float2" } ] })");
  const std::vector<FieldOutput> expected = evaluate(scene);
  EXPECT_EQ(difference(expected, evaluate(scene)), "");
  scene.graph["nodes"][0]["inputs"]["position"] = {{"constant", {0.25, 0.75}}};
  EXPECT_NE(difference(expected, evaluate(scene)), "");
}

}  // namespace
}  // namespace shaders_test
