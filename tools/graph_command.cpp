#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>

#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/material_graph.h"
#include "tools/output_file.h"
#include "tools/pictures_part.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kGraphNotes =
    "Example:\n\n"
    "  sfg graph brick.json -o brick.svg\n"
    "  sfg graph brick.json -o brick.svg --pictures\n"
    "  sfg graph brick.json | dot -Tpng -o brick.png\n\n"
    "Each box is a node: its fragment, the profile and level of detail that wrote code, inputs on the left "
    "with "
    "the values\n"
    "that nobody wires (`= 4` is a constant, `0.5` a uniform), outputs on the right. Wires have the colour "
    "of "
    "their type.\n"
    "Orange boxes run for every light, yellow ones behind them; grey ones reach no output. Graphviz lays it "
    "out "
    "(Debian's\n"
    "package `graphviz`).\n\n"
    "Exit status: 0 done; 1 the collapse refused; 2 wrong usage or unreadable input.\n";

enum class DrawingFormat { byName, dot, svg };

/// A folder of its own, with what is in it, for as long as the object lives.
class TemporaryFolder {
public:
  TemporaryFolder() {
    std::random_device random;
    for (int attempt = 0; attempt < 100 && path_.empty(); ++attempt) {
      const auto path = std::filesystem::temp_directory_path() / ("sfg_graph_" + std::to_string(random()));
      if (std::filesystem::create_directory(path)) path_ = path;
    }
    if (path_.empty()) throw host::InputError("no temporary folder can be made");
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::filesystem::path operator/(const char* name) const { return path_ / name; }

private:
  std::filesystem::path path_;
};

/// As one word of a command line of the system's shell.
std::string quoted(const std::filesystem::path& path) {
#ifdef _WIN32
  return "\"" + path.string() + "\"";
#else
  std::string word = "'";
  for (const char c : path.string()) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return word + "'";
#endif
}

constexpr const char* kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string base64(const std::string& bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    unsigned value = 0;
    for (std::size_t k = i; k < i + 3; ++k)
      value = value << 8 | (k < bytes.size() ? static_cast<unsigned char>(bytes[k]) : 0u);
    for (std::size_t k = 0; k < 4; ++k)
      text += i + k > bytes.size() ? '=' : kBase64[value >> (18 - 6 * k) & 63];
  }
  return text;
}

/// The pictures of a drawing, as files of a folder: a drawing that is done holds them itself.
class NodePictures {
public:
  void add(const std::string& node, const std::string& png) {
    const std::string file = (folder_ / ("node" + std::to_string(files_.size()) + ".png").c_str()).string();
    std::ofstream(file, std::ios::binary) << png;
    files_[node] = file;
    data_[file] = "data:image/png;base64," + base64(png);
  }
  const std::map<std::string, std::string>& files() const { return files_; }
  /// Puts them into a drawing that names their files.
  std::string putInto(std::string svg) const {
    for (const auto& [file, data] : data_) {
      const std::string name = "\"" + file + "\"";
      for (std::size_t at = svg.find(name); at != svg.npos; at = svg.find(name, at + data.size()))
        svg.replace(at + 1, file.size(), data);
    }
    return svg;
  }

private:
  TemporaryFolder folder_;
  std::map<std::string, std::string> files_;
  std::map<std::string, std::string> data_;
};

std::string layOut(const std::string& dot) {
  const TemporaryFolder folder;
  std::ofstream(folder / "graph.dot", std::ios::binary) << dot;
  const std::string command =
      "dot -Tsvg " + quoted(folder / "graph.dot") + " -o " + quoted(folder / "graph.svg");
  const int status = std::system(command.c_str());
  std::ifstream file(folder / "graph.svg", std::ios::binary);
  const std::string svg{std::istreambuf_iterator<char>(file), {}};
  if (status != 0 || svg.empty()) {
    throw host::InputError("`dot` of Graphviz could not draw it: is the package `graphviz` installed? "
                           "(`-o NAME.dot` needs none)");
  }
  return svg;
}

class GraphCommand : public Command {
public:
  explicit GraphCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("graph", "Draw a graph: nodes, values, wires, lights")) {
    declareJobOptions(app(), options_);
    declareChoice<DrawingFormat>(
        app(), "--format",
        {{"auto", DrawingFormat::byName}, {"dot", DrawingFormat::dot}, {"svg", DrawingFormat::svg}}, format_,
        "`auto`: by the name of the output, else `dot`");
    app().add_flag("--pictures", withPictures_, "show in each node what it computes (needs an SVG)");
    declareOutputOption(app(), output_);
    app().footer(kGraphNotes);
  }

  int run(Diagnostics& diagnostics) override {
    checkName();
    checkOutputs(options_, {output_});
    const bool isSvg =
        format_ == DrawingFormat::svg || (format_ == DrawingFormat::byName && output_.ends_with(".svg"));
    if (withPictures_ && !isSvg) throw host::InputError("`--pictures` needs an SVG: `-o NAME.svg`");
    if (withPictures_ && isMaterialDocument(options_.graphFile))
      throw host::InputError("`--pictures` needs a graph: `sfg import` makes one of a MaterialX document");
    ReadJob read = makeJob(options_, diagnostics);
    host::Job& job = read.job;
    if (collapse(job, false, diagnostics) != Outcome::done) return kRefused;
    NodePictures pictures;
    if (withPictures_) paint(pictures, diagnostics);
    const std::string dot =
        job.drawing(std::filesystem::path(options_.graphFile).filename().string(), pictures.files());
    writeOutput(output_, isSvg ? pictures.putInto(layOut(dot)) : dot);
    return kDone;
  }

private:
  /// A drawing is not written under the name of another kind of picture.
  void checkName() const {
    if (format_ != DrawingFormat::byName) return;
    const std::string extension = std::filesystem::path(output_).extension().string();
    for (const char* const other : {".png", ".jpg", ".jpeg", ".pdf", ".exr", ".hdr"}) {
      if (extension == other)
        throw host::InputError("`-o " + output_ +
                               "`: expected a name that ends in `.svg` or `.dot` (`dot -Tpng` of Graphviz "
                               "draws other kinds)");
    }
  }

  /// What cannot be drawn, such as a structure, has no picture.
  void paint(NodePictures& pictures, Diagnostics& diagnostics) const {
    ThumbnailOptions thumbnails;
    thumbnails.side = 80;
    thumbnails.samples = 4;
    const auto painter =
        picturesPart().makePainter(loadLibraries(options_.libraries, diagnostics), thumbnails);
    std::ifstream file(options_.graphFile, std::ios::binary);
    const std::string graph{std::istreambuf_iterator<char>(file), {}};
    for (const std::string& node : painter->nodesOf(graph)) {
      ThumbnailRequest request{graph, options_.graphFile, options_.environmentFile, "sphere", node};
      request.collapse = options_.collapse;
      request.showsUniform = true;
      if (const auto picture = painter->paint(request)) pictures.add(node, *picture);
    }
  }

  JobOptions options_;
  DrawingFormat format_ = DrawingFormat::byName;
  std::string output_;
  bool withPictures_ = false;
};

}  // namespace

std::unique_ptr<Command> makeGraphCommand(CLI::App& parent) { return std::make_unique<GraphCommand>(parent); }

}  // namespace TolmSDK::Graphics::sfg::tools
