#include "benchmarks/file_cases.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>

#include "benchmarks/graph_cases.h"
#include "host/diagnostics/warnings.h"
#include "host/job/collapse_job.h"
#include "host/shader/shader_assembly.h"
#include "sfg/shader_fragment_graph_builder.h"
#include "sfg/shader_includes.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

using Json = nlohmann::ordered_json;

/// A folder of generated files; removed with this.
class Folder {
public:
  Folder()
      : path_(std::filesystem::temp_directory_path() / ("files-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directory(path_);
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  /// Answers the file's path.
  std::string write(const std::string& name, const std::string& text) const {
    const std::filesystem::path file = path_ / name;
    std::ofstream(file, std::ios::binary) << text;
    return file.string();
  }

private:
  std::filesystem::path path_;
};

/// The files of one collapse, and its options.
struct Files {
  Folder folder;
  std::string graph;
  std::optional<host::Document> environment;
  host::CollapseOptions options;
};

std::shared_ptr<const Files> writeFiles(const Json& library, const Json& graph, const Json& lights = {}) {
  auto files = std::make_shared<Files>();
  files->folder.write("generated.fraglib", library.dump(1));
  files->graph = files->folder.write("graph.json", graph.dump(1));
  if (!lights.empty()) {
    files->options.tool = host::CollapseTool::lightLoop;
    files->environment =
        host::Document::fromFile(files->folder.write("environment.json", Json{{"lights", lights}}.dump(1)));
  }
  return files;
}

Json functionOf(const std::string& prototype, const std::string& body) {
  return {{"language", {"dx11"}}, {"implementation", {prototype, "{", body, "}"}}};
}

/// A library object of `layer0`, `layer1`, .. (or from another number on), each a function with a helper and
/// a uniform of its own.
Json layerLibrary(std::size_t count, std::size_t first = 0) {
  Json library = Json::object();
  for (std::size_t i = first; i < first + count; ++i) {
    const std::string number = std::to_string(i);
    Json layer = functionOf("void layer" + number + "(float3 previous, float gain, out float3 result)",
                            "  result = previous * tint" + number + " * curve" + number + "(gain, 2.0);");
    layer["uniforms"] = {{{"name", "tint" + number}, {"type", "float3"}, {"value", {1.0, 0.5, 0.25}}}};
    layer["predefine"] = {"float curve" + number + "(float x, float k)", "{",
                          "  float a = x * x * (3.0 - 2.0 * x);",
                          "  return lerp(a, 1.0 - exp(-k * x), saturate(k));", "}"};
    library["layer" + number] = std::move(layer);
  }
  return library;
}

std::shared_ptr<const Files> writeLayers(std::size_t count) {
  Json nodes = Json::array();
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    Json inputs = {{"gain", {{"value", 0.5}}}};
    inputs["previous"] = i == 0 ? Json{{"value", {1, 1, 1}}} : Json{{"node", nodes.back()["name"]}};
    nodes.push_back(
        {{"name", "node" + number}, {"fragment", "layer" + number}, {"inputs", std::move(inputs)}});
  }
  const Json output = {{"name", "color"}, {"type", "float3"}, {"node", nodes.back()["name"]}};
  return writeFiles(layerLibrary(count), {{"outputs", {output}}, {"nodes", std::move(nodes)}});
}

/// One node of one fragment.
std::shared_ptr<const Files> writeOne(const Json& fragment, const Json& lights = {}) {
  const Json lamp = functionOf("void lamp(out float3 color)", "  color = float3(1.0, 1.0, 1.0);");
  return writeFiles({{"only", fragment}, {"lamp", lamp}},
                    {{"outputs", {{{"name", "color"}, {"type", "float"}, {"node", "only"}}}},
                     {"nodes", {{{"name", "only"}, {"fragment", "only"}}}}},
                    lights);
}

/// A job that has read libraries and documents.
std::unique_ptr<host::CollapseJob> makeJob(const Files& files) {
  const std::vector<std::string> folders = {files.folder.path().string()};
  return std::make_unique<host::CollapseJob>(
      std::make_shared<const host::LoadedLibraries>(folders, std::vector<std::string>(), "dx11"),
      host::Document::fromFile(files.graph), files.environment, files.options);
}

std::unique_ptr<host::CollapseJob> runJob(const Files& files) {
  std::unique_ptr<host::CollapseJob> job = makeJob(files);
  job->run();
  if (job->result() == nullptr) throw std::runtime_error("the collapse answered null");
  return job;
}

WString shaderOf(const host::CollapseJob& job) {
  return host::assembleShader(job, host::ShaderStage::pixel).shader.getCompleteShader();
}

/// Work on what was collapsed beforehand.
template <class Round>
Work afterCollapse(const std::shared_ptr<const Files>& files, Round round) {
  const std::shared_ptr<const host::CollapseJob> job = runJob(*files);
  Work work;
  work.round = [files, job, round] { round(*job); };
  return work;
}

Work warnOf(const std::shared_ptr<const Files>& files) {
  return afterCollapse(files, [](const host::CollapseJob& job) { host::findWarnings(job, true); });
}

Work assemble(const std::shared_ptr<const Files>& files) {
  Work work = afterCollapse(files, [](const host::CollapseJob& job) { shaderOf(job); });
  work.text = [files] { return shaderOf(*runJob(*files)); };
  return work;
}

std::vector<std::string> readLibraryFiles(const std::filesystem::path& folder) {
  std::vector<std::string> texts;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".fraglib") continue;
    std::stringstream text;
    text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
    texts.push_back(text.str());
  }
  return texts;
}

Work loadFolder(const std::filesystem::path& folder) {
  const auto texts = std::make_shared<const std::vector<std::string>>(readLibraryFiles(folder));
  Work work;
  for (const std::string& text : *texts) work.characters += static_cast<double>(text.size());
  work.round = [path = fromUtf8(folder.string())] {
    FragmentLibrary library;
    library.loadFragments(path.c_str());
  };
  work.reference = [texts] {
    for (const std::string& text : *texts) {
      [[maybe_unused]] const auto parsed = nlohmann::json::parse(text);
    }
  };
  return work;
}

/// Whose one fragment the graphs of graphText() use.
class StepLanguage {
public:
  StepLanguage() {
    library_.addFragment(L"step", L"void step(float previous, float gain, out float result)",
                         L"\tresult = previous * gain;\n", nullptr, 0);
  }
  const ILanguageTraits& traits() const { return *traits_; }

private:
  FragmentLibrary library_;
  RefPtr<host::LanguageDx11> traits_ = makeRef<host::LanguageDx11>(&library_);
};

/// A graph of `count` nodes of one fragment, each with a value of its own; wired as a chain, or not at all.
std::string graphText(std::size_t count, bool isWired) {
  std::string text = "{\n  \"nodes\": [\n";
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    text += "    { \"name\": \"n" + number + R"(", "fragment": "step", "inputs": { )";
    if (isWired && i != 0) {
      text += R"("previous": { "node": "n)" + std::to_string(i - 1) + R"(", "output": "result" }, )";
    }
    text += R"("gain": { "value": 0.)" + number + (i + 1 < count ? " } } },\n" : " } } }\n");
  }
  return text + "  ]\n}\n";
}

/// A chain of a host's own nodes.
class ChainNode : public RefCounted<INodeAccessor> {
public:
  explicit ChainNode(const ChainNode* previous) : previous_(previous) {}
  const wchar_t* getFragmentName() const override { return L"step"; }
  std::size_t getNumInputs() const override { return 2; }
  const AParameter* getInput(std::size_t index) const override { return inputs_[index].get(); }
  bool getInputConnection(std::size_t index, const INodeAccessor*& source,
                          std::size_t& output) const override {
    if (index != 0 || previous_ == nullptr) return false;
    source = previous_;
    output = 0;
    return true;
  }
  std::size_t getNumOutputs() const override { return 1; }
  const AParameter* getOutput(std::size_t) const override { return output_.get(); }

private:
  const ChainNode* previous_;
  RefPtr<AParameter> inputs_[2] = {makeRef<AParameter>(TypeID_float, WString(L"previous")),
                                   makeRef<AParameter>(TypeID_float, WString(L"gain"))};
  RefPtr<AParameter> output_ = makeRef<AParameter>(TypeID_float, WString(L"result"));
};

class ChainGraph : public RefCounted<IGraphAccessor> {
public:
  explicit ChainGraph(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      nodes_.push_back(makeRef<ChainNode>(nodes_.empty() ? nullptr : nodes_.back().get()));
    }
  }
  std::size_t getNumInputs() const override { return 0; }
  const AParameter* getInput(std::size_t) const override { return nullptr; }
  std::size_t getNumOutputs() const override { return 0; }
  const AParameter* getOutput(std::size_t) const override { return nullptr; }
  bool getOutputConnection(std::size_t, const INodeAccessor*&, std::size_t&) const override { return false; }
  std::size_t getNumNodes() const override { return nodes_.size(); }
  const INodeAccessor* getNode(std::size_t index) const override { return nodes_[index].get(); }

private:
  std::vector<RefPtr<ChainNode>> nodes_;
};

}  // namespace

std::vector<std::filesystem::path> exampleFiles() {
  std::vector<std::filesystem::path> files;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator("examples/materials", missing)) {
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

Work makeExample(const std::filesystem::path& file) {
  const auto libraries = std::make_shared<const host::LoadedLibraries>(
      std::vector<std::string>{"library"}, std::vector<std::string>{"library"}, "dx11");
  const host::LanguageDx11& language = libraries->language();
  const auto environment = host::loadEnvironment("examples/environments/studio.json", language);
  GraphCase example;
  example.graph = host::buildGraph(*host::loadGraphDocument(file.string(), language), language);
  example.options =
      makeRef<host::ShaderOptions>(language.getLanguageString(), 100.0f, 100.0f, environment.get());
  example.environment = environment;
  example.language = &language;
  example.lightLoop = true;
  example.fragments = example.graph->getNumFragments() + environment->getNumLights();
  Work work = collapseWork(std::move(example));
  work.round = [libraries, round = work.round] { round(); };
  return work;
}

Work loadStandardLibrary(std::size_t) {
  static const bool isRegistered = (ShaderIncludes::Singleton().addIncludePath(L"library"), true);
  static_cast<void>(isRegistered);
  return loadFolder("library");
}

Work loadGeneratedLibrary(std::size_t fragments) {
  const auto files = writeFiles(layerLibrary(fragments), Json::object());
  Work work = loadFolder(files->folder.path());
  work.round = [files, round = work.round] { round(); };
  return work;
}

Work readGraph(std::size_t nodes) {
  const auto text = std::make_shared<const std::string>(graphText(nodes, true));
  const auto folder = std::make_shared<const Folder>();
  const auto step = std::make_shared<const StepLanguage>();
  Work work;
  work.round = [folder, step, file = folder->write("graph.json", *text)] {
    host::loadGraphDocument(file, step->traits());
  };
  work.reference = [text] { [[maybe_unused]] const auto parsed = nlohmann::json::parse(*text); };
  work.characters = static_cast<double>(text->size());
  work.fragments = nodes;
  return work;
}

Work buildUnusedNodes(std::size_t nodes) {
  const std::string text = graphText(nodes, false);
  const auto folder = std::make_shared<const Folder>();
  const auto step = std::make_shared<const StepLanguage>();
  Work work;
  work.round = [folder, step, file = folder->write("graph.json", text)] {
    const auto document = host::loadGraphDocument(file, step->traits());
    host::buildGraph(*document, step->traits());
  };
  work.characters = static_cast<double>(text.size());
  work.fragments = nodes;
  return work;
}

Work loadLargeLibrary(std::size_t fragments) {
  constexpr std::size_t kFragmentsPerFile = 1000;
  const auto folder = std::make_shared<const Folder>();
  Work work;
  for (std::size_t first = 0; first < fragments; first += kFragmentsPerFile) {
    const std::string text = layerLibrary(kFragmentsPerFile, first).dump(1);
    folder->write(std::to_string(first) + ".fraglib", text);
    work.characters += static_cast<double>(text.size());
  }
  work.round = [folder, last = formatted(L"layer%Iu", fragments - 1)] {
    FragmentLibrary library;
    library.loadFragments(fromUtf8(folder->path().string()).c_str());
    if (library.acquireFragment(last.c_str()) == nullptr) throw std::runtime_error("a fragment is missing");
  };
  work.fragments = fragments;
  return work;
}

Work buildHostGraph(std::size_t nodes) {
  const auto library = std::make_shared<FragmentLibrary>();
  library->addFragment(L"step", L"void step(float previous, float gain, out float result)",
                       L"\tresult = previous * gain;\n", nullptr, 0);
  const auto language = makeRef<host::LanguageDx11>(library.get());
  const auto graph = makeRef<ChainGraph>(nodes);
  Work work;
  work.round = [library, language, graph] {
    AShaderFragmentGraphBuilder builder;
    const RefPtr<AShaderFragmentGraph> built(builder.build(language.get(), graph.get()));
  };
  work.fragments = nodes;
  return work;
}

Work filesToShader(std::size_t fragments) {
  const auto files = writeLayers(fragments);
  Work work;
  work.text = [files] { return shaderOf(*runJob(*files)); };
  work.round = work.text;
  work.fragments = fragments;
  return work;
}

Work readFiles(std::size_t fragments) {
  const auto files = writeLayers(fragments);
  Work work;
  work.round = [files] { makeJob(*files); };
  work.fragments = fragments;
  return work;
}

Work buildFromFiles(std::size_t fragments) {
  Work work = afterCollapse(writeLayers(fragments), [](const host::CollapseJob& job) {
    host::buildGraph(job.document(), job.libraries().language());
  });
  work.fragments = fragments;
  return work;
}

Work collapseFromFiles(std::size_t fragments) {
  const auto files = writeLayers(fragments);
  const std::shared_ptr<const host::CollapseJob> job = runJob(*files);
  GraphCase graphCase;
  graphCase.graph = job->graph();
  graphCase.environment = &job->environment();
  graphCase.options = &job->options();
  graphCase.language = &job->libraries().language();
  graphCase.fragments = fragments;
  Work work = collapseWork(std::move(graphCase));
  work.round = [job, round = work.round] { round(); };
  return work;
}

Work assembleFromFiles(std::size_t fragments) {
  Work work = assemble(writeLayers(fragments));
  work.fragments = fragments;
  return work;
}

Work warnOfStructures(std::size_t count) {
  Json fragment = functionOf("void only(float a, out float result)", "  result = a;");
  for (std::size_t i = 0; i < count; ++i) {
    fragment["predefine"].push_back("struct Part" + std::to_string(i) + " { float value; };");
  }
  return warnOf(writeOne(fragment));
}

Work warnOfHelpers(std::size_t count) {
  Json fragment = functionOf("void only(float a, out float result)", "  result = a;");
  for (std::size_t i = 0; i < count; ++i) {
    fragment["predefine"].push_back("float helper" + std::to_string(i) + "(float x) { return x; }");
  }
  return warnOf(writeOne(fragment));
}

Work warnOfProfiles(std::size_t count) {
  Json profiles = Json::array({functionOf("void only(float a, out float result)", "  result = a;")});
  Json lights = Json::array();
  for (std::size_t i = 0; i < count; ++i) {
    const std::string name = "Lamp" + std::to_string(i);
    profiles.push_back(
        functionOf("void only(float a, out float result)", "  result = sfg_currentLight.x * a;"));
    profiles.back()["name"] = name;
    lights.push_back({{"name", "light" + std::to_string(i)}, {"fragment", "lamp"}, {"profile", name}});
  }
  return warnOf(writeOne({{"profiles", std::move(profiles)}}, lights));
}

Work assembleStructures(std::size_t count) {
  Json fragment = functionOf("void only(float a, out float result)", "  result = a;");
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    fragment["predefine"].push_back("struct Part" + number + " { float value; };");
    fragment["uniforms"].push_back(
        {{"name", "part" + number}, {"type", "struct"}, {"struct", "Part" + number}});
  }
  return assemble(writeOne(fragment));
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks
