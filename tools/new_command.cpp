#include <filesystem>

#include "sfg/host/errors.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// A document to start from, in which `NAME` stands for the name given.
struct Start {
  const char* extension;
  const char* text;
};

constexpr Start kFragment = {".fraglib", R"json({
  "NAME": {
    "//": "A library file holds any number of fragments. Load its folder with -L. Keys that begin with // are comments.",
    "description": "What it computes, in a sentence.",
    "ports": {
      "color": { "description": "What the input is for.", "value": [0.8, 0.8, 0.8], "kind": "color", "space": "linear" },
      "amount": { "description": "How much of it: 0 none, 1 all.", "value": 0.5, "min": 0.0, "max": 1.0 },
      "result": "What comes out."
    },
    "language": ["dx11"],
    "implementation": [
      "void NAME(float3 color, float amount, out float3 result)",
      "{",
      "  result = color * amount;",
      "}"
    ]
  }
}
)json"};

constexpr Start kGraph = {".json", R"json({
  "//": "A graph: what is given, the nodes, and what is computed. `sfg list` shows the fragments that nodes may use.",
  "inputs": [
    { "name": "uv", "type": "float2" }
  ],
  "outputs": [
    { "name": "color", "type": "float3", "node": "NAME", "output": "result" }
  ],
  "nodes": [
    { "//": "an input takes a graph input, a node's output, a value that may change, or a constant",
      "name": "pattern", "fragment": "checkerPattern",
      "inputs": { "uv": { "graphInput": "uv" } } },
    { "name": "NAME", "fragment": "mixFloat3",
      "inputs": {
        "a": { "value": [0.1, 0.1, 0.1] },
        "b": { "value": [0.9, 0.8, 0.6] },
        "amount": { "node": "pattern", "output": "result" } } }
  ]
}
)json"};

constexpr Start kEnvironment = {".json", R"json({
  "//": "An environment: the lights for `--tool lightloop`. A light is a fragment; its profile is the one of that name.",
  "lights": [
    { "name": "NAME", "fragment": "directionalLight", "profile": "sfg_Light" },
    { "name": "fill", "fragment": "pointLight", "profile": "sfg_Light" }
  ]
}
)json"};

constexpr const char* kNewNotes = "Example:\n\n"
                                  "  mkdir mine && sfg new fragment tint -o mine/tint.fraglib\n"
                                  "  sfg new graph wall\n"
                                  "  sfg collapse wall.json -L mine\n\n"
                                  "Nothing that exists is overwritten.\n";

bool isIdentifier(const std::string& name) {
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
  if (name.empty() || !isLetter(name.front())) return false;
  for (const char c : name) {
    if (!isLetter(c) && !(c >= '0' && c <= '9')) return false;
  }
  return true;
}

class NewCommand : public Command {
public:
  explicit NewCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("new", "Write a commented document to start from")) {
    declareChoice<const Start*>(
        app(), "KIND", {{"fragment", &kFragment}, {"graph", &kGraph}, {"environment", &kEnvironment}}, start_,
        "what to start")
        ->required();
    app()
        .add_option("NAME", name_, "name of the fragment, of the graph's last node, or of the first light")
        ->type_name("NAME")
        ->required();
    app()
        .add_option("-o,--output", file_, "file to write (default: the name, with the extension of its kind)")
        ->type_name("FILE");
    app().footer(kNewNotes);
  }

  int run(Diagnostics& diagnostics) override {
    if (!isIdentifier(name_)) {
      throw host::InputError("`" + name_ + "` is no name: expected letters, digits and `_`, a letter first");
    }
    const std::string file = file_.empty() ? name_ + start_->extension : file_;
    std::error_code error;
    if (std::filesystem::exists(std::filesystem::symlink_status(file, error))) {
      throw host::InputError(file, TextPosition(), "exists already", "cannot-write");
    }
    writeOutput(file, filled(start_->text));
    diagnostics.note(file, "written", "file-written");
    return kDone;
  }

private:
  std::string filled(std::string text) const {
    constexpr std::string_view kName = "NAME";
    for (std::size_t at = text.find(kName); at != text.npos; at = text.find(kName, at + name_.size())) {
      text.replace(at, kName.size(), name_);
    }
    return text;
  }

  const Start* start_ = &kFragment;
  std::string name_;
  std::string file_;
};

}  // namespace

std::unique_ptr<Command> makeNewCommand(CLI::App& parent) { return std::make_unique<NewCommand>(parent); }

}  // namespace TolmSDK::Graphics::sfg::tools
