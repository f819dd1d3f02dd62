#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

#include "sfg/host/errors.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/fragment_thumbnail.h"
#include "tools/output_file.h"
#include "tools/pictures_part.h"
#include "tools/progress_line.h"
#include "tools/site/pages.h"
#include "tools/site/read_library.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

constexpr const char* kDocsNotes =
    "Example:\n\n"
    "  sfg docs -L library -I library -o site --examples examples/materials\n"
    "  sfg docs -L fragments -o site --no-pictures\n\n"
    "The site has a page for each fragment (what it is for, its ports, its code, pictures of its levels of "
    "detail, the\n"
    "examples that use it), one for each include file, a search, and a gallery of the examples. Open "
    "`index.html`: it needs\n"
    "no server, and nothing is fetched. Fragments whose first output is the same everywhere have no "
    "picture. Files of the\n"
    "folder that are none of the site's stay.\n\n"
    "Exit status: 0 done; 1 something in the libraries is wrong, the rest was written; 2 wrong usage or "
    "unreadable input.\n";

class DocsCommand : public Command {
public:
  explicit DocsCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("docs", "Write a site about fragments: search, pages, pictures")) {
    declareLibraryOptions(app(), libraryOptions_);
    app().add_option("-o,--output", folder_, "folder for the site")->type_name("DIR")->required();
    app()
        .add_option("--examples", exampleFolders_,
                    "folder of graphs and environments to show in the gallery; repeatable")
        ->type_name("DIR")
        ->allow_extra_args(false);
    app()
        .add_option(
            "--environment", environments_,
            "what the examples are seen under: `studio`, `sky` or an environment document; repeatable")
        ->type_name("FILE")
        ->allow_extra_args(false)
        ->default_str("studio");
    app().add_option("--title", title_, "what the site is about")->type_name("TEXT")->capture_default_str();
    app().add_flag("--no-pictures", withoutPictures_, "draw nothing");
    app()
        .add_option("--device", thumbnails_.device, "draw on the device whose name has this in it")
        ->type_name("NAME");
    app()
        .add_option("--size", thumbnails_.side, "pixels of a picture's side")
        ->type_name("N")
        ->check(CLI::Range(16, 1024))
        ->capture_default_str();
    app().footer(kDocsNotes);
  }

  int run(Diagnostics& diagnostics) override {
    libraries_ = loadLibraries(libraryOptions_, diagnostics);
    if (libraries_->folders().libraries.empty())
      throw host::InputError("no folder of libraries is given (`-L DIR`)");
    if (fs::exists(folder_) && !fs::is_directory(folder_))
      throw host::InputError(folder_ + ": is not a folder");
    site::Site site = site::readSite(*libraries_, {exampleFolders_.begin(), exampleFolders_.end()});
    site.title = title_;
    if (!withoutPictures_) paintAll(site, diagnostics);
    for (const auto& [name, bytes] : site::pagesOf(site)) write(name, bytes);
    const auto problems = libraries_->problems();
    const bool isFaulty = std::any_of(problems.begin(), problems.end(), [](const host::Diagnostic& problem) {
      return problem.severity == host::Severity::error;
    });
    return isFaulty ? kRefused : kDone;
  }

private:
  void write(const std::string& name, const std::string& bytes) const {
    const fs::path file = fs::path(folder_) / name;
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    if (error) throw host::InputError(file.parent_path().string() + ": cannot be made: " + error.message());
    writeOutput(file.string(), bytes);
  }

  /// Without a device the site has no pictures, which is told.
  void paintAll(site::Site& site, Diagnostics& diagnostics) {
    std::unique_ptr<ThumbnailPainter> painter;
    try {
      painter = picturesPart().makePainter(libraries_, thumbnails_);
    } catch (const std::exception& error) {
      if (!thumbnails_.device.empty()) throw;
      diagnostics.note(std::string(), std::string("the site has no pictures: ") + error.what(), "no-picture");
      return;
    }
    ProgressLine progress;
    std::size_t done = 0;
    const std::size_t all = site.fragments.size() + site.examples.size();
    const auto step = [&] { progress.show("  " + std::to_string(100 * done++ / all) + " %"); };
    const std::vector<std::string> files = site::fragmentFiles(site);
    for (std::size_t i = 0; i < site.fragments.size(); ++i) {
      step();
      paintFragment(*painter, site.fragments[i], files[i]);
    }
    std::map<std::string, int> taken;
    for (site::Example& example : site.examples) {
      step();
      const std::string file = site::fileNameOf(example.name, taken);
      if (!example.isEnvironment) paintExample(*painter, example, file, diagnostics);
    }
  }

  /// One picture for each of its levels of detail: of what it takes from the renderer, or else of places that
  /// it is given.
  void paintFragment(ThumbnailPainter& painter, site::Fragment& fragment, const std::string& file) const {
    std::set<float, std::greater<>> levels;
    for (const site::Profile& profile : fragment.profiles)
      levels.insert(std::strtof(profile.level.c_str(), nullptr));
    for (const bool isFed : {false, true}) {
      for (const float level : levels) {
        const auto request = showingFragment(fragment, level, isFed);
        const auto picture = request ? painter.paint(*request) : std::nullopt;
        if (!picture) continue;
        const std::string number = site::numberText(static_cast<double>(level));
        fragment.pictures.push_back({"pictures/" + file + "-" + number + ".png", "level " + number});
        write(fragment.pictures.back().file, *picture);
      }
      if (!fragment.pictures.empty()) return;
    }
  }

  void paintExample(ThumbnailPainter& painter, site::Example& example, const std::string& file,
                    Diagnostics& diagnostics) const {
    const std::vector<std::string> standard = {"studio"};
    for (const std::string& environment : environments_.empty() ? standard : environments_) {
      ThumbnailRequest request{example.text, example.file, environment, "sphere"};
      request.collapse.tool = host::CollapseTool::lightLoop;
      const auto picture = painter.paint(request);
      if (!picture) {
        const std::string why = painter.why().empty() ? "all of it has one colour" : painter.why();
        diagnostics.note(example.file, "it has no picture under `" + environment + "`: " + why, "no-picture");
        continue;
      }
      const std::string name = fs::path(environment).stem().string();
      std::map<std::string, int> none;
      example.pictures.push_back(
          {"pictures/example-" + file + "-" + site::fileNameOf(name, none) + ".png", name});
      write(example.pictures.back().file, *picture);
    }
  }

  LibraryOptions libraryOptions_;
  std::shared_ptr<const host::LibrarySet> libraries_;
  std::string folder_;
  std::vector<std::string> exampleFolders_;
  std::vector<std::string> environments_;
  std::string title_ = "Fragments";
  bool withoutPictures_ = false;
  ThumbnailOptions thumbnails_;
};

}  // namespace

std::unique_ptr<Command> makeDocsCommand(CLI::App& parent) { return std::make_unique<DocsCommand>(parent); }

}  // namespace TolmSDK::Graphics::sfg::tools
