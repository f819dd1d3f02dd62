#include <algorithm>
#include <charconv>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <unordered_map>
#include <utility>

#include "host/build/graph_search.h"
#include "host/build/output_names.h"
#include "host/documents/document_reader.h"
#include "host/documents/keys.h"
#include "host/documents/near_name.h"
#include "sfg/host/build.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;

template <class Number>
std::string shortest(Number number) {
  char text[64];
  const auto [end, error] = std::to_chars(std::begin(text), std::end(text), number);
  return std::string(std::begin(text), end);
}

struct TargetChoice {
  std::optional<ShaderTarget> target;
  CompileOptions options;
};
/// In the order of kTargetWords.
constexpr TargetChoice kTargets[] = {
    {std::nullopt, {}},       {ShaderTarget::spirv, {}},
    {ShaderTarget::hlsl, {}}, {ShaderTarget::hlsl, {.shaderModel = ShaderModel::sm60}},
    {ShaderTarget::glsl, {}}, {ShaderTarget::glsl, {.glslVersion = GlslVersion::glsl330}},
    {ShaderTarget::essl, {}}, {ShaderTarget::essl300, {}},
    {ShaderTarget::msl, {}},
};
static_assert(std::size(kTargets) == std::size(kTargetWords));

/// In the order of kStageWords.
constexpr ShaderStage kStages[] = {ShaderStage::pixel, ShaderStage::compute, ShaderStage::vertex};
static_assert(std::size(kStages) == std::size(kStageWords));

/// In the order of kMeshWords; a position goes without saying.
constexpr bool MeshLayout::*kMeshParts[] = {nullptr,
                                            &MeshLayout::normal,
                                            &MeshLayout::tangent,
                                            &MeshLayout::texCoord0,
                                            &MeshLayout::texCoord1,
                                            &MeshLayout::texCoord2,
                                            &MeshLayout::texCoord3,
                                            &MeshLayout::color};
static_assert(std::size(kMeshParts) == std::size(kMeshWords));

/// A set of values of node inputs, and what names call it.
struct ConstantSet {
  std::string name;
  std::vector<NodeConstant> constants;
};

/// What one object of "shaders" asks for. Every list holds something.
struct ShaderSet {
  std::vector<FoundGraph> graphs;
  std::vector<std::string> environments;
  std::vector<ConstantSet> constants;
  std::vector<float> surfaceLods;
  std::vector<float> lightLods;
  std::vector<std::size_t> stages;   ///< indexes of kStageWords
  std::vector<std::size_t> targets;  ///< indexes of kTargetWords
  BuildTask task;                    ///< all else
  bool reflects = false;
  std::string pattern;
};

/// Reads one manifest. Paths are relative to its file.
class ManifestReader {
public:
  ManifestReader(const Document& document, const PlanOptions& options)
      : reader_(document), options_(options), base_(fs::path(document.name()).parent_path()) {
    if (document.isFile()) plan_.files.push_back(document.name());
    if (!document.isFile()) base_.clear();
  }

  BuildPlan read() {
    reader_.checkKeys(manifestKeys());
    plan_.problems = reader_.problems();
    plan_.language = options_.language;
    readFolders();
    readOutputFolder();
    const IObjectDataNode* const sets = reader_.optionalArray(reader_.root(), L"shaders");
    if (sets == nullptr) reader_.refuse(Finding::missingKey, reader_.root(), "`shaders` is missing");
    for (std::size_t i = 0; i < sets->size(); ++i) addShaders(reader_.objectAt(*sets, i));
    if (plan_.tasks.empty()) reader_.refuse(Finding::wrongValue, *sets, "no shaders are asked for");
    tidy(plan_.searched);
    return std::move(plan_);
  }

private:
  static void tidy(std::vector<std::string>& names) {
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
  }

  std::string pathOf(std::string_view text) const {
    const std::string path = (base_ / fs::path(text)).lexically_normal().string();
    return path.size() > 1 && path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
  }

  void readFolders() {
    const std::vector<fs::path> libraries = folders(L"libraries");
    const bool hasIncludes = reader_.root().member(L"includes") != nullptr;
    append(plan_.folders.libraries, libraries, options_.folders.libraries);
    append(plan_.folders.includes, hasIncludes ? folders(L"includes") : libraries, options_.folders.includes);
  }

  std::vector<fs::path> folders(std::wstring_view key) const {
    std::vector<fs::path> paths;
    const IObjectDataNode* const names = reader_.optionalArray(reader_.root(), key);
    for (std::size_t i = 0; names != nullptr && i < names->size(); ++i) {
      const std::string path = pathOf(toUtf8(reader_.nameAt(*names, i)));
      std::error_code error;
      if (!fs::is_directory(path, error)) {
        reader_.refuse(Finding::unknownFolder, *names->elementOrNull(i),
                       "there is no folder " + inTicks(path));
      }
      paths.emplace_back(path);
    }
    return paths;
  }

  template <class... Lists>
  static void append(std::vector<fs::path>& all, const Lists&... lists) {
    (all.insert(all.end(), lists.begin(), lists.end()), ...);
  }

  void readOutputFolder() {
    const std::string_view given = reader_.optionalUtf8(reader_.root(), L"output");
    plan_.outputFolder = options_.outputFolder;
    if (plan_.outputFolder.empty()) plan_.outputFolder = pathOf(given.empty() ? "shaders" : given);
  }

  void addShaders(const IObjectDataNode& object) {
    ShaderSet set;
    readGraphs(object, set);
    readEnvironments(object, set);
    readConstants(object, set);
    set.surfaceLods = levels(object, L"surfaceLods");
    set.lightLods = levels(object, L"lightLods");
    set.stages = words(object, L"stages", kStageWords, 0);
    set.targets = words(object, L"targets", kTargetWords, 1);
    readOptions(object, set);
    readPattern(object, set);
    expand(object, set);
  }

  void readGraphs(const IObjectDataNode& object, ShaderSet& set) {
    const IObjectDataNode* const graphs = reader_.optionalArray(object, L"graphs");
    if (graphs == nullptr) reader_.refuse(Finding::missingKey, object, "`graphs` is missing");
    for (std::size_t i = 0; i < graphs->size(); ++i) {
      GraphSearch search = findGraphs(pathOf(toUtf8(reader_.nameAt(*graphs, i))));
      if (!search.fault.empty())
        reader_.refuse(Finding::unreadableFile, *graphs->elementOrNull(i), search.fault);
      set.graphs.insert(set.graphs.end(), search.graphs.begin(), search.graphs.end());
      plan_.searched.insert(plan_.searched.end(), search.searched.begin(), search.searched.end());
    }
  }

  void readEnvironments(const IObjectDataNode& object, ShaderSet& set) {
    const IObjectDataNode* const names = reader_.optionalArray(object, L"environments");
    for (std::size_t i = 0; names != nullptr && i < names->size(); ++i) {
      const IObjectDataNode& name = *names->elementOrNull(i);
      if (name.kind() != NodeKind::string) reader_.refuse(Finding::wrongKind, name, "expected a string");
      const std::string path = name.asString().empty() ? std::string() : pathOf(name.asUtf8());
      std::error_code error;
      if (!path.empty() && !fs::exists(path, error))
        reader_.refuse(Finding::unreadableFile, name, inTicks(path) + " does not exist");
      set.environments.push_back(path);
    }
    if (set.environments.empty()) set.environments.emplace_back();
  }

  void readConstants(const IObjectDataNode& object, ShaderSet& set) {
    const IObjectDataNode* const sets = reader_.optionalArray(object, L"constants");
    for (std::size_t i = 0; sets != nullptr && i < sets->size(); ++i) {
      const IObjectDataNode& one = reader_.objectAt(*sets, i);
      ConstantSet constants;
      constants.name = toUtf8(reader_.requiredName(one, L"name"));
      const IObjectDataNode* const values = reader_.optionalObject(one, L"values");
      if (values == nullptr) reader_.refuse(Finding::missingKey, one, "`values` is missing");
      for (std::size_t k = 0; k < values->size(); ++k) {
        if (!isCommentKey(values->memberName(k))) constants.constants.push_back(constantAt(*values, k));
      }
      set.constants.push_back(std::move(constants));
    }
    if (set.constants.empty()) set.constants.emplace_back();
  }

  /// The node's name ends at the first dot.
  NodeConstant constantAt(const IObjectDataNode& values, std::size_t index) const {
    const std::string name = toUtf8(values.memberName(index));
    const std::size_t dot = name.find('.');
    if (dot == name.npos || dot == 0 || dot + 1 == name.size()) {
      reader_.refuseMember(Finding::badName, values, index,
                           inTicks(name) + " names no input of a node; expected `node.input`");
    }
    return {name.substr(0, dot), name.substr(dot + 1), valueOf(*values.elementOrNull(index))};
  }

  Value valueOf(const IObjectDataNode& node) const {
    if (node.kind() == NodeKind::boolean) return node.asBool();
    if (node.kind() == NodeKind::number) return node.asNumber();
    std::vector<double> numbers;
    for (std::size_t i = 0; node.kind() == NodeKind::array && i < node.size(); ++i) {
      if (node.elementOrNull(i)->kind() != NodeKind::number) break;
      numbers.push_back(node.element(i)->asNumber());
    }
    if (node.kind() != NodeKind::array || numbers.size() != node.size()) {
      reader_.refuse(Finding::wrongKind, node, "expected `true`, `false`, a number, or an array of numbers");
    }
    return numbers;
  }

  std::vector<float> levels(const IObjectDataNode& object, std::wstring_view key) const {
    const IObjectDataNode* const array = reader_.optionalArray(object, key);
    std::vector<float> levels;
    for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
      const IObjectDataNode& level = *array->elementOrNull(i);
      if (level.kind() != NodeKind::number) reader_.refuse(Finding::wrongKind, level, "expected a number");
      const auto value = static_cast<float>(level.asNumber());
      if (!(value - value == 0.0f))
        reader_.refuse(Finding::wrongValue, level, "expected a number of 32 bits");
      levels.push_back(value);
    }
    if (levels.empty()) levels.push_back(100.0f);
    return levels;
  }

  std::size_t wordAt(const IObjectDataNode& node, std::span<const std::string_view> known) const {
    if (node.kind() != NodeKind::string) reader_.refuse(Finding::wrongKind, node, "expected a string");
    const std::string word(node.asUtf8());
    const auto found = std::find(known.begin(), known.end(), word);
    if (found == known.end()) {
      reader_.refuse(Finding::unknownWord, node,
                     inTicks(word) + " is not known here" +
                         knownNamesHint(word, std::vector<std::string>(known.begin(), known.end())),
                     nearestName(word, known));
    }
    return static_cast<std::size_t>(found - known.begin());
  }

  std::vector<std::size_t> words(const IObjectDataNode& object, std::wstring_view key,
                                 std::span<const std::string_view> known, std::size_t standard) const {
    const IObjectDataNode* const array = reader_.optionalArray(object, key);
    std::vector<std::size_t> indexes;
    for (std::size_t i = 0; array != nullptr && i < array->size(); ++i)
      indexes.push_back(wordAt(*array->elementOrNull(i), known));
    if (indexes.empty()) indexes.push_back(standard);
    return indexes;
  }

  std::size_t word(const IObjectDataNode& object, std::wstring_view key,
                   std::span<const std::string_view> known) const {
    const IObjectDataNode* const node = object.member(key);
    return node != nullptr ? wordAt(*node, known) : 0;
  }

  bool flag(const IObjectDataNode& object, std::wstring_view key) const {
    const IObjectDataNode* const node = object.member(key);
    if (node != nullptr && node->kind() != NodeKind::boolean)
      reader_.refuse(Finding::wrongKind, *node, inTicks(key) + " must be `true` or `false`");
    return node != nullptr && node->asBool();
  }

  void readOptions(const IObjectDataNode& object, ShaderSet& set) const {
    constexpr Optimization kOptimizations[] = {Optimization::speed, Optimization::size, Optimization::none};
    static_assert(std::size(kOptimizations) == std::size(kOptimizationWords));
    BuildTask& task = set.task;
    task.collapse.tool =
        word(object, L"tool", kToolWords) == 0 ? CollapseTool::standard : CollapseTool::lightLoop;
    task.compile.optimization = kOptimizations[word(object, L"optimize", kOptimizationWords)];
    task.compile.debug = flag(object, L"debug");
    task.names =
        word(object, L"uniformNames", kUniformNameWords) == 0 ? NameStyle::readable : NameStyle::generated;
    if (const IObjectDataNode* const parts = reader_.optionalArray(object, L"mesh")) {
      task.mesh = {false, false, false, false, false, false, false};
      for (std::size_t i = 0; i < parts->size(); ++i) {
        const std::size_t part = wordAt(*parts->elementOrNull(i), kMeshWords);
        if (kMeshParts[part] != nullptr) task.mesh.*kMeshParts[part] = true;
      }
    }
    set.reflects = flag(object, L"reflection");
    if (!task.compile.debug) return;
    for (const std::size_t target : set.targets) {
      if (kTargets[target].target == ShaderTarget::spirv) continue;
      reader_.refuse(Finding::wrongValue, *object.member(L"debug"),
                     "only modules keep names and lines, and " + inTicks(kTargetWords[target]) +
                         " is among the `targets`");
    }
  }

  void readPattern(const IObjectDataNode& object, ShaderSet& set) const {
    set.pattern = reader_.optionalUtf8(object, L"name");
    if (set.pattern.empty()) {
      set.pattern = "{graph}";
      const auto add = [&](std::size_t count, const char* placeholder) {
        if (count > 1) set.pattern.append(".{").append(placeholder).append("}");
      };
      add(set.environments.size(), "environment");
      add(set.constants.size(), "constants");
      add(set.surfaceLods.size(), "surfaceLod");
      add(set.lightLods.size(), "lightLod");
      add(set.stages.size(), "stage");
      add(set.targets.size(), "target");
      set.pattern += ".{extension}";
      return;
    }
    const IObjectDataNode& at = *object.member(L"name");
    if (const std::string unknown = unknownPlaceholder(set.pattern); !unknown.empty()) {
      reader_.refuse(Finding::unknownWord, at,
                     inTicks(unknown) + " stands for nothing in a name" +
                         knownNamesHint(unknown, placeholders()),
                     nearestName(unknown, placeholders()));
    }
  }

  void expand(const IObjectDataNode& object, const ShaderSet& set) {
    for (const FoundGraph& graph : set.graphs) {
      OutputName name;
      name.graph = graph.name;
      BuildTask task = set.task;
      task.graph = graph.file;
      for (const std::string& environment : set.environments) {
        task.environment = environment;
        name.environment = environment.empty() ? "none" : fs::path(environment).stem().string();
        for (const ConstantSet& constants : set.constants) {
          task.collapse.constants = constants.constants;
          name.constants = constants.name;
          for (const float surfaceLod : set.surfaceLods) {
            task.collapse.surfaceLod = surfaceLod;
            name.surfaceLod = shortest(surfaceLod);
            for (const float lightLod : set.lightLods) {
              task.collapse.lightLod = lightLod;
              name.lightLod = shortest(lightLod);
              addTasks(object, set, task, name);
            }
          }
        }
      }
    }
  }

  /// Every stage for every target.
  void addTasks(const IObjectDataNode& object, const ShaderSet& set, BuildTask task, OutputName name) {
    for (const std::size_t stage : set.stages) {
      task.stage = kStages[stage];
      name.stage = kStageWords[stage];
      for (const std::size_t target : set.targets) {
        task.target = kTargets[target].target;
        task.compile.glslVersion = kTargets[target].options.glslVersion;
        task.compile.shaderModel = kTargets[target].options.shaderModel;
        requireTarget(object, task);
        name.target = kTargetWords[target];
        name.extension = extensionOf(task.target);
        const std::string file = name.fill(set.pattern);
        requireInside(object, file);
        task.output = claim(object, file, task);
        if (set.reflects) task.reflection = claim(object, file + ".json", task);
        plan_.tasks.push_back(task);
      }
    }
  }

  void requireTarget(const IObjectDataNode& object, const BuildTask& task) const {
    if (!task.target) return;
    const std::string refusal = refusalOf(task.stage, *task.target, task.compile);
    if (refusal.empty()) return;
    const IObjectDataNode* const targets = object.member(L"targets");
    reader_.refuse(Finding::wrongValue, targets != nullptr ? *targets : object, refusal);
  }

  const IObjectDataNode& nameOrObject(const IObjectDataNode& object) const {
    const IObjectDataNode* const name = object.member(L"name");
    return name != nullptr ? *name : object;
  }

  void requireInside(const IObjectDataNode& object, const std::string& file) const {
    const std::string fault = outputFault(file);
    if (!fault.empty()) {
      reader_.refuse(Finding::badName, nameOrObject(object),
                     "the output name " + inTicks(file) + " " + fault);
    }
  }

  std::string claim(const IObjectDataNode& object, const std::string& file, const BuildTask& task) {
    std::string path = (fs::path(plan_.outputFolder) / file).lexically_normal().string();
    if (path == task.graph || path == task.environment) {
      reader_.refuse(Finding::cannotWrite, nameOrObject(object),
                     "the output " + inTicks(path) + " is read by this build");
    }
    const auto [place, isNew] = owners_.emplace(path, task.graph);
    if (isNew) return path;
    const std::string whose =
        place->second == task.graph
            ? "two shaders of " + inTicks(task.graph) + " have"
            : "a shader of " + inTicks(place->second) + " and one of " + inTicks(task.graph) + " have";
    reader_.refuse(Finding::repeatedName, nameOrObject(object),
                   whose + " the output " + inTicks(path) + "; `name` tells them apart");
  }

  DocumentReader reader_;
  const PlanOptions& options_;
  fs::path base_;
  BuildPlan plan_;
  std::unordered_map<std::string, std::string> owners_;  // graphs by outputs
};

}  // namespace

BuildPlan readManifest(const Document& manifest, const PlanOptions& options) {
  return ManifestReader(manifest, options).read();
}

Document makeManifest(const ManifestWords& words) {
  using Json = nlohmann::ordered_json;
  Json set = {{"graphs", words.graphs}};
  const auto add = [&](const char* key, const std::vector<std::string>& list) {
    if (!list.empty()) set[key] = list;
  };
  add("environments", words.environments);
  add("stages", words.stages);
  add("targets", words.targets);
  if (!words.tool.empty()) set["tool"] = words.tool;
  const Json manifest = {{"shaders", Json::array({set})}};
  return Document::fromText(manifest.dump(2, ' ', false, Json::error_handler_t::replace), "command line");
}

}  // namespace TolmSDK::Graphics::sfg::host
