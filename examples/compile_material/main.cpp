// A host program that does it all through the library: reads fragment libraries, a material graph and a scene
// of lights, collapses the graph, assembles a complete pixel shader and compiles it for two graphics APIs.
//
//   example_compile_material GRAPH ENVIRONMENT FOLDER     writes FOLDER/material.spv and FOLDER/material.glsl

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "host/job/collapse_job.h"
#include "host/modules/shader_compiler.h"
#include "host/shader_assembly.h"
#include "tolmsdk/unicode.h"

using namespace TolmSDK;
using namespace TolmSDK::Graphics::sfg;

namespace {

/// What to read, and that the surface is lit.
host::CollapseSettings settingsFor(const std::string& graph, const std::string& environment) {
  host::CollapseSettings settings;
  settings.graphFile = graph;
  settings.environmentFile = environment;
  settings.libraryFolders = {"library"};
  settings.includeFolders = {"library"};
  settings.tool = host::CollapseTool::lightLoop;
  return settings;
}

void write(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream out(file, std::ios::binary);
  out << bytes;
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
  std::cout << file.string() << ": " << bytes.size() << " bytes\n";
}

void compileMaterial(const std::string& graph, const std::string& environment,
                     const std::filesystem::path& folder) {
  // Read the documents, build the graph and collapse it into one function.
  host::CollapseJob job(settingsFor(graph, environment));
  job.run();
  if (job.result() == nullptr) throw std::runtime_error("the graph cannot be collapsed with these inputs");

  // Put everything the function needs around it.
  const host::AssembledShader assembled = host::assembleShader(job, host::ShaderStage::pixel);
  const std::string text = toUtf8(assembled.shader.getCompleteShader());
  std::cout << "shader: " << text.size() << " bytes of HLSL, " << assembled.shader.getNumUniforms()
            << " uniforms\n";

  // Compile and validate.
  std::filesystem::create_directories(folder);
  const auto compile = [&](host::ShaderTarget target) {
    return host::compileShader(text, assembled.entryPoint, host::ShaderStage::pixel, target);
  };
  write(folder / "material.spv", compile(host::ShaderTarget::spirv));
  write(folder / "material.glsl", compile(host::ShaderTarget::glsl));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: example_compile_material GRAPH ENVIRONMENT FOLDER\n";
    return 2;
  }
  try {
    compileMaterial(argv[1], argv[2], argv[3]);
    return 0;
  } catch (const host::CompileError& error) {
    std::cerr << "error: " << error.what() << '\n';
    for (const host::CompilerMessage& message : error.messages()) {
      std::cerr << "  line " << message.line << ": " << message.text << '\n';
    }
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << '\n';
  }
  return 1;
}
