#include "sfg/host/errors.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"
#include "tools/pictures_part.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kRenderNotes =
    "Example:\n\n"
    "  sfg render brick.json -o brick.png\n"
    "  sfg render brick.json -o brick.png --shape cube --set pattern.mortar=0.2 --turntable 24\n"
    "  sfg render wall.json -o wall.exr --texture stones.image=stones.jpg --environment sun.json\n\n"
    "The graph is collapsed as `sfg collapse --tool lightloop` does, compiled for Vulkan and drawn on a "
    "shape: on a\n"
    "graphics card where there is one, else in software (Mesa's driver, Debian's package "
    "`mesa-vulkan-drivers`).\n"
    "`-o` ends in `.png` (8 bits, sRGB), `.exr` or `.hdr` (linear, not clamped).\n\n"
    "A texture is read as its port's `space` says: `linear` and `srgb` are colours, others numbers. One that "
    "is not\n"
    "given is a coloured board, or flat where it holds numbers. Inputs of the graph with two components are "
    "texture\n"
    "coordinates, those called position or normal are that; others need `--set`.\n\n"
    "Exit status: 0 done; 1 the collapse, a compiler or the device refused; 2 wrong usage or unreadable "
    "input.\n";

class RenderCommand : public Command {
public:
  explicit RenderCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("render", "Show a graph as a picture")) {
    request_.job.collapse.tool = host::CollapseTool::lightLoop;
    declareJobOptions(app(), request_.job);
    graph_ = app().get_option("GRAPH")->required(false);
    app()
        .get_option("--environment")
        ->description(
            "environment document (JSON): lights, output fragment, the image around; or `studio`, `sky`")
        ->default_str("studio");
    app()
        .add_option("-o,--output", request_.output, "the picture: a .png, .exr or .hdr file")
        ->type_name("FILE");
    app()
        .add_option("--device", request_.device, "draw on the device whose name has this in it")
        ->type_name("NAME");
    app().add_flag("--list-devices", listDevices_, "list the devices that can draw, and do nothing else");
    declareScene();
    declareValues();
    app().footer(kRenderNotes);
  }

  int run(Diagnostics& diagnostics) override {
    if (listDevices_) {
      writeOutput(request_.output, picturesPart().devices());
      return kDone;
    }
    if (request_.job.graphFile.empty()) throw host::InputError("`GRAPH` is required");
    if (request_.output.empty()) throw host::InputError("a picture needs a file: `-o NAME.png`");
    const RenderSteps steps = {
        [&](const std::vector<std::string>& outputs) { checkOutputs(request_.job, outputs); },
        [&] { return loadLibraries(request_.job.libraries, diagnostics); },
        [&](host::Job& job) { return collapse(job, true, diagnostics) == Outcome::done; }};
    return picturesPart().render(request_, steps, diagnostics);
  }

private:
  void declareScene() {
    add("--shape", request_.shape, "sphere|plane|cube|torus|cloth|FILE",
        "what the material is on; FILE: a mesh, .obj, .gltf or .glb");
    add("--size", request_.size, "N|WxH", "pixels of the picture");
    app()
        .add_option("--samples", request_.samples,
                    "samples in each pixel, whose mean is taken in linear light")
        ->type_name("N")
        ->check(CLI::Range(1, 4096))
        ->capture_default_str();
    add("--camera", request_.camera, "AZIMUTH,ELEVATION[,DISTANCE[,ANGLE]]",
        "degrees to the right and up, distance from the middle of the shape, field of view in degrees; the "
        "default suits the shape");
    add("--uv-scale", request_.uvScale, "U[,V]", "how often texture coordinates go through the shape");
    add("--background", request_.background, "R,G,B[,A]|transparent|environment",
        "behind the shape: a linear colour, or the picture around");
    app()
        .add_option("--time", request_.time, "seconds that have passed")
        ->type_name("X")
        ->capture_default_str();
    app()
        .add_option(
            "--turntable", request_.turntable,
            "N pictures, each turned by an Nth: numbered, or one animated picture if the file is .apng")
        ->type_name("N")
        ->check(CLI::Range(1, 9999));
  }

  void declareValues() {
    repeated("--set", request_.settings, "NAME=VALUE",
             "a value: `node.input=1,2,3`, `light.input=true`; repeatable");
    repeated("--texture", request_.textures, "NAME=FILE",
             "a texture: `node.input=stones.png`; PNG, JPEG, HDR or EXR; repeatable");
    add("--node", request_.node, "NAME[.OUTPUT]",
        "show what one node computes: a number as grey, a vector or direction as a colour, from the least to "
        "the greatest");
    add("--compare", request_.compared, "FILE",
        "tell how far another picture of the same size is from this one, and write the difference beside it");
  }

  void add(const char* name, std::string& value, const char* type, const char* help) {
    CLI::Option* const option = app().add_option(name, value, help)->type_name(type);
    if (!value.empty()) option->capture_default_str();
  }
  void repeated(const char* name, std::vector<std::string>& values, const char* type, const char* help) {
    app().add_option(name, values, help)->type_name(type)->allow_extra_args(false);
  }

  RenderRequest request_;
  CLI::Option* graph_ = nullptr;
  bool listDevices_ = false;
};

}  // namespace

std::unique_ptr<Command> makeRenderCommand(CLI::App& parent) {
  return std::make_unique<RenderCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
