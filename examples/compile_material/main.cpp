// A host program that does it all through the library: reads fragment libraries, a material graph and a scene
// of lights, collapses the graph, assembles a complete pixel shader and compiles it for two graphics APIs.
//
//   compile_material LIBRARY GRAPH ENVIRONMENT FOLDER     writes FOLDER/material.hlsl, .spv and .glsl

#include <sfg/host/compile.h>
#include <sfg/host/job.h>

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

using namespace TolmSDK::Graphics::sfg;

namespace {

namespace fs = std::filesystem;

void write(const fs::path& file, const std::string& bytes) {
  std::ofstream out(file, std::ios::binary);
  out << bytes;
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
  std::cout << file.filename().string() << ": " << bytes.size() << " bytes\n";
}

void show(std::span<const host::Diagnostic> diagnostics) {
  for (const host::Diagnostic& diagnostic : diagnostics) {
    std::cerr << diagnostic.place() << ": " << diagnostic.text << '\n';
  }
}

void compileMaterial(const fs::path& library, const fs::path& graph, const fs::path& scene,
                     const fs::path& folder) {
  // What all jobs share: fragments and include files.
  const auto libraries = host::LibrarySet::load({{library}, {library}});
  show(libraries->problems());

  // Read the documents and collapse the graph into one function.
  host::CollapseOptions options;
  options.tool = host::CollapseTool::lightLoop;
  host::Job job(libraries, host::Document::fromFile(graph), options, host::Document::fromFile(scene));
  job.collapse();
  show(job.warnings());

  // Put everything the function needs around it.
  const host::Shader shader = job.assemble(host::ShaderStage::pixel);
  fs::create_directories(folder);
  write(folder / "material.hlsl", shader.text);
  if (!host::hasCompilers()) return;

  // Compile and validate.
  try {
    write(folder / "material.spv", host::compile(shader, host::ShaderTarget::spirv));
    write(folder / "material.glsl", host::compile(shader, host::ShaderTarget::glsl));
  } catch (const host::CompileError& error) {
    show(job.explain(shader, error));
    throw;
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::cerr << "usage: compile_material LIBRARY GRAPH ENVIRONMENT FOLDER\n";
    return 2;
  }
  try {
    compileMaterial(argv[1], argv[2], argv[3], argv[4]);
    return 0;
  } catch (const host::CollapseError& error) {
    show(error.diagnostics());
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << '\n';
  }
  return 1;
}
