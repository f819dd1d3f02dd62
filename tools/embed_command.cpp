#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "sfg/host/build.h"
#include "sfg/host/errors.h"
#include "tools/build_options.h"
#include "tools/command.h"
#include "tools/embedded_header.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

constexpr const char* kEmbedNotes =
    "Example:\n\n"
    "  sfg build materials.json\n"
    "  sfg embed materials.json --as materials --to include\n\n"
    "The shaders are those that `sfg build` has made of the manifest, whose shaders have `\"reflection\": "
    "true`. Each becomes\n"
    "a header with its bytes, the hash of its interface, and the interface as JSON, without the files that "
    "it was made of:\n"
    "`include/materials/brick.spv.h` of `brick.spv`. `include/materials.h` has them all, in an array. A "
    "header that would\n"
    "stay the same keeps its date, so that a compiler has nothing to do.\n\n"
    "Exit status: 0 done; 2 wrong usage, or a shader that is not there.\n";

std::optional<std::string> readBytes(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream bytes;
  if (!stream || !(bytes << stream.rdbuf())) return std::nullopt;
  return std::move(bytes).str();
}

std::string readShader(const std::string& file) {
  std::optional<std::string> bytes = readBytes(file);
  if (bytes) return *std::move(bytes);
  throw host::InputError(file, TextPosition(), "cannot be read; `sfg build` makes it", "unreadable-file");
}

/// Keeps the date of a file that holds the text already.
void writeChanged(const fs::path& file, const std::string& text) {
  if (readBytes(file.string()) == text) return;
  std::error_code ignored;
  fs::create_directories(file.parent_path(), ignored);
  writeOutput(file.string(), text);
}

class EmbedCommand : public Command {
public:
  explicit EmbedCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("embed", "Write the shaders of a manifest as C++ headers")) {
    declareBuildOptions(app(), options_);
    app().add_option("--as", scope_, "the namespace, and the header's name")->type_name("NAME")->required();
    app().add_option("--to", folder_, "folder of the headers")->type_name("DIR")->capture_default_str();
    app().footer(kEmbedNotes);
  }

  int run(Diagnostics& diagnostics) override {
    if (!isNamespaceName(scope_)) {
      throw host::InputError("`--as`: C++ has no namespace `" + scope_ + "`");
    }
    const host::BuildPlan plan = makePlan(options_, diagnostics);
    std::vector<std::string> files;
    std::map<std::string, std::string> namespaces;
    for (const host::BuildTask& task : plan.tasks) {
      const std::string file = fs::path(task.output).lexically_relative(plan.outputFolder).generic_string();
      const auto [other, isNew] = namespaces.emplace(namespaceFor(file), file);
      if (!isNew) {
        throw host::InputError("`" + file + "` and `" + other->second + "` would both be the namespace `" +
                               other->first + "`; give one another name");
      }
      files.push_back(file);
      writeChanged(fs::path(folder_) / scope_ / (file + ".h"), headerOf(task, file));
    }
    writeChanged(fs::path(folder_) / (scope_ + ".h"), writeCollectingHeader(scope_, files));
    return kDone;
  }

private:
  std::string headerOf(const host::BuildTask& task, const std::string& file) const {
    if (task.reflection.empty()) {
      throw host::InputError(options_.manifest, TextPosition(),
                             "makes shaders without `reflection`, which a header needs", "wrong-usage");
    }
    // Paths would make the header another on every machine.
    auto reflection = nlohmann::ordered_json::parse(readShader(task.reflection), nullptr, false);
    if (!reflection.is_object() || !reflection["hash"].is_string()) {
      throw host::InputError(task.reflection, TextPosition(), "is no reflection; `sfg build` makes it",
                             "unreadable-file");
    }
    reflection.erase("files");
    return writeEmbeddedHeader(scope_, {file, readShader(task.output), reflection["hash"].get<std::string>(),
                                        reflection.dump(2) + "\n"});
  }

  BuildCommandOptions options_;
  std::string scope_;
  std::string folder_ = ".";
};

}  // namespace

std::unique_ptr<Command> makeEmbedCommand(CLI::App& parent) { return std::make_unique<EmbedCommand>(parent); }

}  // namespace TolmSDK::Graphics::sfg::tools
