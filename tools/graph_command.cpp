#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kNotes =
    "Example:\n\n"
    "  sfg graph brick.json -o brick.svg\n"
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
    declareOutputOption(app(), output_);
    app().footer(kNotes);
  }

  int run(Diagnostics& diagnostics) override {
    checkOutputs(options_, {output_});
    ReadJob read = makeJob(options_, diagnostics);
    host::Job& job = read.job;
    if (collapse(job, false, diagnostics) != Outcome::done) return kRefused;
    const std::string dot = job.drawing(std::filesystem::path(options_.graphFile).filename().string());
    const bool isSvg =
        format_ == DrawingFormat::svg || (format_ == DrawingFormat::byName && output_.ends_with(".svg"));
    writeOutput(output_, isSvg ? layOut(dot) : dot);
    return kDone;
  }

private:
  JobOptions options_;
  DrawingFormat format_ = DrawingFormat::byName;
  std::string output_;
};

}  // namespace

std::unique_ptr<Command> makeGraphCommand(CLI::App& parent) { return std::make_unique<GraphCommand>(parent); }

}  // namespace TolmSDK::Graphics::sfg::tools
